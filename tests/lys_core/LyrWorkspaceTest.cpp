#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyrWorkspace.h>

#include <gtest/gtest.h>

#include <QUndoStack>

#include <limits>

namespace {

using Vector = LyrVector3<float>;

/** A box of 4 x 10 x 3 voxels of 0.5 x 0.25 x 2 mm whose corner lies at (-1, 2, 5). */
struct Workspace : testing::Test {
    Workspace() { ready = workspace->setScene({-1, 2, 5}, {1, 4.5f, 11}, {0.5f, 0.25f, 2}); }
    LyrWorkspace* workspace = new LyrWorkspace;
    LyrObjectPtr held{workspace};
    bool ready = false;
};

}  // namespace

TEST_F(Workspace, starts_with_the_cross_in_the_middle_slices) {
    ASSERT_TRUE(ready);
    EXPECT_EQ(workspace->getCrossPosition(), Vector(0.25f, 3.375f, 8.0f));
}

TEST_F(Workspace, counts_slices_and_finds_the_one_that_holds_a_place) {
    EXPECT_EQ(workspace->getSliceCount(0), 4);
    EXPECT_EQ(workspace->getSliceCount(1), 10);
    EXPECT_EQ(workspace->getSliceCount(2), 3);
    EXPECT_EQ(workspace->getSliceIndex(2, 5.0f), 0);
    EXPECT_EQ(workspace->getSliceIndex(2, 6.99f), 0);
    EXPECT_EQ(workspace->getSliceIndex(2, 7.0f), 1);
    EXPECT_EQ(workspace->getSliceIndex(2, 11.0f), 2);
    EXPECT_EQ(workspace->getSliceIndex(2, -100.0f), 0);
    EXPECT_EQ(workspace->getSliceIndex(2, 1e30f), 2);
    EXPECT_EQ(workspace->getSliceIndex(2, std::numeric_limits<float>::quiet_NaN()), 0);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(workspace->getSliceIndex(1, workspace->getSlicePosition(1, i)), i);
    }
    EXPECT_EQ(workspace->getSlicePosition(1, 0), 2.125f);
}

TEST_F(Workspace, keeps_the_cross_inside_the_box) {
    EXPECT_TRUE(workspace->setCrossPosition({-50, 3, 50}));
    EXPECT_EQ(workspace->getCrossPosition(), Vector(-1, 3, 11));
    EXPECT_FALSE(workspace->setCrossPosition({0, std::numeric_limits<float>::infinity(), 6}));
    EXPECT_EQ(workspace->getCrossPosition(), Vector(-1, 3, 11));
}

TEST_F(Workspace, refuses_boxes_and_steps_that_make_no_sense) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(workspace->setScene({0, 0, 0}, {1, 0, 1}, {1, 1, 1}));
    EXPECT_FALSE(workspace->setScene({0, 0, 0}, {1, 1, 1}, {1, 0, 1}));
    EXPECT_FALSE(workspace->setScene({0, 0, 0}, {1, 1, 1}, {1, nan, 1}));
    EXPECT_FALSE(workspace->setScene({0, nan, 0}, {1, 1, 1}, {1, 1, 1}));
    EXPECT_EQ(workspace->getSceneMax(), Vector(1, 4.5f, 11));
    // A step of next to nothing does not overflow an index.
    EXPECT_TRUE(workspace->setScene({0, 0, 0}, {1e30f, 1, 1}, {1e-30f, 1, 1}));
    EXPECT_EQ(workspace->getSliceCount(0), 1 << 24);
}

TEST_F(Workspace, lists_each_layer_once) {
    const LyrObjectPtr first(new LyrObject);
    const LyrObjectPtr second(new LyrObject);
    EXPECT_TRUE(workspace->addLayer(first.get()));
    EXPECT_TRUE(workspace->addLayer(second.get()));
    EXPECT_FALSE(workspace->addLayer(first.get()));
    EXPECT_FALSE(workspace->addLayer(nullptr));
    ASSERT_EQ(workspace->layers().view().size(), 2u);
    EXPECT_EQ(workspace->layers().view()[1].getLink(), second.get());
    EXPECT_TRUE(workspace->removeLayer(first.get()));
    EXPECT_FALSE(workspace->removeLayer(first.get()));
    EXPECT_EQ(workspace->layers().view()[0].getLink(), second.get());
}

TEST_F(Workspace, leaves_no_undo_step) {
    LyqApplication& application = LyqApplication::instance();
    const LyrObjectPtr layer(new LyrObject);
    const int steps = application.undoStack().count();
    {
        const LyqApplication::UserActionScope action("drag");
        workspace->setCrossPosition({0, 3, 6});
        workspace->setScene({0, 0, 0}, {2, 2, 2}, {1, 1, 1});
        workspace->addLayer(layer.get());
    }
    EXPECT_EQ(application.undoStack().count(), steps);
}

TEST_F(Workspace, is_linked_by_the_application) {
    LyqApplication& application = LyqApplication::instance();
    ASSERT_NE(application.workspace(), nullptr);
    EXPECT_EQ(lyrGetValue(&application.object(), Lyr::Workspace, LyrObjectLink()).getLink(), application.workspace());
}
