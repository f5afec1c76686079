#include "colortable/model/ModelTools.h"
#include "colortable/model/UndoWalkContent.h"
#include "scarce/EachAllocation.h"

#include <colortable/editor/TableEdits_p.h>
#include <lyr_core/LyrClassManager.h>
#include <lys_core/LyqApplication.h>

#include <QUndoStack>

using namespace model;
using lys::editor::SectionRange;

// What the editor does to a table, with each allocation failing in turn: done whole, or nothing is changed.

namespace {

long long objectCount() {
    return LyrClassManager::getObjectCount(LyrClassManager::SearchPattern::ofModule("lys_colortable"));
}

/** A table of six sections: below, constant, rainbow, gradient with three points, constant, above. */
struct OwnTable {
    OwnTable() {
        application.undoStack().clear();
        setList<float>(*table, Lyr::PositionList, {0, 1, 2, 3, 4});
        setSections(*table, {redSection(0), redSection(1), redSection(2), redSection(3), redSection(4), redSection(5)});
        rainbow = sectionsOf(*table)[2];
        gradient = sectionsOf(*table)[3];
        setType(*rainbow, Lyr::Rainbow);
        setType(*gradient, Lyr::Gradient);
        setList<Point>(*gradient, Lyr::PointListGreen, {{0, 0.5f}, {0, 0.25f}, {0, 0.125f}});
        before = content();
        objects = objectCount();
    }
    undowalk::TableContent content() const { return undowalk::contentOfTable(table.get(), numbers); }
    void judge(bool) {}

    LyqApplication& application = LyqApplication::instance();
    undowalk::SectionNumbers numbers;
    Held<Table> table = newTable();
    undowalk::TableContent before;
    LyrObject* rainbow = nullptr;
    LyrObject* gradient = nullptr;
    long long objects = 0;
};

struct TableInAction : OwnTable {
    ~TableInAction() { application.userActionAborted(token); }
    /** The action recorded all of the edit, and nothing of one that failed. */
    void judge(bool isDone) {
        EXPECT_TRUE(application.userActionEnd(token));
        EXPECT_EQ(application.undoStack().count(), isDone ? 1 : 0);
        EXPECT_EQ(application.undo(), isDone);
        EXPECT_EQ(content(), before);
    }
    LyqApplication::UserActionToken token = application.userActionBegin(QStringLiteral("outer"));
};

template <class Fixture, class Work>
void expectWholeEdit(Work work) {
    const int failures = scarce::withEachAllocationFailing<Fixture>(work, [&](Fixture& own, bool isDone) {
        if (isDone) {
            EXPECT_NE(own.content(), own.before);
            EXPECT_EQ(own.content().positions.size() + 1, own.content().sections.size());
        } else {
            EXPECT_EQ(own.content(), own.before);
            EXPECT_EQ(objectCount(), own.objects);
        }
        own.judge(isDone);
    });
    EXPECT_GT(failures, 2);
}

/** Outside of an action, and inside one that goes on after the edit. */
template <class Work>
void expectWholeEdits(Work work) {
    expectWholeEdit<OwnTable>([&](OwnTable& own) { return work(own); });
    expectWholeEdit<TableInAction>([&](TableInAction& own) { return work(own); });
}

}  // namespace

TEST(ScarceTableEdits, split_and_merge_whole_or_not_at_all) {
    expectWholeEdits([](OwnTable& own) { return lys::editor::splitSection(*own.table, 3); });
    expectWholeEdits([](OwnTable& own) { return lys::editor::mergeSections(*own.table, SectionRange(2, 4)); });
}

TEST(ScarceTableEdits, change_a_type_with_all_of_its_points_or_leave_it) {
    for (const Lyrenum type : {Lyr::Constant, Lyr::Rainbow, Lyr::HueCycle}) {
        expectWholeEdits([&](OwnTable& own) { return lys::editor::changeType(*own.gradient, type); });
    }
    expectWholeEdits([](OwnTable& own) { return lys::editor::changeType(*own.rainbow, Lyr::Gradient); });
}

TEST(ScarceTableEdits, color_a_point_in_all_channels_or_in_none) {
    for (const long long point : {0, 1, 3}) {
        expectWholeEdits([&](OwnTable& own) {
            return lys::editor::setColorPoint(*own.gradient, point, {0.1f, 0.2f, 0.3f, 0.4f});
        });
    }
}

TEST(ScarceTableEdits, set_an_opacity_and_keep_the_other_points) {
    const auto judge = [](OwnTable& own, bool done) {
        const auto alphas = listOf<Point>(*own.gradient, Lyr::PointListAlpha);
        ASSERT_EQ(alphas.size(), 2u);
        EXPECT_EQ(alphas[0].y, done ? 0.25f : 1.0f);
        EXPECT_EQ(alphas[1].y, 0.5f);
    };
    struct TwoAlphas : OwnTable {
        TwoAlphas() { setList<Point>(*gradient, Lyr::PointListAlpha, {{0, 1.0f}, {0, 0.5f}}); }
    };
    EXPECT_GT(scarce::withEachAllocationFailing<TwoAlphas>(
                  [](OwnTable& own) { return lys::editor::setOpacity(*own.gradient, 0.25f); }, judge),
              0);
}

TEST(ScarceTableEdits, read_colours_without_needing_any) {
    const OwnTable own;
    const ScarceMemory memory(0, ScarceMemory::Failing::ForGood);
    EXPECT_EQ(lys::editor::colorPointOf(*own.gradient, 1).green, 0.25f);
    EXPECT_EQ(lys::editor::opacityOf(*own.gradient), 1.0f);
    EXPECT_FALSE(memory.hasFailed());
}
