#pragma once

#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrVector2.h>

#include <array>
#include <string>
#include <vector>

namespace lys::cli {

class JsonText;

/** A table as it is told to people and to scripts. */
struct TableDescription {
    static constexpr std::array<const char*, 4> CHANNELS = {"red", "green", "blue", "alpha"};

    struct Section {
        std::string type;
        float from;                                            ///< infinite in the first section
        float to;                                              ///< infinite in the last section
        std::array<std::vector<LyrVector2<float>>, 4> points;  ///< (position, value) for each channel
    };

    explicit TableDescription(const LyrColorLookupTable& table);

    /** Why the table cannot colour anything; empty for a valid one. */
    std::string reasonInvalid() const;
    bool isAscending() const;

    /** Several lines for people. */
    std::string toText(const std::string& name) const;
    /** One JSON object. */
    std::string toJson(const std::string& name) const;
    /** The same as a member of another object; the key is empty for one that stands alone. */
    void addTo(JsonText& json, const char* key, const std::string& name) const;

    std::vector<float> positions;
    std::vector<Section> sections;
    std::array<std::int64_t, 2> finiteMode;  ///< below, above
    std::string quantity;
    std::string creationType;
    std::array<float, 3> creationParameters;
    std::array<float, 2> maximumRange;
    bool autoLabel;
    bool autoScale;
};

}  // namespace lys::cli
