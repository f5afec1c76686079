#include "ObjectTable.h"

#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTableSection.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrPropertyPtr.h>

using lys::eval::Rule;
using lys::eval::SectionData;

namespace {

using Point = LyrVector2<float>;

template <class T>
bool setList(LyrObject& object, Lyrenum id, const std::vector<T>& items) {
    const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<T>> list(&object, id);
    return list && list->initArray(0, static_cast<long long>(items.size()) - 1, items.data());
}

Lyrenum typeOf(Rule rule) {
    switch (rule) {
        case Rule::Constant:
            return Lyr::Constant;
        case Rule::Gradient:
            return Lyr::Gradient;
        case Rule::Rainbow:
            return Lyr::Rainbow;
        case Rule::InvertedRainbow:
            return Lyr::InvertedRainbow;
        case Rule::Continue:
            return Lyr::Continue;
        case Rule::BlackGreenBlueRed:
            return Lyr::BlackGreenBlueRed;
        case Rule::HueCycle:
            return Lyr::HueCycle;
        default:
            return Lyr::Custom;
    }
}

bool setSection(const SectionData& data, LyrObject& section) {
    const Lyrenum channels[] = {Lyr::PointListRed, Lyr::PointListGreen, Lyr::PointListBlue, Lyr::PointListAlpha};
    bool ok = lyrSetValue(&section, Lyr::Type, typeOf(data.rule));
    for (int c = 0; c < lys::eval::channelCount; ++c) {
        if (data.has[c])
            ok = setList<Point>(section, channels[c], {{0.0f, data.first[c]}, {1.0f, data.last[c]}}) && ok;
    }
    return ok;
}

}  // namespace

ObjectTable::ObjectTable(const BenchTable& table) : held_("LyrColorLookupTable", Lyr::DocumentScope) {
    if (!held_)
        return;
    complete_ = true;
    std::vector<LyrObjectLink> links;
    for (const SectionData& data : table.sections) {
        auto* section = new LyrColorLookupTable::Section;
        complete_ = setSection(data, *section) && complete_;
        links.emplace_back(section, nullptr, -1);
    }
    complete_ = setList(*held_.get(), Lyr::PositionList, table.positions) && complete_;
    complete_ = setList(*held_.get(), Lyr::SectionList, links) && complete_;
}

const LyrColorLookupTable& ObjectTable::object() const {
    return static_cast<const LyrColorLookupTable&>(*held_.get());
}
