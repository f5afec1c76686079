#include <EveryProperty.h>
#include <lys_core/LyrApplicationObject.h>

namespace {

// Known as soon as somebody asks for it.
[[maybe_unused]] const LyrMetaClass& sDisplayUnits = LyrDisplayUnits::metaClass();

}  // namespace

INSTANTIATE_TEST_SUITE_P(Class, EveryProperty,
                         testing::Values("LyrWallThicknessColorLookupTableRenderSettings",
                                         "LyrDefectDetectionColorLookupTableRenderSettings", "LyrDisplayUnits"),
                         nameOfClass);
