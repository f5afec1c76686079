#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LegendPlaceholders_p.h>
#include <lyr_core/LyrI18n.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObject.h>
#include <lys_core/ApplicationPlaceholders.h>

#include <QtGlobal>

namespace {

/** The settings classes of other modules whose values have a type, tested in this order. */
struct ValueType {
    const char* className;
    const char* text;
};

constexpr ValueType VALUE_TYPES[] = {
    {"LyrWallThicknessColorLookupTableRenderSettings", QT_TRANSLATE_NOOP("Placeholder", "Wall thickness")},
    {"LyrVarianceComparisonColorLookupTableRenderSettings", QT_TRANSLATE_NOOP("Placeholder", "Variance")},
    {"LyrMatchingColorLookupTableRenderSettings", QT_TRANSLATE_NOOP("Placeholder", "Fitpoint deviation")},
    {"LyrDefectDetectionColorLookupTableRenderSettings", QT_TRANSLATE_NOOP("Placeholder", "Defect volume")},
};

constexpr const char* CONTEXT = "Placeholder";

const ValueType* findType(const LyrObject* object) {
    for (const ValueType& type : VALUE_TYPES) {
        if (object && object->getMetaClass().isOfType(type.className)) {
            return &type;
        }
    }
    return nullptr;
}

LyrString resolveType(const LyrString&, const LyrObject* object) {
    const ValueType* type = findType(object);
    return type ? LyrI18n::translate(CONTEXT, type->text) : LyrString();
}

/** The legend puts the unit's abbreviation in for "%l" when it draws the caption. */
LyrString resolveUnit(const LyrString&, const LyrObject* object) {
    return findType(object) ? LyrString::fromUtf8("[%l]") : LyrString();
}

bool add(const char* key, const char* name, ApplicationPlaceholders::Resolver resolver) {
    return ApplicationPlaceholders::add(LyrString::fromUtf8(key), LyrI18n::translate(CONTEXT, name), LyrString(),
                                        resolver, LYS_COLORTABLE_MODULE);
}

}  // namespace

bool lysAddLegendPlaceholders() {
    const bool type = add("value.type", QT_TRANSLATE_NOOP("Placeholder", "Value type"), resolveType);
    const bool unit = add("value.unit", QT_TRANSLATE_NOOP("Placeholder", "Value unit"), resolveUnit);
    return type && unit;
}
