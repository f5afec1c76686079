#include <lyr_core/LyrString.h>
#include <lys_core/PresetFileName_p.h>
#include <lys_core/PresetIndex_p.h>

#include <algorithm>
#include <cctype>
#include <string_view>
#include <utility>

#include "fuzz/FuzzTargets.h"

namespace {

/** One byte short of what common file systems allow, as a saver may need room for an ending of its own. */
constexpr std::size_t LONGEST_FILE_NAME = 254;

using Halves = std::pair<std::string, std::string>;

/** What stands before and behind the first line break. */
Halves halvesOf(fuzz::Bytes bytes) {
    const std::string text = fuzz::textOf(bytes);
    const std::size_t split = std::min(text.find('\n'), text.size());
    return {text.substr(0, split), text.substr(std::min(split + 1, text.size()))};
}

/** UTF-8 by the table of well-formed sequences: no overlong forms, no surrogates, nothing beyond 10FFFF. */
bool isWellFormed(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t more = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        if ((lead >= 0x80 && lead < 0xC2) || lead > 0xF4 || i + more >= text.size()) {
            return false;
        }
        for (std::size_t k = 1; k <= more; ++k) {
            const auto byte = static_cast<unsigned char>(text[i + k]);
            const unsigned lowest = k > 1 ? 0x80 : lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
            const unsigned highest = k > 1 ? 0xBF : lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
            if (byte < lowest || byte > highest) {
                return false;
            }
        }
        i += more + 1;
    }
    return true;
}

bool mayBeName(std::string_view name) {
    return !name.empty() && name.size() <= 4096 && name.find('\0') == std::string_view::npos && isWellFormed(name) &&
           !name.starts_with("\xEF\xBB\xBF");
}

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

/** For every text, also one that is refused as a name. */
std::string checkFileName(const std::string& name) {
    constexpr std::string_view ending = ".json";
    const std::string file = lys::presets::fileNameOf(LyrString(name));
    fuzz::require(file.size() > ending.size() && file.ends_with(ending), "a preset's file has a name and its ending");
    fuzz::require(file.size() <= LONGEST_FILE_NAME, "a file name is short enough for every file system");
    fuzz::require(name.empty() || (file[0] != '.' && file[0] != ' ' && file[0] != '-'),
                  "a file is not hidden and is no option");
    fuzz::require(std::all_of(file.begin(), file.end(),
                              [](unsigned char c) {
                                  return c < 0x80 && (std::isalnum(c) || std::string_view(" _-.%~").find(char(c)) !=
                                                                             std::string_view::npos);
                              }),
                  "a file stays in its folder, on every file system");
    return file;
}

bool checkName(const std::string& name) {
    const bool refused = !lys::presets::checkName(LyrString(name)).isNull();
    fuzz::require(refused != mayBeName(name), "what is text of a fitting length is a name, and nothing else");
    const std::string file = checkFileName(name);
    const LyrString told = lys::presets::nameOfFile(file);
    fuzz::require(!told.isEmpty(), "a file tells of some name");
    if (!refused && file.find('~') == std::string::npos) {
        fuzz::require(told.view() == name, "a name that its file holds whole is told back");
    }
    return !refused;
}

}  // namespace

/** Two names, apart by the first line break. */
fuzz::Accepted fuzz::presetNames(Bytes bytes) {
    const auto [one, other] = halvesOf(bytes);
    const bool taken = checkName(one);
    const bool otherTaken = checkName(other);
    // By letter case as well: there are file systems that do not tell it apart.
    const bool sameFile =
        lowered(lys::presets::fileNameOf(LyrString(one))) == lowered(lys::presets::fileNameOf(LyrString(other)));
    require(sameFile == (one == other), "two names give two files");
    // Whatever a file is called that somebody put there.
    const LyrString told = lys::presets::nameOfFile(textOf(bytes));
    require(told.size() <= bytes.size(), "a file's name tells no more than it holds");
    return bitIf(taken, 0) | bitIf(otherTaken, 1);
}

/** A file of presets: its name, a line break, its content. */
fuzz::Accepted fuzz::presetFile(Bytes bytes) {
    const auto [path, content] = halvesOf(bytes);
    const PresetHeader header = PresetHeader::parse(path, content);
    require(!header.carriesName || !header.problem.isNull() || mayBeName(header.name.view()),
            "a name that a file carries is one, or told to be none");
    const bool named = header.carriesName && header.problem.isNull();
    const LyrString name("fern \"\xC3\xA9\"\\");
    std::string renamed = content;
    if (!lysInsertPresetName(renamed, name)) {
        require(renamed == content, "a file that cannot be named stays as it is");
        return bitIf(named, 0);
    }
    const PresetHeader now = PresetHeader::parse(path, renamed);
    require(now.carriesName && now.name == name && now.problem.isNull(), "a file that was named carries that name");
    // Damage may lie in the name alone, and is gone with it.
    require(!header.problem.isNull() ||
                (now.className == header.className && now.baseName == header.baseName && now.isNewer == header.isNewer),
            "naming a file changes nothing else");
    return bitIf(named, 0) | bitIf(true, 1);
}
