#include <colortable/model/LyrColorLookupTableSection.h>
#include <colortable/model/LyrColorLookupTable_p.h>
#include <colortable/model/SectionBuilder_p.h>

using Private = LyrColorLookupTable::Private;

namespace {

constexpr float LARGEST = std::numeric_limits<float>::max();

/** Sets a default by writing it; the base's own reset is the fallback. */
template <class Base, class Attr, class T>
bool applyDefault(Attr& attribute, const T& value) {
    const ApplyingDefault applying(attribute);
    return attribute.setValue(value) || attribute.Base::resetData();
}

}  // namespace

Private::PositionListAttr::PositionListAttr() {
    constexpr float ends[] = {-1.0f, 1.0f};
    setResetItems(ends);
    PositionListAttr::resetData();
}

bool Private::PositionListAttr::resetData() {
    const ApplyingDefault applying(*this);
    constexpr float ends[] = {-1.0f, 1.0f};
    return initArray(0, 1, ends) || PositionListOP::resetData();
}

Private::SectionListAttr::SectionListAttr() {
    SectionListAttr::resetData();
}

bool Private::SectionListAttr::resetData() {
    const ApplyingDefault applying(*this);
    const SectionRecipe wanted[] = {
        {Lyr::Constant, &COLOR_BELOW_RANGE, "ColorLookupTable_Section1", true},
        {Lyr::Rainbow, nullptr, "ColorLookupTable_Section2", true},
        {Lyr::Constant, &COLOR_ABOVE_RANGE, "ColorLookupTable_Section3", true},
    };
    LyrObjectRefPtr made[3];
    LyrObjectLink links[3];
    bool complete = true;
    for (int i = 0; i < 3; ++i) {
        made[i] = buildSection(wanted[i]);
        links[i] = LyrObjectLink(made[i].get(), nullptr, -1);
        complete = complete && made[i];
    }
    return (complete && initArray(0, 2, links)) || LyrObjectParentLinkListOP::resetData();
}

Private::ExtensionColorListAttr::ExtensionColorListAttr() {
    ExtensionColorListAttr::resetData();
}

bool Private::ExtensionColorListAttr::resetData() {
    const ApplyingDefault applying(*this);
    return initArray(0, -1, nullptr) || ColorListOP::resetData();
}

Private::ExtensionEnumListAttr::ExtensionEnumListAttr() {
    ExtensionEnumListAttr::resetData();
}

bool Private::ExtensionEnumListAttr::resetData() {
    const ApplyingDefault applying(*this);
    return initArray(0, -1, nullptr) || EnumListOP::resetData();
}

Private::TrueAttr::TrueAttr() {
    setResetValue(1);
    TrueAttr::resetData();
}

bool Private::TrueAttr::resetData() {
    return applyDefault<LyrBooleanOP>(*this, Lyrenum(1));
}

Private::FiniteModeAttr::FiniteModeAttr() {
    setResetValue({0, 0});
    FiniteModeAttr::resetData();
}

bool Private::FiniteModeAttr::resetData() {
    return applyDefault<EnumPairOP>(*this, LyrValuePair<Lyrenum>{0, 0});
}

Private::QuantityAttr::QuantityAttr() {
    setResetValue(Lyr::Length);
    QuantityAttr::resetData();
}

bool Private::QuantityAttr::resetData() {
    return applyDefault<EnumOP>(*this, Lyr::Length);
}

Private::CreationParametersAttr::CreationParametersAttr() {
    setResetValue({0.0f, 0.0f, 0.0f});
    CreationParametersAttr::resetData();
}

bool Private::CreationParametersAttr::resetData() {
    return applyDefault<Vector3OP>(*this, LyrVector3<float>{0.0f, 0.0f, 0.0f});
}

Private::CreationTypeAttr::CreationTypeAttr() {
    setResetValue(Lyr::Rainbow);
    CreationTypeAttr::resetData();
}

bool Private::CreationTypeAttr::resetData() {
    return applyDefault<EnumOP>(*this, Lyr::Rainbow);
}

Private::MaximumRangeAttr::MaximumRangeAttr() {
    setResetValue({-LARGEST, LARGEST});
    MaximumRangeAttr::resetData();
}

bool Private::MaximumRangeAttr::resetData() {
    return applyDefault<FloatPairOP>(*this, LyrValuePair<float>{-LARGEST, LARGEST});
}

Lyrenum Private::registerProperties(LyrColorLookupTable& owner) {
    const struct {
        Lyrenum id;
        LyrProperty* property;
        unsigned int flags;
    } properties[] = {
        {Lyr::PositionList, &positions, LyrFlags::DATA},
        {Lyr::SectionList, &sections, LyrFlags::DATA},
        {Lyr::ExtensionColorList, &extensionColors, LyrFlags::DATA},
        {Lyr::ExtensionEnumList, &extensionEnums, LyrFlags::DATA},
        {Lyr::AutoLabel, &autoLabel, LyrFlags::DATA},
        {Lyr::AutoScale, &autoScale, LyrFlags::DATA},
        {Lyr::FiniteMode, &finiteMode, 0},
        {Lyr::Quantity, &quantity, 0},
        {Lyr::CreationParameters, &creationParameters, LyrFlags::PRESET},
        {Lyr::CreationType, &creationType, LyrFlags::PRESET},
        {Lyr::MaximumRange, &maximumRange, LyrFlags::PRESET},
    };
    bool done = true;
    for (const auto& entry : properties) {
        done = owner.addProperty(entry.id, entry.property) && done;
        entry.property->setFlags(entry.flags, 0);
    }
    done = owner.addAction(Lyr::CreateSmooth, &createSmooth) && done;
    done = owner.addAction(Lyr::CreateStepped, &createStepped) && done;
    done = owner.addAction(Lyr::CreateSphereSegmentStepped, &createSphereSegmentStepped) && done;
    owner.setFlags(LyrFlags::DATA, 0);
    return done ? Lyrenum(1) : Lyr::Failed;
}
