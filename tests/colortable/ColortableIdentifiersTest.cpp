#include <colortable/ColortableIdentifiers.h>
#include <lyr_core/LyrRegisteredEnum.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>
#include <vector>

namespace {

constexpr const char* MODULE = "lys_colortable";

/** The exported names in the order of their registration. */
constexpr const char* NAMES[] = {"ColorLookupTable",
                                 "SectionList",
                                 "PositionList",
                                 "ExtensionColorList",
                                 "ExtensionEnumList",
                                 "PointListRed",
                                 "PointListGreen",
                                 "PointListBlue",
                                 "PointListAlpha",
                                 "Full",
                                 "Rainbow",
                                 "InvertedRainbow",
                                 "BlackGreenBlueRed",
                                 "Custom",
                                 "Continue",
                                 "HueCycle",
                                 "InvertedHueCycle",
                                 "ColorLookupTableRenderSettings",
                                 "ColorLookupTableAnnotationContainer",
                                 "ColorLookupTableAnnotationGroup",
                                 "AnnotationHandlerList",
                                 "OutlineColor",
                                 "Font",
                                 "HasOutline",
                                 "Thickness",
                                 "TextPosition",
                                 "TextAlignment",
                                 "AutoLabel",
                                 "AutoScale",
                                 "ForceScaleColorLookupTable",
                                 "FiniteMode",
                                 "AbsoluteMode",
                                 "ScaleColorLookupTable",
                                 "CreateSmooth",
                                 "CreateStepped",
                                 "CreateSphereSegmentStepped",
                                 "CreationParameters",
                                 "CreationType",
                                 "ReferenceRange",
                                 "MaximumRange",
                                 "Percent"};

/** The exported constants in the same order. */
std::vector<Lyrenum> constants() {
    return {Lyr::ColorLookupTable,
            Lyr::SectionList,
            Lyr::PositionList,
            Lyr::ExtensionColorList,
            Lyr::ExtensionEnumList,
            Lyr::PointListRed,
            Lyr::PointListGreen,
            Lyr::PointListBlue,
            Lyr::PointListAlpha,
            Lyr::Full,
            Lyr::Rainbow,
            Lyr::InvertedRainbow,
            Lyr::BlackGreenBlueRed,
            Lyr::Custom,
            Lyr::Continue,
            Lyr::HueCycle,
            Lyr::InvertedHueCycle,
            Lyr::ColorLookupTableRenderSettings,
            Lyr::ColorLookupTableAnnotationContainer,
            Lyr::ColorLookupTableAnnotationGroup,
            Lyr::AnnotationHandlerList,
            Lyr::OutlineColor,
            Lyr::Font,
            Lyr::HasOutline,
            Lyr::Thickness,
            Lyr::TextPosition,
            Lyr::TextAlignment,
            Lyr::AutoLabel,
            Lyr::AutoScale,
            Lyr::ForceScaleColorLookupTable,
            Lyr::FiniteMode,
            Lyr::AbsoluteMode,
            Lyr::ScaleColorLookupTable,
            Lyr::CreateSmooth,
            Lyr::CreateStepped,
            Lyr::CreateSphereSegmentStepped,
            Lyr::CreationParameters,
            Lyr::CreationType,
            Lyr::ReferenceRange,
            Lyr::MaximumRange,
            Lyr::Percent};
}

}  // namespace

TEST(ColortableIdentifiers, are_41_names_bound_to_the_constants_of_the_same_name) {
    const std::vector<Lyrenum> bound = constants();
    ASSERT_EQ(std::size(NAMES), 41u);
    ASSERT_EQ(bound.size(), 41u);
    std::set<int> numbers;
    for (std::size_t i = 0; i < std::size(NAMES); ++i) {
        EXPECT_NE(int(bound[i]), -1) << NAMES[i];
        EXPECT_NE(int(bound[i]), 0) << NAMES[i];
        EXPECT_EQ(int(bound[i]), LyrIdentifierRegistry::find(NAMES[i])) << NAMES[i];
        EXPECT_EQ(bound[i].getName(), NAMES[i]);
        numbers.insert(bound[i]);
    }
    EXPECT_EQ(numbers.size(), 41u);
}

TEST(ColortableIdentifiers, are_registered_in_their_order) {
    // New names get ascending numbers. "Percent" has its number from the host.
    const std::vector<Lyrenum> bound = constants();
    for (std::size_t i = 1; i + 1 < bound.size(); ++i) {
        EXPECT_LT(int(bound[i - 1]), int(bound[i])) << NAMES[i];
    }
#define STRING(name) #name,
    constexpr std::string_view listed[] = {LYS_COLORTABLE_IDENTIFIERS(STRING)};
#undef STRING
    EXPECT_TRUE(std::equal(std::begin(NAMES), std::end(NAMES), std::begin(listed), std::end(listed)));
}

TEST(ColortableIdentifiers, stay_out_of_the_numbers_that_the_host_gives) {
    for (const Lyrenum number : constants()) {
        const bool hostNumber = int(number) >= 204800000 && int(number) < 204800000 + 10000;
        EXPECT_EQ(hostNumber, number == Lyr::Percent) << number.getName();
    }
}

TEST(ColortableIdentifiers, are_registered_once_each_and_the_local_names_as_often_as_sources_use_them) {
    EXPECT_EQ(LyrIdentifierRegistry::moduleRegistrationCount(MODULE), 41 + 6);
    for (const char* name : NAMES) {
        const int others = std::string_view(name) == "Percent" ? 1 : 0;
        EXPECT_EQ(LyrIdentifierRegistry::registrationCount(name), 1 + others) << name;
    }
    EXPECT_EQ(LyrIdentifierRegistry::registrationCount("DescriptionTemplate"), 2);
    EXPECT_EQ(LyrIdentifierRegistry::registrationCount("AnnotationList"), 2);
    EXPECT_EQ(LyrIdentifierRegistry::registrationCount("ColorLookupTableRenderPlugin"), 1);
    EXPECT_EQ(LyrIdentifierRegistry::registrationCount("Degree"), 1 + 1);  // the host knows this unit as well
}

TEST(ColortableIdentifiers, are_not_registered_again_by_further_calls) {
    const int before = LyrIdentifierRegistry::moduleRegistrationCount(MODULE);
    EXPECT_TRUE(__lyqcolortable_enum_init());
    EXPECT_TRUE(__lyqcolortable_enum_init());
    EXPECT_EQ(LyrIdentifierRegistry::moduleRegistrationCount(MODULE), before);
}

TEST(ColortableIdentifiers, survive_another_module_that_registers_the_same_names_and_goes) {
    for (const char* name : {"Font", "Percent", "Rainbow", "DescriptionTemplate"}) {
        const int number = LyrIdentifierRegistry::find(name);
        const int count = LyrIdentifierRegistry::registrationCount(name);
        {
            const LyrRegisteredEnum other(name, false, "another_module");
            EXPECT_EQ(int(other.get()), number);
            EXPECT_EQ(LyrIdentifierRegistry::registrationCount(name), count + 1);
        }
        EXPECT_EQ(LyrIdentifierRegistry::find(name), number);
        EXPECT_EQ(LyrIdentifierRegistry::registrationCount(name), count);
    }
}

TEST(ColortableIdentifiers, share_the_number_of_a_name_that_the_host_knows) {
    EXPECT_EQ(int(Lyr::Percent), 204801100);
    EXPECT_EQ(LyrIdentifierRegistry::find("Degree"), 204801101);
}

TEST(ColortableIdentifiers, do_not_name_the_host_s_own_identifiers) {
    for (const char* name : {"Constant", "Gradient", "Type", "Quantity", "NameTemplate"}) {
        EXPECT_EQ(LyrIdentifierRegistry::registrationCount(name), 1) << name;
    }
}
