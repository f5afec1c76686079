#include <colortable/ColortableIdentifiers.h>
#include <colortable/LibraryInit.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lys_core/ApplicationPlaceholders.h>

#include <gtest/gtest.h>

#include <xmmintrin.h>

#include <algorithm>
#include <iterator>
#include <string_view>

using LYQCOLORTABLE::LibraryInit;

namespace {

/** Counts errors while it lives. */
struct ErrorCount : LyrError::Listener {
    bool errorEmitted(const LyrError::Message&) override {
        ++count;
        return true;
    }
    int count = 0;
};

int installedPlaceholders() {
    int count = 0;
    for (const char* key : {"value.type", "value.unit"}) {
        count += ApplicationPlaceholders::contains(LyrString::fromUtf8(key)) ? 1 : 0;
    }
    return count;
}

}  // namespace

TEST(LibraryInit, finds_the_classes_registered_when_the_library_was_loaded) {
    for (const char* name : {"LyrColorLookupTable", "LyrColorLookupTable::Section"}) {
        const LyrMetaClass* meta = LyrMetaClass::find(name);
        ASSERT_NE(meta, nullptr) << name;
        EXPECT_STREQ(meta->getModule(), "lys_colortable");
        EXPECT_STREQ(meta->getParent()->getClassName(), "LyrObject");
        EXPECT_TRUE(LyrObjectRefPtr(name, 1)) << name;
    }
}

TEST(LibraryInit, has_no_classes_but_those_of_the_product) {
    const char* const names[] = {"LyqColorLookupTableAnnotation",
                                 "LyqColorLookupTableRenderSettingsEditorWidget",
                                 "LyrColorLookupTable",
                                 "LyrColorLookupTable::Section",
                                 "LyrColorLookupTableAnnotationContainer",
                                 "LyrColorLookupTableAnnotationHandler",
                                 "LyrColorLookupTableRenderObject",
                                 "LyrColorLookupTableRenderPlugin",
                                 "LyrColorLookupTableRenderSettings",
                                 "LyqPresetColortableHandler",
                                 "LyrPresetColortableProxyObject"};
    const auto registered = std::count_if(std::begin(names), std::end(names), [](const char* name) {
        const LyrMetaClass* meta = LyrMetaClass::find(name);
        return meta && std::string_view(meta->getModule()) == "lys_colortable";
    });
    EXPECT_EQ(LyrMetaClass::moduleClassCount("lys_colortable"), registered);
}

TEST(LibraryInit, installs_its_placeholders_for_the_first_user_and_takes_them_back_with_the_last) {
    const ErrorCount errors;
    const int registered = LyrIdentifierRegistry::moduleRegistrationCount("lys_colortable");
    EXPECT_EQ(installedPlaceholders(), 0);
    for (int round = 0; round < 2; ++round) {
        LibraryInit::init();
        EXPECT_EQ(installedPlaceholders(), 2);
        LibraryInit::init();
        LibraryInit::cleanup();
        EXPECT_EQ(installedPlaceholders(), 2);
        LibraryInit::cleanup();
        EXPECT_EQ(installedPlaceholders(), 0);
    }
    EXPECT_EQ(errors.count, 0);
    EXPECT_EQ(LyrIdentifierRegistry::moduleRegistrationCount("lys_colortable"), registered);
}

TEST(LibraryInit, leaves_the_placeholders_of_other_modules_alone) {
    const LyrString key = LyrString::fromUtf8("another.key");
    const auto resolver = [](const LyrString&, const LyrObject*) { return LyrString(); };
    ASSERT_TRUE(
        ApplicationPlaceholders::add(key, LyrString::fromUtf8("Another"), LyrString(), resolver, "another_module"));
    LibraryInit::init();
    LibraryInit::cleanup();
    EXPECT_TRUE(ApplicationPlaceholders::contains(key));
    EXPECT_EQ(ApplicationPlaceholders::removeAllFrom("another_module"), 1);
}

TEST(LibraryInit, counts_below_zero_and_installs_only_when_the_count_becomes_1) {
    const ErrorCount errors;
    LibraryInit::cleanup();
    LibraryInit::cleanup();
    EXPECT_EQ(installedPlaceholders(), 0);
    LibraryInit::init();
    EXPECT_EQ(installedPlaceholders(), 0);
    LibraryInit::init();  // balanced again: the other cases share the count
    EXPECT_EQ(installedPlaceholders(), 0);
    LibraryInit::init();
    EXPECT_EQ(installedPlaceholders(), 2);
    LibraryInit::cleanup();
    EXPECT_EQ(installedPlaceholders(), 0);
    EXPECT_EQ(errors.count, 0);
}

TEST(LibraryInit, of_another_instance_registers_nothing_again) {
    const int registered = LyrIdentifierRegistry::moduleRegistrationCount("lys_colortable");
    {
        const LibraryInit another;
        EXPECT_EQ(LyrIdentifierRegistry::moduleRegistrationCount("lys_colortable"), registered);
    }
    EXPECT_EQ(LyrIdentifierRegistry::moduleRegistrationCount("lys_colortable"), registered);
}

TEST(LibraryInit, leaves_small_numbers_as_they_are) {
    // Flush-to-zero (0x8000) and denormals-are-zero (0x0040), set by a library built for speed, would change colours.
    EXPECT_EQ(_mm_getcsr() & 0x8040u, 0u);
}
