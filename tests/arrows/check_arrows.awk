# Reads arrows.txt, then the sources named on the command line, and prints one line for every #include that no arrow
# allows. Ends with 1 if there was one. Paths are relative to the root of the repository:
#
#   awk -f check_arrows.awk arrows.txt host/lyr_core/LyrObject.h ...

function fail(text) {
    print FILENAME ":" FNR ": " text
    violations++
}

# --- the rules ---------------------------------------------------------------------------------------------------

function read_rule(line,    part, word, n, i) {
    if (split(line, part, ":") != 3) {
        print "arrows.txt:" FNR ": a rule has three parts, divided by ':'"
        violations++
        return
    }
    gsub(/[ \t]/, "", part[1])
    known[part[1]] = 1
    n = split(part[2], word, " ")
    for (i = 1; i <= n; i++) may_include[part[1], word[i]] = 1
    n = split(part[3], word, " ")
    for (i = 1; i <= n; i++) {
        if (word[i] ~ /\*1$/) single[part[1], bare(word[i])] = 1
        may_use[part[1], bare(word[i])] = word[i] ~ /\*/ ? "private" : "public"
    }
}

function bare(word) {
    sub(/\*1?$/, "", word)
    return word
}

# The longest folder with a rule that holds the file; empty where there is none.
function folder_of(file) {
    while (file ~ /\//) {
        sub(/\/[^\/]*$/, "", file)
        if (file in known) return file
    }
    return ""
}

# --- libraries, told by their headers' names ----------------------------------------------------------------------

function library_of(header) {
    if (header in standard) return "std"
    if (header ~ /^(unistd|fcntl|dlfcn|poll|spawn|pthread|link|elf|dirent|signal|termios|pwd)\.h$/ || header ~ /^sys\//) return "posix"
    if (header ~ /^[a-z0-9]+intrin\.h$/ || header == "cpuid.h") return "cpu"
    if (header ~ /^tiff(io|vers)?\.h$/) return "tiff"
    if (header ~ /^nlohmann\//) return "json"
    if (header ~ /^CLI\//) return "cli11"
    if (header ~ /^hwy\//) return "hwy"
    if (header ~ /^(itk|gdcm)[A-Za-z0-9]*\.h$/) return "itk"
    if (header ~ /^openvdb\//) return "openvdb"
    if (header ~ /^zlib\.h$/) return "zlib"
    if (header ~ /^png\.h$/) return "png"
    if (header ~ /^GL\// || header ~ /^QOpenGL/ || header ~ /^QtOpenGL\//) return "gl"
    if (header ~ /^Qt?(Widgets|OpenGLWidgets)\// || header in qt_widgets) return "qtwidgets"
    if (header ~ /^Q[A-Z]/ || header ~ /^Qt[A-Z][A-Za-z]*$/ || header ~ /^Qt[A-Z][A-Za-z]*\//) return "qtgui"
    return ""
}

BEGIN {
    names = "algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes " \
        "climits clocale cmath compare complex concepts condition_variable coroutine csetjmp csignal cstdarg cstddef " \
        "cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem forward_list " \
        "fstream functional future initializer_list iomanip ios iosfwd iostream istream iterator latch limits list " \
        "locale map memory memory_resource mutex new numbers numeric optional ostream queue random ranges ratio regex " \
        "scoped_allocator semaphore set shared_mutex source_location span sstream stack stdexcept stop_token streambuf " \
        "string string_view syncstream system_error thread tuple type_traits typeindex typeinfo unordered_map " \
        "unordered_set utility valarray variant vector version cxxabi.h"
    n = split(names, name, " ")
    for (i = 1; i <= n; i++) standard[name[i]] = 1
    # Short names of widget headers; what is not here counts as Qt without widgets.
    names = "QWidget QApplication QMainWindow QDialog QMessageBox QFileDialog QPushButton QToolButton QComboBox QSpinBox " \
        "QDoubleSpinBox QCheckBox QRadioButton QLabel QLineEdit QSlider QMenu QMenuBar QToolBar QDockWidget QTableWidget " \
        "QTableView QTreeView QTreeWidget QListWidget QListView QHeaderView QStyledItemDelegate QStyle QStyleOption " \
        "QProxyStyle QStylePainter QLayout QBoxLayout QHBoxLayout QVBoxLayout QGridLayout QFormLayout QGroupBox QFrame " \
        "QScrollArea QScrollBar QSplitter QStackedWidget QTabWidget QStatusBar QProgressBar QColorDialog QFontDialog " \
        "QFontComboBox QInputDialog QTextEdit QPlainTextEdit QToolTip QWhatsThis QCompleter QButtonGroup QSizePolicy"
    n = split(names, name, " ")
    for (i = 1; i <= n; i++) qt_widgets[name[i]] = 1
    # Roots that an include of this project starts from: <lyr_core/...> and <colortable/...>.
    n = split("lyr_core lyr_volume lyr_opengl lys_core", name, " ")
    for (i = 1; i <= n; i++) root_of[name[i]] = "host/"
    n = split("toolkit colortable analysis workbench cli", name, " ")
    for (i = 1; i <= n; i++) root_of[name[i]] = ""
    violations = 0
}

# --- the sources -------------------------------------------------------------------------------------------------

# The folder of a path: all before the last slash.
function parent(path) {
    return path ~ /\// ? substr(path, 1, match(path, /\/[^\/]*$/) - 1) : ""
}

# An include in quotation marks is relative to its file, "../" included; empty if it leaves the repository.
function beside(file, header,    folder) {
    folder = parent(file)
    while (header ~ /^\.\.?\//) {
        if (header ~ /^\.\.\//) {
            if (folder == "") return ""
            folder = parent(folder)
        }
        sub(/^\.\.?\//, "", header)
    }
    return folder == "" ? header : folder "/" header
}

# Where in the repository an include leads; empty for a library's header.
function target_of(file, header, quoted,    first) {
    first = header
    sub(/\/.*/, "", first)
    if (first in root_of) return root_of[first] header
    if (quoted) return beside(file, header)
    return ""
}

function check_project(from, target,    to) {
    to = folder_of(target)
    if (to == from || (from, to) in may_include || (from, target) in may_include) return
    # A rule for a whole folder holds for the folders in it that have rules of their own.
    while (to ~ /\//) {
        to = parent(to)
        if ((from, to) in may_include) return
    }
    fail(from " may not include " target)
}

# Programs offer no headers to others.
function is_public(from, file) {
    return from !~ /^(cli|workbench)$/ && file ~ /\.h$/ && file !~ /(_p|-inl)\.h$/
}

function check_library(from, header,    library) {
    library = library_of(header)
    if (library == "") {
        fail("<" header "> belongs to no known library")
    } else if (!((from, library) in may_use)) {
        fail(from " may not include <" header "> (" library ")")
    } else if (may_use[from, library] == "private" && is_public(from, FILENAME)) {
        fail("a public header of " from " may not include <" header "> (" library ")")
    } else if ((from, library) in single) {
        if ((from, library) in user && user[from, library] != FILENAME)
            fail("only one file of " from " includes " library ", and " user[from, library] " does already")
        user[from, library] = FILENAME
    }
}

FNR == 1 { reading++ }

reading == 1 {
    if ($0 ~ /^#/ || $0 ~ /^[ \t]*$/) next
    if (sub(/\\$/, "")) {
        kept = kept $0
        next
    }
    read_rule(kept $0)
    kept = ""
    next
}

FNR == 1 {
    from = folder_of(FILENAME)
    if (from == "") fail("this folder has no line in arrows.txt")
    files++
}

/^[ \t]*#[ \t]*include/ && from != "" {
    line = $0
    sub(/^[ \t]*#[ \t]*include[ \t]*/, "", line)
    if (line !~ /^(<[^>]+>|"[^"]+")/) {
        fail("the include of a macro cannot be checked")
        next
    }
    quoted = line ~ /^"/
    header = substr(line, 2)
    sub(/[>"].*/, "", header)
    target = target_of(FILENAME, header, quoted)
    if (quoted && target == "") fail("\"" header "\" leaves the repository")
    else if (target != "") check_project(from, target)
    else check_library(from, header)
}

END {
    if (reading < 2 || files == 0) {
        print "check_arrows: there was nothing to check"
        exit 1
    }
    printf "%d files checked, %d violations\n", files, violations
    exit violations > 0
}
