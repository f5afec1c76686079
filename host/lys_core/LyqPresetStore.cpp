#include <lyr_core/LyrFileSaver.h>
#include <lyr_core/LyrMetaClass.h>
#include <lys_core/LyqPresetStore.h>
#include <lys_core/PresetFileName_p.h>
#include <lys_core/PresetIndex_p.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QCoreApplication>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <map>
#include <system_error>
#include <thread>
#include <utility>

namespace {

constexpr auto LOCK_PATIENCE = std::chrono::seconds(30);
constexpr auto LOCK_PAUSE = std::chrono::milliseconds(1);
/** Long enough for those who wait to see that it is their turn: one that saves again and again shuts nobody out. */
constexpr auto TURN_OF_OTHERS = std::chrono::milliseconds(2);

LyrString translated(const char* text) {
    return QCoreApplication::translate("LyqPresetStore", text);
}

/** A message about a file or folder with the reason that the system gives. */
LyrString systemMessage(const LyrString& text, const std::string& path, int error) {
    return text.arg({LyrString(path), LyrString(strerrordesc_np(error) ? strerrordesc_np(error) : "")});
}

bool fail(LyrString& message, const LyrString& text) {
    message = text;
    return false;
}

/** Has the system write down which names a folder holds. Where it cannot, a preset that is gone may be back after a
 * power failure. File systems that cannot flush a folder say EINVAL. */
bool flushFolder(const std::string& path, LyrString& message) {
    const int folder = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool done = folder >= 0 && (::fsync(folder) == 0 || errno == EINVAL);
    const int error = errno;
    if (folder >= 0) {
        ::close(folder);
    }
    return done || fail(message, systemMessage(translated(QT_TRANSLATE_NOOP("LyqPresetStore",
                                                                            "%1: the folder cannot be flushed to the "
                                                                            "disk: %2")),
                                               path, error));
}

LyqPresetStore::Entry entryOf(const std::string& path, const PresetHeader& header) {
    return {header.name, path, header.problem, header.isNewer};
}

/** Makes bytes the content of a file, but not of one of a newer version. */
bool replaceFile(const std::string& path, const std::string& bytes, LyrString& message) {
    LyrObjectFile::Report report;
    return LyrObjectFile::mayReplace(path, report) ? LyrFileSaver::replace(path, bytes, &message)
                                                   : fail(message, report.message);
}

}  // namespace

/** A lock on the folder itself: nothing of it stays behind, whatever ends its process. Waits for others a while. */
class LyqPresetStore::Lock {
public:
    Lock() = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    ~Lock() {
        if (mFolder >= 0) {
            ::close(mFolder);
            std::this_thread::sleep_for(TURN_OF_OTHERS);
        }
    }

    bool take(const std::string& folder, LyrString& message) {
        mFolder = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (mFolder < 0) {
            return fail(
                message,
                systemMessage(translated(QT_TRANSLATE_NOOP("LyqPresetStore", "%1: the folder cannot be opened: %2")),
                              folder, errno));
        }
        const auto end = std::chrono::steady_clock::now() + LOCK_PATIENCE;
        while (::flock(mFolder, LOCK_EX | LOCK_NB) != 0) {
            const int error = errno;
            if (error == ENOLCK || error == EOPNOTSUPP || error == ENOSYS || error == EBADF || error == EINVAL) {
                return true;  // no locks here: each file by itself is replaced safely all the same
            }
            if (error != EWOULDBLOCK && error != EINTR) {
                return fail(message, systemMessage(translated(QT_TRANSLATE_NOOP("LyqPresetStore",
                                                                                "%1: the folder cannot be locked: %2")),
                                                   folder, error));
            }
            if (std::chrono::steady_clock::now() > end) {
                return fail(message, translated(QT_TRANSLATE_NOOP("LyqPresetStore",
                                                                  "%1: another program is busy with the presets; try "
                                                                  "again later"))
                                         .arg(LyrString(folder)));
            }
            std::this_thread::sleep_for(LOCK_PAUSE);
        }
        return true;
    }

private:
    int mFolder = -1;
};

LyqPresetStore::LyqPresetStore(std::string folder, bool isWritable, std::string className)
    : mFolder(std::move(folder)),
      mIsWritable(isWritable),
      mClass(std::move(className)),
      mIndex(std::make_unique<Index>()) {
    if (mIsWritable) {
        LyrFileSaver::sweepLeftovers(mFolder);
    }
}

LyqPresetStore::~LyqPresetStore() = default;

LyrString LyqPresetStore::checkName(const LyrString& name) {
    return lys::presets::checkName(name);
}

std::vector<LyqPresetStore::Entry> LyqPresetStore::list(LyrString* message) const {
    const std::error_code error = mIndex->scan(mFolder, true);
    if (error && error != std::errc::no_such_file_or_directory && message) {
        *message = systemMessage(translated(QT_TRANSLATE_NOOP("LyqPresetStore", "%1: the folder cannot be read: %2")),
                                 mFolder, error.value());
    }
    // The others of one name come to light when the first one goes.
    std::map<LyrString, std::pair<int, Entry>> named;
    for (const auto& [path, known] : mIndex->files) {
        const PresetHeader& header = known.header;
        if (!header.isOf(mClass)) {
            continue;
        }
        const auto [twin, isFirst] = named.try_emplace(header.name, known.rank(), entryOf(path, header));
        if (!isFirst && known.rank() < twin->second.first) {
            twin->second = {known.rank(), entryOf(path, header)};
        }
    }
    std::vector<Entry> result;
    result.reserve(named.size());
    for (auto& [name, ranked] : named) {
        result.push_back(std::move(ranked.second));
    }
    return result;
}

// What list() would find, without a look at every file where that can be avoided.
bool LyqPresetStore::find(const LyrString& name, Entry& entry) const {
    const std::string usual = mFolder + '/' + lys::presets::fileNameOf(name);
    const Index::Known* best = mIndex->examine(usual);
    if (best && best->rank() == 0 && best->header.name == name && best->header.isOf(mClass)) {
        entry = entryOf(usual, best->header);
        return true;
    }
    best = nullptr;
    mIndex->scan(mFolder, false);
    for (const auto& [path, known] : mIndex->files) {
        const bool isCandidate = known.header.name == name && known.header.isOf(mClass);
        if (isCandidate && (!best || known.rank() < best->rank())) {
            best = &known;
            entry = entryOf(path, known.header);
        }
    }
    return best;
}

bool LyqPresetStore::contains(const LyrString& name) const {
    Entry entry;
    return find(name, entry);
}

LyrObjectPtr LyqPresetStore::load(const LyrString& name, LyrObjectFile::Report& report, Lyrenum scope) const {
    report = LyrObjectFile::Report();
    Entry entry;
    if (!find(name, entry)) {
        report.message = translated(QT_TRANSLATE_NOOP("LyqPresetStore", "There is no preset \"%1\" in %2."))
                             .arg({name, LyrString(mFolder)});
        return {};
    }
    return loadEntry(entry, report, scope);
}

LyrObjectPtr LyqPresetStore::loadEntry(const Entry& entry, LyrObjectFile::Report& report, Lyrenum scope) const {
    std::string bytes;
    LyrObjectPtr object;
    if (!lysReadPresetFile(entry.path, bytes, report.message)) {
        return {};
    }
    if (mClass.empty()) {
        LyrObjectFile::read(bytes, object, report, {}, scope);
    } else {
        LyrObjectFile::read(bytes, object, report, {mClass.c_str()}, scope);
    }
    const LyrString path(entry.path + ": ");
    report.message = report.message.isEmpty() ? report.message : path + report.message;
    for (LyrString& warning : report.warnings) {
        warning = path + warning;
    }
    return object;
}

bool LyqPresetStore::mayChange(LyrString& message) const {
    if (!mIsWritable) {
        return fail(message, translated(QT_TRANSLATE_NOOP(
                                 "LyqPresetStore", "The presets that come with the program cannot be changed.")));
    }
    std::error_code error;
    std::filesystem::create_directories(mFolder, error);
    return !error || fail(message, translated(QT_TRANSLATE_NOOP("LyqPresetStore", "%1: the folder cannot be made: %2"))
                                       .arg({LyrString(mFolder), LyrString(error.message())}));
}

/** The file that a preset is to be written to, given the one that has its name (may be null); empty, and a message, if
 * it must not be written. To be called under the lock. */
std::string LyqPresetStore::targetFor(const LyrString& name, const Entry* present, LyrString& message) const {
    if (present) {
        struct stat status {};
        if (::lstat(present->path.c_str(), &status) == 0 && S_ISLNK(status.st_mode)) {
            message = translated(QT_TRANSLATE_NOOP("LyqPresetStore",
                                                   "%1: this is a link, which presets are not written through; delete "
                                                   "it first"))
                          .arg(LyrString(present->path));
            return {};
        }
        return present->path;
    }
    std::string path = mFolder + '/' + lys::presets::fileNameOf(name);
    struct stat status {};
    const bool isTaken = ::lstat(path.c_str(), &status) == 0;
    if (isTaken || errno != ENOENT) {
        message =
            isTaken ? translated(QT_TRANSLATE_NOOP("LyqPresetStore",
                                                   "%1: something else lies in the place of this preset; move it away"))
                          .arg(LyrString(path))
                    : systemMessage(translated(QT_TRANSLATE_NOOP("LyqPresetStore", "%1: cannot be examined: %2")), path,
                                    errno);
        return {};
    }
    return path;
}

bool LyqPresetStore::save(LyrObject& preset, const LyrString& name, LyrString& message, bool replace) {
    mIsNameTaken = false;
    message = checkName(name);
    Lock lock;
    if (!message.isNull() || !mayChange(message) || !lock.take(mFolder, message)) {
        return false;
    }
    Entry present;
    const bool isThere = find(name, present);
    if (isThere && !replace) {
        return refuseTaken(name, message);
    }
    const std::string path = targetFor(name, isThere ? &present : nullptr, message);
    if (path.empty() || !preset.setNameTemplate(name.utf8())) {
        return false;
    }
    LyrObjectFile::Report report;
    const bool done = LyrObjectFile::save(preset, path, report);
    message = done ? LyrString() : report.message;
    return done;
}

// Killed half-way the preset is there under both names, never under none.
bool LyqPresetStore::rename(const LyrString& from, const LyrString& to, LyrString& message) {
    message = checkName(to);
    Lock lock;
    if (!message.isNull() || !mayChange(message) || !lock.take(mFolder, message)) {
        return false;
    }
    Entry entry;
    LyrObjectFile::Report report;
    if (from == to) {
        return true;
    }
    if (contains(to)) {
        return fail(message,
                    translated(QT_TRANSLATE_NOOP("LyqPresetStore", "There is a preset \"%1\" already.")).arg(to));
    }
    if (!find(from, entry)) {
        return fail(message, translated(QT_TRANSLATE_NOOP("LyqPresetStore", "There is no preset \"%1\" in %2."))
                                 .arg({from, LyrString(mFolder)}));
    }
    const LyrObjectPtr preset = loadEntry(entry, report, Lyr::TransientScope);
    if (!preset || report.newerVersion) {
        return fail(message, report.message);
    }
    // What the file leaves open stays open: a default written in its place would have a meaning.
    for (const Lyrenum missing : report.missing) {
        preset->removeProperty(missing);
    }
    const std::string path = targetFor(to, nullptr, message);
    if (path.empty() || !preset->setNameTemplate(to.utf8())) {
        return false;
    }
    if (!LyrObjectFile::save(*preset, path, report)) {
        return fail(message, report.message);
    }
    if (::unlink(entry.path.c_str()) != 0) {
        message = systemMessage(translated(QT_TRANSLATE_NOOP("LyqPresetStore", "%1: cannot be removed: %2")),
                                entry.path, errno);
        ::unlink(path.c_str());
        return false;
    }
    return flushFolder(mFolder, message);
}

bool LyqPresetStore::remove(const LyrString& name, LyrString& message) {
    Lock lock;
    if (!mayChange(message) || !lock.take(mFolder, message)) {
        return false;
    }
    Entry entry;
    if (!find(name, entry)) {
        return fail(message, translated(QT_TRANSLATE_NOOP("LyqPresetStore", "There is no preset \"%1\" in %2."))
                                 .arg({name, LyrString(mFolder)}));
    }
    if (::unlink(entry.path.c_str()) != 0) {
        return fail(message, systemMessage(translated(QT_TRANSLATE_NOOP("LyqPresetStore", "%1: cannot be removed: %2")),
                                           entry.path, errno));
    }
    return flushFolder(mFolder, message);
}

/** The file of a preset that is to be taken in. */
struct LyqPresetStore::Incoming {
    std::string bytes;
    LyrString name;
    /** What a person should know of it; null if nothing. */
    LyrString note;
};

bool LyqPresetStore::readIncoming(const std::string& path, Incoming& incoming, LyrString& message) const {
    LyrObjectPtr object;
    LyrObjectFile::Report report;
    std::error_code error;
    const std::string real = std::filesystem::weakly_canonical(path, error).string();
    if (!lysReadPresetFile(error ? path : real, incoming.bytes, message)) {
        return false;
    }
    const bool isUsable = mClass.empty() ? LyrObjectFile::read(incoming.bytes, object, report)
                                         : LyrObjectFile::read(incoming.bytes, object, report, {mClass.c_str()});
    if (!isUsable) {
        return fail(message, LyrString(path + ": ") + report.message);
    }
    const PresetHeader header = PresetHeader::parse(path, incoming.bytes);
    incoming.name = header.name;
    incoming.note = report.message.isEmpty() ? LyrString() : LyrString(path + ": ") + report.message;
    message = header.problem.isNull() ? checkName(header.name) : header.problem;
    // The name of its file here cannot always be told back to the name that it comes with.
    if (message.isNull() && !header.carriesName && !lysInsertPresetName(incoming.bytes, header.name)) {
        message = translated(QT_TRANSLATE_NOOP("LyqPresetStore",
                                               "%1: this is no whole preset; the file may be cut off or damaged"))
                      .arg(LyrString(path));
    }
    return message.isNull();
}

bool LyqPresetStore::refuseTaken(const LyrString& name, LyrString& message) {
    mIsNameTaken = true;
    return fail(message,
                translated(QT_TRANSLATE_NOOP("LyqPresetStore", "There is a preset \"%1\" already.")).arg(name));
}

bool LyqPresetStore::checkImport(const std::string& path, bool replace, LyrString& name, LyrString& message) {
    mIsNameTaken = false;
    Incoming incoming;
    const bool done = readIncoming(path, incoming, message);
    name = incoming.name;
    return done && (replace || !contains(name) || refuseTaken(name, message));
}

bool LyqPresetStore::importFile(const std::string& path, bool replace, LyrString& name, LyrString& message) {
    mIsNameTaken = false;
    Incoming incoming;
    const bool isUsable = readIncoming(path, incoming, message);
    name = incoming.name;
    Lock lock;
    if (!isUsable || !mayChange(message) || !lock.take(mFolder, message)) {
        return false;
    }
    Entry present;
    const bool isThere = find(name, present);
    if (isThere && !replace) {
        return refuseTaken(name, message);
    }
    const std::string target = targetFor(name, isThere ? &present : nullptr, message);
    if (target.empty() || !replaceFile(target, incoming.bytes, message)) {
        return false;
    }
    message = incoming.note;
    return true;
}

bool LyqPresetStore::contentOf(const LyrString& name, std::string& bytes, LyrString& message) const {
    Entry entry;
    LyrObjectFile::Report report;
    if (!find(name, entry)) {
        return fail(message, translated(QT_TRANSLATE_NOOP("LyqPresetStore", "There is no preset \"%1\" in %2."))
                                 .arg({name, LyrString(mFolder)}));
    }
    if (!loadEntry(entry, report, Lyr::TransientScope)) {
        return fail(message, report.message);
    }
    return lysReadPresetFile(entry.path, bytes, message);
}

bool LyqPresetStore::exportFile(const LyrString& name, const std::string& path, LyrString& message) const {
    std::string bytes;
    LyrFileSaver::sweepBeside(path);
    return contentOf(name, bytes, message) && replaceFile(path, bytes, message);
}
