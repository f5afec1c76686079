#include <workbench/Options.h>

#include <CLI/CLI.hpp>

#include <QFile>

#include <charconv>
#include <cmath>
#include <string>

namespace workbench {

namespace {

constexpr int SMALLEST = 200;
constexpr int LARGEST = 8192;

/** Reads "1280x860". */
bool parseSize(const std::string& text, QSize& out) {
    const std::size_t cross = text.find('x');
    int width = 0, height = 0;
    const auto read = [](const char* begin, const char* end, int& number) {
        const auto result = std::from_chars(begin, end, number);
        return result.ec == std::errc() && result.ptr == end && number >= SMALLEST && number <= LARGEST;
    };
    const char* begin = text.data();
    if (cross == std::string::npos || !read(begin, begin + cross, width) ||
        !read(begin + cross + 1, begin + text.size(), height)) {
        return false;
    }
    out = {width, height};
    return true;
}

/** Reads a finite number, decimal point in every locale. One too small for a float is 0. */
bool parseThreshold(const std::string& text, std::optional<float>& out) {
    double value = 0.0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    const auto narrow = static_cast<float>(value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || !std::isfinite(narrow)) {
        return false;
    }
    out = narrow;
    return true;
}

/** An empty value is an unset variable of a script rather than a wish. */
std::string isThere(const std::string& text) {
    return text.empty() ? "is empty; give it a value or leave it out" : std::string();
}

/** The kind of a report follows from its name. */
std::string isReport(const std::string& path) {
    const QString name = QFile::decodeName(path.c_str());
    return name.endsWith(".csv", Qt::CaseInsensitive) || name.endsWith(".json", Qt::CaseInsensitive)
               ? std::string()
               : "'" + path + "' must end in .csv or .json, which says what kind of report it is";
}

}  // namespace

bool parseOptions(int argc, char** argv, Options& out, int& status) {
    CLI::App app("Shows a volume in three slice views and a 3D view, colored through tables.", "workbench");
    std::string volume, analysis, threshold, preset, report, screenshot, size, plugIns;
    app.add_option("VOLUME", volume, "a file, a folder of slices, or builtin:casting@N (default: builtin:casting)");
    auto* wanted = app.add_option("--analysis", analysis, "run an analysis, such as defect-volume or wall-thickness");
    app.add_option("--threshold", threshold, "grey value from which on the analysis sees material (default: Otsu's)")
        ->needs(wanted);
    app.add_option("--preset", preset, "apply a preset to the table of the layer in front, after the analysis");
    auto* written = app.add_option("--report", report, "write the numbers of the analysis (.csv or .json) and end");
    written->needs(wanted);
    app.add_option("--screenshot", screenshot, "write a picture of the window (PNG) and end");
    app.add_option("--size", size, "size of the window in pixels, as in 1280x860");
    app.add_option("--plug-ins", plugIns,
                   "load the plug-ins of a folder too, besides those that come with the program");
    for (CLI::Option* option : app.get_options([](const CLI::Option* each) { return each->get_expected_max() > 0; })) {
        option->check(isThere);
    }
    written->check(isReport);
    app.set_version_flag("--version", LYS_VERSION);
    try {
        app.parse(argc, argv);
        if (!size.empty() && !parseSize(size, out.size)) {
            throw CLI::ValidationError("--size", "wants WIDTHxHEIGHT, each " + std::to_string(SMALLEST) + " to " +
                                                     std::to_string(LARGEST) + ", as in 1280x860");
        }
        if (!threshold.empty() && !parseThreshold(threshold, out.threshold)) {
            throw CLI::ValidationError("--threshold", "wants a finite number, as in 1200 or 0.5");
        }
    } catch (const CLI::ParseError& end) {
        status = app.exit(end) == 0 ? 0 : 2;
        return false;
    }
    if (!volume.empty()) {
        out.volume = QFile::decodeName(volume.c_str());
    }
    out.analysis = QString::fromLocal8Bit(analysis.c_str());
    out.preset = QString::fromLocal8Bit(preset.c_str());
    out.report = QFile::decodeName(report.c_str());
    out.screenshot = QFile::decodeName(screenshot.c_str());
    out.plugIns = QFile::decodeName(plugIns.c_str());
    return true;
}

}  // namespace workbench
