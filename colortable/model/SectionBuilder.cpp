#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/SectionBuilder_p.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>

namespace {

bool setPoint(LyrObject* section, Lyrenum channel, float value) {
    const LyrVector2<float> point{0.0f, value};
    const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrVector2<float>>> points(section, channel);
    return points && points->initArray(0, 0, &point);
}

bool setConstantPoints(LyrObject* section, const LyrRGBA<float>& color) {
    return setPoint(section, Lyr::PointListRed, color.red) && setPoint(section, Lyr::PointListGreen, color.green) &&
           setPoint(section, Lyr::PointListBlue, color.blue) && setPoint(section, Lyr::PointListAlpha, color.alpha);
}

}  // namespace

LyrObjectRefPtr buildSection(const SectionRecipe& recipe) {
    LyrObjectRefPtr section("LyrColorLookupTable::Section", Lyr::DocumentScope);
    if (!section) {
        return section;
    }
    // While it is being filled the section is not yet part of the document, so nothing is recorded for undo.
    const LyrLocalClassFlags filling(section.get(), LyrFlags::DOCUMENT, 0);
    const bool named = !recipe.nameTemplate || section->setNameTemplate(recipe.nameTemplate);
    if (recipe.prepareRoles) {
        section->prepareRoles();
    }
    const bool filled = lyrSetValue(section.get(), Lyr::Type, recipe.type) &&
                        (!recipe.color || setConstantPoints(section.get(), *recipe.color));
    return named && filled ? section : LyrObjectRefPtr();
}
