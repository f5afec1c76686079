#include <EveryProperty.h>

namespace {

constexpr const char* CLASSES[] = {"LyrColorLookupTable",
                                   "LyrColorLookupTable::Section",
                                   "LyrColorLookupTableRenderSettings",
                                   "LyrColorLookupTableAnnotationContainer",
                                   "LyrColorLookupTableRenderObject",
                                   "LyrPresetColortableProxyObject"};
// Handlers of annotations and the plug-in that renders them have no properties of their own.
constexpr const char* WITHOUT_PROPERTIES[] = {"LyrColorLookupTableAnnotationHandler",
                                              "LyrColorLookupTableRenderPlugin"};
// Widgets, a preset handler and annotations in views, which no file may name.
constexpr const char* NOT_STORED[] = {"LyqColorLookupTableRenderSettingsEditorWidget", "LyqPresetColortableHandler",
                                      "LyqColorLookupTableAnnotation"};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Class, EveryProperty, testing::ValuesIn(CLASSES), nameOfClass);

TEST(EveryClass, of_the_module_is_among_those_whose_properties_are_tested) {
    int known = 0;
    for (const char* name : CLASSES) {
        const LyrObjectRefPtr object(name, Lyr::DocumentScope);
        ASSERT_TRUE(object) << name;
        EXPECT_TRUE(LyrMetaClass::find(name)->isStorable()) << name;
        ++known;
    }
    for (const char* name : WITHOUT_PROPERTIES) {
        ASSERT_TRUE(LyrMetaClass::find(name)) << name;
        const LyrObjectRefPtr object(name, Lyr::DocumentScope);
        EXPECT_EQ(object.get()->getPropertyCount(), 0) << name;
        ++known;
    }
    for (const char* name : NOT_STORED) {
        ASSERT_TRUE(LyrMetaClass::find(name)) << name;
        EXPECT_FALSE(LyrMetaClass::find(name)->isStorable()) << name;
        ++known;
    }
    EXPECT_EQ(LyrMetaClass::moduleClassCount("lys_colortable"), known) << "name a new class in one of the lists above";
}
