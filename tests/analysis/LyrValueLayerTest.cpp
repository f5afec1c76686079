#include "AnalysisTools.h"

#include <analysis/AnalysisIdentifiers.h>
#include <analysis/PartSurface.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <gtest/gtest.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqApplication.h>

#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

#include <cmath>

namespace {

std::vector<float> positions(const LyrValueLayer& layer) {
    LyrValueArrayOPCache<float> list;
    list.load(layer.table(), Lyr::PositionList);
    return list.items();
}

}  // namespace

TEST(LyrValueLayer, its_table_is_a_rainbow_of_numbers_over_the_volumes_range) {
    const LayerOfValues made;
    ASSERT_TRUE(made.layer().table());
    EXPECT_EQ(positions(made.layer()), (std::vector<float>{0.0f, 23.0f}));
    EXPECT_EQ(lyrGetValue<Lyrenum>(made.layer().table(), Lyr::Quantity, -1), Lyr::Number);
    EXPECT_EQ(lyrGetValue<Lyrenum>(made.layer().renderSettings(), Lyr::Position, -1), Lyr::Left);
    EXPECT_TRUE(made.layer().isColored());
}

TEST(LyrValueLayer, a_volume_of_one_value_gets_a_table_around_it) {
    LyrVolume::Description description;
    description.size = {2, 1, 1};
    const LayerOfValues made(LyrVolume::create(description, {7.0f, 7.0f}));
    const std::vector<float> range = positions(made.layer());
    ASSERT_EQ(range.size(), 2u);
    EXPECT_LT(range[0], 7.0f);
    EXPECT_GT(range[1], 7.0f);
}

TEST(LyrValueLayer, a_volume_without_finite_values_gets_a_table_all_the_same) {
    LyrVolume::Description description;
    description.size = {2, 1, 1};
    const LayerOfValues made(LyrVolume::create(description, {NAN, INFINITY}));
    EXPECT_EQ(positions(made.layer()), (std::vector<float>{0.0f, 1.0f}));
}

TEST(LyrValueLayer, making_it_leaves_nothing_to_undo) {
    LyqApplication::instance().undoStack().clear();
    const LayerOfValues made;
    EXPECT_EQ(LyqApplication::instance().undoStack().count(), 0);
}

TEST(LyrValueLayer, it_reads_out_value_and_color_of_the_voxel_under_a_place) {
    const LayerOfValues made;
    LyqLayer::Readout readout;
    // Voxel (1, 2, 0): 1 + 4 * 2.
    ASSERT_TRUE(made.layer().readout({1.5f, 2.5f, 0.5f}, readout));
    EXPECT_EQ(readout.text, "9");
    LyrRGBA<float> color;
    ASSERT_TRUE(made.layer().table()->getColor(9.0f, color));
    EXPECT_TRUE(readout.hasColor);
    EXPECT_EQ(readout.color, color);
    EXPECT_FALSE(made.layer().readout({4.5f, 0.5f, 0.5f}, readout));
}

TEST(LyrValueLayer, a_changed_color_of_a_section_is_a_change_of_its_table) {
    const LayerOfValues made;
    LyrValueArrayOPCache<LyrObjectLink> sections;
    ASSERT_TRUE(sections.load(made.layer().table(), Lyr::SectionList));
    ASSERT_EQ(sections.items().size(), 3u);
    const LyrTimestamp before = LyrTimestamp::getCurrentTimestamp();
    EXPECT_LT(made.layer().getTableTimestamp(), before);
    LyrValueArrayOPCache<LyrVector2<float>> red;
    ASSERT_TRUE(red.load(sections.items()[0].getLink(), Lyr::PointListRed));
    ASSERT_FALSE(red.items().empty());
    red.items()[0].y = 0.25f;
    ASSERT_TRUE(red.store(sections.items()[0].getLink(), Lyr::PointListRed));
    EXPECT_GT(made.layer().getTableTimestamp(), before);
    EXPECT_LT(made.layer().getSettingsTimestamp(), before);
}

TEST(LyrValueLayer, another_linked_table_is_a_change_too) {
    const LayerOfValues made;
    const LyrObjectPtr other(new LyrColorLookupTable);
    const LyrTimestamp before = LyrTimestamp::getCurrentTimestamp();
    ASSERT_TRUE(lyrSetValue(&made.layer(), Lyr::ColorLookupTable, LyrObjectLink(other.get(), nullptr, -1)));
    EXPECT_GT(made.layer().getTableTimestamp(), before);
    EXPECT_EQ(made.layer().table(), other.get());
}

TEST(LyrValueLayer, the_surface_comes_in_the_background_and_is_shared) {
    const auto volume = countingVolume();
    const LayerOfValues first(volume), second(volume);
    EXPECT_EQ(&first.layer().surface(), &second.layer().surface());
    QSignalSpy finished(&first.layer().surface(), &PartSurface::finished);
    EXPECT_FALSE(first.layer().isComplete());
    EXPECT_TRUE(std::isnan(lyrGetValue(&first.layer(), Lyr::SurfaceValue, 0.0f)));
    ASSERT_TRUE(finished.count() > 0 || finished.wait(10000));
    ASSERT_TRUE(first.layer().surface().mesh());
    // The values on the surface follow, in the background as well.
    ASSERT_TRUE(QTest::qWaitFor([&] { return first.layer().isComplete(); }, 10000));
    const auto values = first.layer().surfaceValues();
    ASSERT_TRUE(values);
    std::vector<float> expected;
    first.layer().valuesOnMesh(*first.layer().surface().mesh(), expected);
    EXPECT_EQ(*values, expected);
    EXPECT_FALSE(first.layer().surface().mesh()->triangles.empty());
    const float value = lyrGetValue(&first.layer(), Lyr::SurfaceValue, 0.0f);
    EXPECT_GT(value, 0.0f);
    EXPECT_LT(value, 23.0f);
}

TEST(LyrValueLayer, a_layer_that_goes_while_its_surface_is_worked_out_is_no_harm) {
    for (int i = 0; i < 20; ++i) {
        const LayerOfValues made(countingVolume(float(i + 1)));
        EXPECT_TRUE(made.object);
    }
}
