#include "PresetTools.h"

#include <lyr_core/LyrClassManager.h>

#include <gtest/gtest.h>

#include <limits>

using namespace presets;

namespace {

constexpr float LARGEST = std::numeric_limits<float>::max();

LyrObjectLink tableOf(const LyrObject& proxy) {
    return lyrGetValue(&proxy, Lyr::ColorLookupTable, LyrObjectLink());
}

class LyrPresetColortableProxyObjectTest : public testing::Test {
protected:
    Errors errors;
    LyrObjectRefPtr proxy{"LyrPresetColortableProxyObject", Lyr::TransientScope};
};

}  // namespace

TEST_F(LyrPresetColortableProxyObjectTest, a_new_one_is_relative_with_an_empty_range_and_a_default_table) {
    ASSERT_TRUE(proxy);
    EXPECT_EQ(int(proxy->getScope()), 0x0C3500E2);
    EXPECT_EQ(proxy->getProtectedFlags(), 0x110100u);
    ASSERT_EQ(proxy->getPropertyCount(), 3);
    EXPECT_EQ(proxy->getPropertyAt(0)->getPropertyID(), Lyr::AbsoluteMode);
    EXPECT_EQ(proxy->getPropertyAt(1)->getPropertyID(), Lyr::ReferenceRange);
    EXPECT_EQ(proxy->getPropertyAt(2)->getPropertyID(), Lyr::ColorLookupTable);
    EXPECT_EQ(lyrGetValue(proxy.get(), Lyr::AbsoluteMode, Lyrenum(9)), 0);
    const auto range = lyrGetValue(proxy.get(), Lyr::ReferenceRange, LyrValuePair<float>(0, 0));
    EXPECT_EQ(range.first, LARGEST);
    EXPECT_EQ(range.second, -LARGEST);
    ASSERT_TRUE(tableOf(*proxy.get()).linkIsOfType("LyrColorLookupTable"));
    EXPECT_EQ(int(tableOf(*proxy.get()).getLink()->getScope()), 0x0C3500E2);
    EXPECT_EQ(textOf(*tableOf(*proxy.get()).getLink()), textOf(*model::newTable()));
    EXPECT_EQ(tableOf(*proxy.get()).getLink()->getRefCount(), 1) << "the proxy alone owns it";
}

TEST_F(LyrPresetColortableProxyObjectTest, its_table_goes_with_it) {
    LyrObjectIOCPtr listener(nullptr, tableOf(*proxy.get()).getLink());
    listener = nullptr;
    const auto before = LyrClassManager::getObjectCount(LyrClassManager::SearchPattern("LyrColorLookupTable"));
    proxy.release();
    EXPECT_EQ(LyrClassManager::getObjectCount(LyrClassManager::SearchPattern("LyrColorLookupTable")), before - 1);
}

TEST_F(LyrPresetColortableProxyObjectTest, a_reset_brings_another_new_table) {
    LyrObject* const first = tableOf(*proxy.get()).getLink();
    const LyrObjectPtr kept(first);
    makeUnusual(static_cast<Table&>(*first));
    lyrSetValue(proxy.get(), Lyr::AbsoluteMode, Lyrenum(1));
    lyrSetValue(proxy.get(), Lyr::ReferenceRange, LyrValuePair<float>(1, 2));
    EXPECT_TRUE(proxy->resetToDefaults());
    EXPECT_NE(tableOf(*proxy.get()).getLink(), first);
    EXPECT_EQ(textOf(*tableOf(*proxy.get()).getLink()), textOf(*model::newTable()));
    EXPECT_EQ(lyrGetValue(proxy.get(), Lyr::AbsoluteMode, Lyrenum(9)), 0);
    EXPECT_TRUE(Interval(lyrGetValue(proxy.get(), Lyr::ReferenceRange, LyrValuePair<float>(0, 0))).isEmpty());
}

TEST_F(LyrPresetColortableProxyObjectTest, a_copy_has_a_table_of_its_own_with_sections_of_its_own) {
    makeUnusual(static_cast<Table&>(*tableOf(*proxy.get()).getLink()));
    lyrSetValue(proxy.get(), Lyr::AbsoluteMode, Lyrenum(1));
    const LyrObjectPtr copy(static_cast<LyrObject*>(proxy->getMetaClass().clone(proxy.get())));
    ASSERT_TRUE(copy);
    EXPECT_EQ(textOf(*copy), textOf(*proxy.get()));
    EXPECT_NE(tableOf(*copy).getLink(), tableOf(*proxy.get()).getLink());
    const auto mine = model::listOf<LyrObjectLink>(*tableOf(*copy).getLink(), Lyr::SectionList);
    const auto theirs = model::listOf<LyrObjectLink>(*tableOf(*proxy.get()).getLink(), Lyr::SectionList);
    ASSERT_EQ(mine.size(), theirs.size());
    for (std::size_t i = 0; i < mine.size(); ++i) {
        EXPECT_NE(mine[i].getLink(), theirs[i].getLink());
    }
}

TEST_F(LyrPresetColortableProxyObjectTest, the_empty_range_survives_a_file_and_unites_as_nothing) {
    const std::string text = textOf(*proxy.get());
    EXPECT_NE(text.find("\"ReferenceRange\": [3.4028235e+38, -3.4028235e+38]"), std::string::npos);
    LyrObjectPtr read;
    LyrObjectFile::Report report;
    ASSERT_TRUE(LyrObjectFile::read(text, read, report)) << report.message.utf8();
    Interval range(lyrGetValue(read.get(), Lyr::ReferenceRange, LyrValuePair<float>(0, 0)));
    EXPECT_TRUE(range.isEmpty());
    EXPECT_EQ(range.unite(Interval(1, 2)), Interval(1, 2));
}
