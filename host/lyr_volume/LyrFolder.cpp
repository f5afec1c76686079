#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>

#include <lyr_volume/LyrFileKind_p.h>
#include <lyr_volume/LyrFolder_p.h>
#include <lyr_volume/LyrFormats_p.h>
#include <lyr_volume/LyrHeaderText_p.h>
#include <lyr_volume/LyrInputFile_p.h>

namespace lyrvolume {
namespace {

namespace fs = std::filesystem;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/** The digits at the start, without leading zeros. */
std::string_view leadingNumber(std::string_view text, std::size_t& length) {
    length = 0;
    while (length < text.size() && isDigit(text[length])) {
        ++length;
    }
    std::size_t zeros = 0;
    while (zeros + 1 < length && text[zeros] == '0') {
        ++zeros;
    }
    return text.substr(zeros, length - zeros);
}

struct Candidate {
    std::string path;
    FileKind kind = FileKind::Unknown;
};

/** The visible regular files, in natural order of their names. */
bool listFiles(const std::string& path, std::vector<Candidate>& files, ReadContext& context) {
    std::error_code error;
    for (fs::directory_iterator it(path, error), end; !error && it != end; it.increment(error)) {
        std::error_code ignored;
        const std::string name = it->path().filename().string();
        if (it->is_regular_file(ignored) && name.front() != '.') {
            files.push_back({it->path().string(), FileKind::Unknown});
        }
    }
    if (error) {
        return context.fail(path, "the folder cannot be read: " + error.message() + "; check its permissions");
    }
    std::sort(files.begin(), files.end(),
              [](const Candidate& a, const Candidate& b) { return naturalLess(a.path, b.path); });
    for (Candidate& file : files) {
        file.kind = contentKind(file.path);
    }
    return true;
}

std::size_t countOf(const std::vector<Candidate>& files, FileKind kind) {
    return static_cast<std::size_t>(
        std::count_if(files.begin(), files.end(), [kind](const Candidate& file) { return file.kind == kind; }));
}

std::string endingOf(const std::string& path) {
    return lowerCase(fs::path(path).extension().string());
}

bool isTiffName(const std::string& path) {
    return endingOf(path) == ".tif" || endingOf(path) == ".tiff";
}
bool isDicomName(const std::string& path) {
    return endingOf(path) == ".dcm" || endingOf(path) == ".ima";
}

/** A file of no known content that is most likely a damaged slice: it has the slices' ending, or, where they have none,
 *  begins like the empty preamble of DICOM or is empty. */
bool isDamagedSlice(const Candidate& file, FileKind kind, const std::string& ending) {
    if (file.kind != FileKind::Unknown) {
        return false;
    }
    if (kind == FileKind::Tiff) {
        return isTiffName(file.path);
    }
    if (isDicomName(file.path) || (!ending.empty() && endingOf(file.path) == ending)) {
        return true;
    }
    LyrVolumeReader::Report ignored;
    const LyrVolumeReader::Progress none;
    ReadContext quiet(ignored, none);
    InputFile input;
    unsigned char first = 0;
    const bool empty = input.open(file.path, quiet) && input.readAt(0, {&first, 1}) == 0;
    return ending.empty() && endingOf(file.path).empty() && (empty || first == 0);
}

/** The slices' paths; the others are named in a warning. */
std::vector<std::string> chooseSlices(const std::string& folder, const std::vector<Candidate>& files, FileKind kind,
                                      ReadContext& context) {
    const auto known = std::find_if(files.begin(), files.end(), [kind](const Candidate& f) { return f.kind == kind; });
    const std::string ending = known == files.end() ? std::string("?") : endingOf(known->path);
    std::vector<std::string> slices;
    std::vector<std::string> others;
    for (const Candidate& file : files) {
        const bool slice = file.kind == kind || isDamagedSlice(file, kind, ending);
        (slice ? slices : others).push_back(file.path);
    }
    if (!others.empty()) {
        context.warn(folder, std::to_string(others.size()) + " other files were left out, the first is " +
                                 fs::path(others[0]).filename().string());
    }
    return slices;
}

/** A name taken apart around its last number. */
struct NumberedName {
    std::string before;
    std::string after;
    std::int64_t number = 0;
};

std::optional<NumberedName> takeApart(const std::string& path) {
    const std::string name = fs::path(path).filename().string();
    const std::string stem = fs::path(path).stem().string();
    std::size_t end = stem.size();
    while (end > 0 && !isDigit(stem[end - 1])) {
        --end;
    }
    std::size_t begin = end;
    while (begin > 0 && isDigit(stem[begin - 1])) {
        --begin;
    }
    const auto number = parseAs<std::int64_t>(std::string_view(stem).substr(begin, end - begin));
    return number ? std::optional(NumberedName{name.substr(0, begin), name.substr(end), *number}) : std::nullopt;
}

/** Warns where the numbers in the names take a larger step than elsewhere. */
void warnOfGaps(const std::string& folder, const std::vector<std::string>& paths, ReadContext& context) {
    std::vector<NumberedName> names;
    for (const std::string& path : paths) {
        const auto name = takeApart(path);
        if (!name || (!names.empty() && (name->before != names[0].before || name->after != names[0].after))) {
            return;  // not one numbered row
        }
        names.push_back(*name);
    }
    std::int64_t usual = 0;
    for (std::size_t i = 1; i < names.size(); ++i) {
        const std::int64_t step = names[i].number - names[i - 1].number;
        usual = i == 1 ? step : std::min(usual, step);
    }
    for (std::size_t i = 1; usual > 0 && i < names.size(); ++i) {
        if (names[i].number - names[i - 1].number > usual) {
            context.warn(folder, "slices seem to be missing between " + fs::path(paths[i - 1]).filename().string() +
                                     " and " + fs::path(paths[i]).filename().string());
        }
    }
}

}  // namespace

bool naturalLess(std::string_view a, std::string_view b) {
    std::size_t i = 0;
    std::size_t k = 0;
    while (i < a.size() && k < b.size()) {
        if (isDigit(a[i]) && isDigit(b[k])) {
            std::size_t lengthA = 0;
            std::size_t lengthB = 0;
            const std::string_view numberA = leadingNumber(a.substr(i), lengthA);
            const std::string_view numberB = leadingNumber(b.substr(k), lengthB);
            if (numberA != numberB) {
                return numberA.size() != numberB.size() ? numberA.size() < numberB.size() : numberA < numberB;
            }
            i += lengthA;
            k += lengthB;
        } else if (a[i] != b[k]) {
            return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[k]);
        } else {
            ++i;
            ++k;
        }
    }
    const std::size_t restA = a.size() - i;
    const std::size_t restB = b.size() - k;
    return restA != restB ? restA < restB : a < b;  // "s01" and "s1" differ only in zeros: any fixed order
}

bool readFolder(const std::string& path, Draft& draft, ReadContext& context) {
    std::vector<Candidate> files;
    if (!listFiles(path, files, context)) {
        return false;
    }
    const auto named = [&](bool (*test)(const std::string&)) {
        return std::any_of(files.begin(), files.end(), [&](const Candidate& file) { return test(file.path); });
    };
    if (countOf(files, FileKind::Dicom) > 0 || (countOf(files, FileKind::Tiff) == 0 && named(isDicomName))) {
        return readDicom(path, chooseSlices(path, files, FileKind::Dicom, context), draft, context);
    }
    if (countOf(files, FileKind::Tiff) > 0 || named(isTiffName)) {
        const std::vector<std::string> slices = chooseSlices(path, files, FileKind::Tiff, context);
        warnOfGaps(path, slices, context);
        return readTiff(slices, draft, context);
    }
    return context.fail(path,
                        "the folder holds no TIFF or DICOM slices (folders in it are not searched); give the folder "
                        "with the slices or a file");
}

}  // namespace lyrvolume
