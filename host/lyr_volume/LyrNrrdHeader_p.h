#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <lyr_volume/LyrReadContext_p.h>

namespace lyrvolume {

/** The fields of a NRRD header as written, and where its data begin. */
struct NrrdHeader {
    std::string path;
    std::map<std::string, std::string> fields;  ///< by lower-case name; "datafile" and the like under their main name
    std::vector<std::string> listedFiles;       ///< behind "data file: LIST"
    std::uint64_t dataPlace = 0;                ///< behind the empty line
    bool hasEnd = false;                        ///< the empty line is there
    bool lastLineEnded = true;

    std::optional<std::string_view> field(const std::string& name) const;
};

/** One axis of the stored array, fastest first. */
struct NrrdAxis {
    std::uint64_t size = 0;
    std::string kind;                              ///< lower case, empty where none is given
    std::optional<std::vector<double>> direction;  ///< of "space directions"; nothing for "none" or no such field
    std::optional<double> spacing;
    std::string unit;
    bool directionIsNone = false;
};

bool readNrrdHeader(const std::string& path, NrrdHeader& header, ReadContext& context);

/** The axes with all that the header says about each. */
bool readNrrdAxes(const NrrdHeader& header, std::vector<NrrdAxis>& axes, ReadContext& context);

/** The vectors of "(1,0,0) none (0, 1, 0)", nothing for "none"; false when malformed. */
bool parseNrrdVectors(std::string_view text, std::vector<std::optional<std::vector<double>>>& vectors);

/** The texts between quotation marks. */
std::vector<std::string> parseNrrdQuoted(std::string_view text);

}  // namespace lyrvolume
