#include "NrrdHeader.h"

#include "Numbers.h"

namespace lys::cli {

namespace {

/** "(0,s,0)": the step along one of several axes. */
std::string direction(std::size_t axis, const std::vector<NrrdAxis>& axes) {
    std::string text = "(";
    for (std::size_t i = 0; i < axes.size(); ++i) {
        text.append(i == 0 ? "" : ",").append(i == axis ? formatNumber(axes[i].spacing) : "0");
    }
    return text + ")";
}

std::string quoted(const std::string& unit) {
    std::string text = "\"";
    for (const char c : unit) {
        text.append(c == '"' || c == '\\' ? "\\" : "").append(1, c);
    }
    return text + "\"";
}

}  // namespace

std::string nrrdHeader(const std::vector<NrrdAxis>& axes, const std::string& unit) {
    std::string sizes, directions, kinds, units, origin;
    for (std::size_t i = 0; i < axes.size(); ++i) {
        sizes += ' ' + std::to_string(axes[i].size);
        directions += ' ' + direction(i, axes);
        kinds += " domain";
        units += ' ' + quoted(unit);
        origin.append(i == 0 ? "" : ",").append(formatNumber(axes[i].origin));
    }
    std::string text = "NRRD0004\ntype: float\ndimension: " + std::to_string(axes.size() + 1) +
                       "\nspace dimension: " + std::to_string(axes.size()) + "\nsizes: 4" + sizes +
                       "\nspace directions: none" + directions + "\nkinds: RGBA-color" + kinds +
                       "\nendian: little\nencoding: raw\n";
    if (!unit.empty()) {
        text += "space units:" + units + '\n';
    }
    return text + "space origin: (" + origin + ")\n\n";
}

}  // namespace lys::cli
