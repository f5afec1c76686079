#pragma once

// The classes that object files may hold, by how EveryProperty covers them: each is in one list, which a case in
// tests/analysis sees to.

namespace storedclasses {

inline constexpr const char* HOST[] = {"LyrCamera", "LyrDisplayUnits"};
inline constexpr const char* COLORTABLE[] = {"LyrColorLookupTable",
                                             "LyrColorLookupTable::Section",
                                             "LyrColorLookupTableRenderSettings",
                                             "LyrColorLookupTableAnnotationContainer",
                                             "LyrColorLookupTableRenderObject",
                                             "LyrPresetColortableProxyObject"};
inline constexpr const char* ANALYSIS[] = {"LyrWallThicknessColorLookupTableRenderSettings",
                                           "LyrDefectDetectionColorLookupTableRenderSettings"};
/** The root, and the handlers of annotations. */
inline constexpr const char* WITHOUT_PROPERTIES[] = {"LyrObject", "LyrColorLookupTableAnnotationHandler",
                                                     "LyrLayerAnnotationHandler"};

}  // namespace storedclasses
