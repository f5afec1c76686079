#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrRoleManager.h>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "ModelTools.h"

using namespace model;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr float LARGEST = 3.40282346638528859811704183484516925e+38f;
constexpr int MODULE_ROLE = 204899999;

template <class T>
LyrSingleValuePropertyIF<T>* single(LyrObject& object, Lyrenum id) {
    return LyrSingleValuePropertyIF<T>::getInterface(object.getProperty(id));
}

/** What a section looked like when it took on a role. */
struct SeenSection {
    unsigned int flags;
    std::string name;
    int scope;
    std::size_t redPoints;
};

class RoleWatch : public LyrObject::RoleHook {
public:
    RoleWatch() {
        LyrObject::RoleManager::addRole(MODULE_ROLE);
        LyrObject::RoleManager::addDefaultRole(Section::metaClass(), MODULE_ROLE);
        LyrObject::RoleManager::addHook(MODULE_ROLE, this);
    }
    ~RoleWatch() override {
        LyrObject::RoleManager::removeHook(MODULE_ROLE, this);
        LyrObject::RoleManager::removeDefaultRole(Section::metaClass(), MODULE_ROLE);
        LyrObject::RoleManager::removeRole(MODULE_ROLE);
    }
    bool enterRoleHook(const LyrObjectLink& object) override {
        LyrObject* section = object.getLink();
        entered.push_back({section->getFlags(), section->getNameTemplate(), int(section->getScope()),
                           listOf<Point>(*section, Lyr::PointListRed).size()});
        return true;
    }
    void leaveRoleHook(const LyrObjectLink&) override { ++left; }
    std::vector<SeenSection> entered;
    int left = 0;
};

/** Watches the protected flags of a property while it changes. */
class FlagWatch : public LyrProperty::Extension {
public:
    void propertyHasChangedHook() override { seen.push_back(getProperty()->getProtectedFlags()); }
    std::vector<unsigned int> seen;
};

void expectDefaultSections(const LyrObject& table) {
    struct Wanted {
        const char* name;
        int type;
        std::vector<Point> red, green, blue, alpha;
    };
    const Wanted wanted[] = {
        {"ColorLookupTable_Section1", 204800085, {{0, 0.6f}}, {{0, 0}}, {{0, 1}}, {{0, 1}}},
        {"ColorLookupTable_Section2", int(Lyr::Rainbow), {}, {}, {}, {}},
        {"ColorLookupTable_Section3", 204800085, {{0, 1}}, {{0, 0}}, {{0, 0.6f}}, {{0, 1}}},
    };
    const std::vector<LyrObject*> sections = sectionsOf(table);
    ASSERT_EQ(sections.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        SCOPED_TRACE(wanted[i].name);
        const LyrObject& section = *sections[i];
        EXPECT_STREQ(section.getMetaClass().getClassName(), "LyrColorLookupTable::Section");
        EXPECT_STREQ(section.getNameTemplate(), wanted[i].name);
        EXPECT_EQ(int(section.getScope()), 204800161);
        EXPECT_EQ(section.getFlags(), 0x30000000u);
        EXPECT_EQ(section.getParentLink().getOwner(), &table);
        EXPECT_EQ(section.getParentLink().getLinkID(), Lyr::SectionList);
        EXPECT_EQ(int(lyrGetValue<Lyrenum>(&section, Lyr::Type, -1)), wanted[i].type);
        EXPECT_EQ(listOf<Point>(section, Lyr::PointListRed), wanted[i].red);
        EXPECT_EQ(listOf<Point>(section, Lyr::PointListGreen), wanted[i].green);
        EXPECT_EQ(listOf<Point>(section, Lyr::PointListBlue), wanted[i].blue);
        EXPECT_EQ(listOf<Point>(section, Lyr::PointListAlpha), wanted[i].alpha);
    }
}

void expectDefaultValues(const LyrObject& table) {
    EXPECT_THAT(listOf<float>(table, Lyr::PositionList), ElementsAre(-1.0f, 1.0f));
    expectDefaultSections(table);
    EXPECT_THAT(listOf<Color>(table, Lyr::ExtensionColorList), IsEmpty());
    EXPECT_THAT(listOf<Lyrenum>(table, Lyr::ExtensionEnumList), IsEmpty());
    EXPECT_EQ(int(lyrGetValue<Lyrenum>(&table, Lyr::AutoLabel, -1)), 1);
    EXPECT_EQ(int(lyrGetValue<Lyrenum>(&table, Lyr::AutoScale, -1)), 1);
    EXPECT_EQ((lyrGetValue<LyrValuePair<Lyrenum>>(&table, Lyr::FiniteMode, {7, 7})), (LyrValuePair<Lyrenum>{0, 0}));
    EXPECT_EQ(int(lyrGetValue<Lyrenum>(&table, Lyr::Quantity, -1)), 204800208);
    EXPECT_EQ((lyrGetValue<LyrVector3<float>>(&table, Lyr::CreationParameters, {7, 7, 7})),
              (LyrVector3<float>{0, 0, 0}));
    EXPECT_EQ(lyrGetValue<Lyrenum>(&table, Lyr::CreationType, -1), Lyr::Rainbow);
    EXPECT_EQ((lyrGetValue<LyrValuePair<float>>(&table, Lyr::MaximumRange, {7, 7})),
              (LyrValuePair<float>{-LARGEST, LARGEST}));
}

/** Gives every property another value. */
void changeEverything(LyrObject& table) {
    EXPECT_TRUE(setList<float>(table, Lyr::PositionList, {2, 3, 4}));
    EXPECT_TRUE(setSections(table, {redSection(1), redSection(2)}));
    EXPECT_TRUE(setList<Color>(table, Lyr::ExtensionColorList, {Color(1, 2, 3, 4)}));
    EXPECT_TRUE(setList<Lyrenum>(table, Lyr::ExtensionEnumList, {Lyr::Continue, 5}));
    EXPECT_TRUE(lyrSetValue<Lyrenum>(&table, Lyr::AutoLabel, 0));
    EXPECT_TRUE(lyrSetValue<Lyrenum>(&table, Lyr::AutoScale, 0));
    EXPECT_TRUE(setFiniteMode(table, 1, 2));
    EXPECT_TRUE(lyrSetValue<Lyrenum>(&table, Lyr::Quantity, Lyr::Volume));
    EXPECT_TRUE(lyrSetValue(&table, Lyr::CreationParameters, LyrVector3<float>{1, 2, 3}));
    EXPECT_TRUE(lyrSetValue(&table, Lyr::CreationType, Lyr::HueCycle));
    EXPECT_TRUE(lyrSetValue(&table, Lyr::MaximumRange, LyrValuePair<float>{-5, 5}));
}

}  // namespace

TEST(LyrColorLookupTable, has_its_properties_in_their_order_with_their_types_and_flags) {
    const Errors errors;
    const auto table = newTable();
    ASSERT_TRUE(table);
    const struct {
        const char* name;
        LyrValueType type;
        bool array;
        unsigned int flags;
    } wanted[] = {
        {"PositionList", LyrValueType::Float, true, 0x30000000},
        {"SectionList", LyrValueType::Link, true, 0x30000000},
        {"ExtensionColorList", LyrValueType::Color, true, 0x30000000},
        {"ExtensionEnumList", LyrValueType::Enum, true, 0x30000000},
        {"AutoLabel", LyrValueType::Boolean, false, 0x30000000},
        {"AutoScale", LyrValueType::Boolean, false, 0x30000000},
        {"FiniteMode", LyrValueType::EnumPair, false, 0},
        {"Quantity", LyrValueType::Enum, false, 0},
        {"CreationParameters", LyrValueType::Vector3, false, 0x20000000},
        {"CreationType", LyrValueType::Enum, false, 0x20000000},
        {"MaximumRange", LyrValueType::FloatPair, false, 0x20000000},
    };
    ASSERT_EQ(table->getPropertyCount(), 11);
    for (std::int64_t i = 0; i < 11; ++i) {
        const LyrProperty& property = *table->getPropertyAt(i);
        EXPECT_EQ(property.getPropertyID().getName(), wanted[i].name);
        EXPECT_EQ(property.getValueType(), wanted[i].type) << wanted[i].name;
        EXPECT_EQ(property.isArray(), wanted[i].array) << wanted[i].name;
        EXPECT_EQ(property.getFlags(), wanted[i].flags) << wanted[i].name;
        EXPECT_TRUE(property.isStored()) << wanted[i].name;
        EXPECT_EQ(property.getObject(), table.get());
    }
    EXPECT_EQ(table->getFlags(), 0x30000000u);
}

TEST(LyrColorLookupTable, its_sections_are_a_list_whose_owner_stands_as_parent) {
    const auto table = newTable();
    EXPECT_NE(dynamic_cast<LyrObjectParentLinkListOP*>(table->getProperty(Lyr::SectionList)), nullptr);
}

TEST(LyrColorLookupTable, describes_its_class) {
    const LyrMetaClass& meta = Table::metaClass();
    EXPECT_STREQ(meta.getClassName(), "LyrColorLookupTable");
    EXPECT_STREQ(meta.getModule(), "lys_colortable");
    EXPECT_EQ(meta.getParent(), &LyrObject::metaClass());
    EXPECT_EQ(meta.getInstanceSize(), sizeof(Table));
    EXPECT_EQ(meta.getClassFlags(), 0u);
    EXPECT_FALSE(meta.isSingleton());
    EXPECT_EQ(LyrMetaClass::find("LyrColorLookupTable"), &meta);
    const auto table = newTable();
    EXPECT_EQ(&table->getMetaClass(), &meta);
    EXPECT_TRUE(table->getMetaClass().isOfType("LyrObject"));
    EXPECT_FALSE(table->getMetaClass().isOfType(Section::metaClass()));
}

TEST(LyrColorLookupTable, starts_with_its_defaults) {
    const Errors errors;
    const auto table = newTable();
    expectDefaultValues(*table);
    EXPECT_EQ(table->getProtectedFlags(), 0x110100u);
    EXPECT_EQ(int(table->getScope()), 204800161);
    EXPECT_STREQ(table->getNameTemplate(), "");
}

TEST(LyrColorLookupTable, goes_back_to_its_defaults_property_by_property) {
    const Errors errors;
    const auto table = newTable();
    changeEverything(*table);
    for (std::int64_t i = 0; i < table->getPropertyCount(); ++i) {
        EXPECT_TRUE(table->getPropertyAt(i)->resetData());
    }
    expectDefaultValues(*table);
}

TEST(LyrColorLookupTable, no_property_goes_back_to_its_default_while_it_is_read_only) {
    for (const char* className : {"LyrColorLookupTable", "LyrColorLookupTable::Section"}) {
        const LyrObjectRefPtr object(className, Lyr::DocumentScope);
        ASSERT_GT(object->getPropertyCount(), 4);
        for (std::int64_t i = 0; i < object->getPropertyCount(); ++i) {
            LyrProperty& property = *object->getPropertyAt(i);
            EXPECT_TRUE(property.resetData());
            property.setReadOnly(true);
            EXPECT_FALSE(property.resetData()) << className << ' ' << i;
            property.setReadOnly(false);
        }
    }
}

TEST(LyrColorLookupTable, keeps_the_reset_values_of_its_single_values) {
    const auto table = newTable();
    changeEverything(*table);
    EXPECT_EQ(int(single<Lyrenum>(*table, Lyr::AutoLabel)->getResetValue()), 1);
    EXPECT_EQ(int(single<Lyrenum>(*table, Lyr::AutoScale)->getResetValue()), 1);
    EXPECT_EQ((single<LyrValuePair<Lyrenum>>(*table, Lyr::FiniteMode)->getResetValue()), (LyrValuePair<Lyrenum>{0, 0}));
    EXPECT_EQ(int(single<Lyrenum>(*table, Lyr::Quantity)->getResetValue()), 204800208);
    EXPECT_EQ((single<LyrVector3<float>>(*table, Lyr::CreationParameters)->getResetValue()),
              (LyrVector3<float>{0, 0, 0}));
    EXPECT_EQ(single<Lyrenum>(*table, Lyr::CreationType)->getResetValue(), Lyr::Rainbow);
    EXPECT_EQ((single<LyrValuePair<float>>(*table, Lyr::MaximumRange)->getResetValue()),
              (LyrValuePair<float>{-LARGEST, LARGEST}));
}

TEST(LyrColorLookupTable, builds_its_default_sections_anew_on_every_reset) {
    const Errors errors;
    const auto table = newTable();
    const auto other = newTable();
    const LyrObjectPtr first(&sectionAt(*table, 0));
    EXPECT_NE(first.get(), sectionsOf(*other)[0]);
    ASSERT_TRUE(setRed(*first, {{0, 0.25f}}));
    ASSERT_TRUE(table->getProperty(Lyr::SectionList)->resetData());
    expectDefaultSections(*table);
    EXPECT_NE(sectionsOf(*table)[0], first.get());
    EXPECT_EQ(first->getParentLink().getOwner(), nullptr);
    const std::vector<LyrObject*> second = sectionsOf(*table);
    const LyrObjectPtr kept(second[1]);
    ASSERT_TRUE(table->getProperty(Lyr::SectionList)->resetData());
    expectDefaultSections(*table);
    EXPECT_NE(sectionsOf(*table)[1], kept.get());
    expectDefaultSections(*other);
}

TEST(LyrColorLookupTable, names_its_default_sections_and_prepares_their_roles_while_they_are_no_content) {
    RoleWatch roles;
    {
        const auto table = newTable();
        ASSERT_EQ(roles.entered.size(), 3u);
        const char* names[] = {"ColorLookupTable_Section1", "ColorLookupTable_Section2", "ColorLookupTable_Section3"};
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(roles.entered[i].flags, 0x20000000u);
            EXPECT_EQ(roles.entered[i].name, names[i]);
            EXPECT_EQ(roles.entered[i].scope, 204800161);
            EXPECT_EQ(roles.entered[i].redPoints, 0u);
            EXPECT_TRUE(sectionAt(*table, i).isRoleActive(MODULE_ROLE));
        }
        EXPECT_EQ(roles.left, 0);
    }
    EXPECT_EQ(roles.left, 3);
}

TEST(LyrColorLookupTable, marks_each_property_while_its_default_is_applied) {
    const auto table = newTable();
    changeEverything(*table);
    for (std::int64_t i = 0; i < table->getPropertyCount(); ++i) {
        LyrProperty& property = *table->getPropertyAt(i);
        FlagWatch watch;
        ASSERT_TRUE(property.addPropertyExtension(&watch));
        EXPECT_TRUE(property.resetData());
        EXPECT_THAT(watch.seen, ElementsAre(16u)) << property.getPropertyID().getName();
        EXPECT_EQ(property.getProtectedFlags(), 0u);
    }
}

TEST(LyrColorLookupTable, refuses_booleans_other_than_0_and_1) {
    const auto table = newTable();
    for (const Lyrenum id : {Lyr::AutoLabel, Lyr::AutoScale}) {
        EXPECT_FALSE(lyrSetValue<Lyrenum>(table.get(), id, 2));
        EXPECT_FALSE(lyrSetValue<Lyrenum>(table.get(), id, -1));
        EXPECT_EQ(int(lyrGetValue<Lyrenum>(table.get(), id, -1)), 1);
        EXPECT_TRUE(lyrSetValue<Lyrenum>(table.get(), id, 0));
        EXPECT_EQ(int(lyrGetValue<Lyrenum>(table.get(), id, -1)), 0);
    }
}

TEST(LyrColorLookupTable, keeps_boundaries_and_finite_modes_as_they_are_written) {
    const auto table = newTable();
    const std::vector<float> descending = {4, 3, -0.0f, 3};
    ASSERT_TRUE(setList(*table, Lyr::PositionList, descending));
    EXPECT_EQ(listOf<float>(*table, Lyr::PositionList), descending);
    ASSERT_TRUE(setFiniteMode(*table, 2, -1));
    EXPECT_EQ((lyrGetValue<LyrValuePair<Lyrenum>>(table.get(), Lyr::FiniteMode, {0, 0})),
              (LyrValuePair<Lyrenum>{2, -1}));
}

TEST(LyrColorLookupTable, is_stamped_by_a_change_but_not_by_an_equal_write) {
    const auto table = newTable();
    const LyrTimestamp atStart = table->getModificationTimestamp();
    ASSERT_TRUE(setList<float>(*table, Lyr::PositionList, {-1, 1}));
    ASSERT_TRUE(lyrSetValue<Lyrenum>(table.get(), Lyr::AutoScale, 1));
    ASSERT_TRUE(setSections(*table, sectionsOf(*table)));
    EXPECT_EQ(table->getModificationTimestamp(), atStart);
    ASSERT_TRUE(setList<float>(*table, Lyr::PositionList, {-1, 2}));
    const LyrTimestamp afterWrite = table->getModificationTimestamp();
    EXPECT_GT(afterWrite, atStart);
    const LyrTimestamp section = sectionAt(*table, 1).getModificationTimestamp();
    ASSERT_TRUE(setType(sectionAt(*table, 1), Lyr::HueCycle));
    EXPECT_GT(sectionAt(*table, 1).getModificationTimestamp(), section);
    EXPECT_EQ(table->getModificationTimestamp(), afterWrite);
}

TEST(LyrColorLookupTable, counts_not_a_number_as_equal_and_the_sign_of_zero_as_a_change) {
    const auto table = newTable();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    ASSERT_TRUE(lyrSetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>{nan, 0.0f}));
    const LyrTimestamp before = table->getModificationTimestamp();
    ASSERT_TRUE(lyrSetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>{-nan, 0.0f}));
    EXPECT_EQ(table->getModificationTimestamp(), before);
    ASSERT_TRUE(lyrSetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>{nan, -0.0f}));
    EXPECT_GT(table->getModificationTimestamp(), before);
    EXPECT_TRUE(std::signbit(lyrGetValue<LyrValuePair<float>>(table.get(), Lyr::MaximumRange, {1, 1}).second));
}

TEST(LyrColorLookupTable, takes_its_sections_along_when_it_dies) {
    const LyrClassManager::SearchPattern ofModule = LyrClassManager::SearchPattern::ofModule("lys_colortable");
    const long long before = LyrClassManager::getObjectCount(ofModule);
    {
        const auto table = newTable();
        EXPECT_EQ(LyrClassManager::getObjectCount(ofModule), before + 4);
    }
    EXPECT_EQ(LyrClassManager::getObjectCount(ofModule), before);
}
