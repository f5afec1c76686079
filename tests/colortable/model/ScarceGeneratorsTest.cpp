#include "ModelTools.h"
#include "UndoWalkContent.h"
#include "scarce/EachAllocation.h"

#include <lyr_core/LyrClassManager.h>
#include <lys_core/LyqApplication.h>

#include <QUndoStack>

using namespace model;

// The generators with each of their allocations failing in turn: a whole table is built, or the old one stays.

namespace {

using Generate = bool (*)(LyrObject&);

const Generate GENERATORS[] = {
    [](LyrObject& table) { return Table::createSmooth(&table, 0.0f, 4.0f, Lyr::Rainbow); },
    [](LyrObject& table) { return Table::createStepped(&table, 0.0f, 4.0f, 0.5f, Lyr::HueCycle); },
    [](LyrObject& table) { return Table::createSphereSegmentStepped(&table, 0.0f, 1.5f, 0.3f, Lyr::Rainbow); },
};

/** The positions that each gives: 4 / 0.5 steps, and (1 - cos 1.5) / (1 - cos 0.3) = 20.8 rounded. */
constexpr std::size_t POSITIONS[] = {2, 9, 22};

long long objectCount() {
    return LyrClassManager::getObjectCount(LyrClassManager::SearchPattern::ofModule("lys_colortable"));
}

/** A table of the user's own, and an empty history. */
struct OwnTable {
    OwnTable() {
        application.undoStack().clear();
        setList<float>(*table, Lyr::PositionList, {0, 1, 2});
        setSections(*table, {redSection(0), redSection(1), redSection(2), redSection(3)});
        lyrSetValue(table.get(), Lyr::AutoLabel, Lyrenum(0));
        before = content();
        objects = objectCount();
    }
    undowalk::TableContent content() const { return undowalk::contentOfTable(table.get(), numbers); }
    void expectAsBefore() const {
        EXPECT_EQ(objectCount(), objects);
        EXPECT_EQ(content(), before);
    }
    void expectWhole(std::size_t positions) const {
        EXPECT_EQ(listOf<float>(*table, Lyr::PositionList).size(), positions);
        EXPECT_EQ(sectionsOf(*table).size(), positions + 1);
        for (const LyrObject* section : sectionsOf(*table)) {
            EXPECT_GE(section->getPropertyCount(), 5);
            EXPECT_EQ(section->getParentLink().getOwner(), table.get());
        }
        EXPECT_EQ(lyrGetValue(table.get(), Lyr::AutoLabel, Lyrenum(-1)), Lyrenum(positions == 2 ? 1 : 0));
    }

    LyqApplication& application = LyqApplication::instance();
    undowalk::SectionNumbers numbers;
    Held<Table> table = newTable();
    undowalk::TableContent before;
    long long objects = 0;
};

/** The same inside an action that has changed the table already. */
struct TableInAction : OwnTable {
    TableInAction() : token(application.userActionBegin(QStringLiteral("outer"))) {
        lyrSetValue(table.get(), Lyr::AutoScale, Lyrenum(0));
        before = content();
    }
    ~TableInAction() { application.userActionAborted(token); }
    /** The action recorded all that was written: taken back, it leaves the table of before. */
    void expectAbort() {
        EXPECT_TRUE(application.userActionAborted(token));
        EXPECT_EQ(content(), atStart);
        EXPECT_EQ(application.undoStack().count(), 0);
    }
    undowalk::TableContent atStart = before;  // before the constructor writes
    LyqApplication::UserActionToken token;
};

}  // namespace

TEST(ScarceGenerators, build_a_whole_table_or_leave_the_old_one) {
    for (std::size_t i = 0; i < std::size(GENERATORS); ++i) {
        const int failures = scarce::withEachAllocationFailing<OwnTable>(
            [&](OwnTable& own) { return GENERATORS[i](*own.table); },
            [&](OwnTable& own, bool done) {
                done ? own.expectWhole(POSITIONS[i]) : own.expectAsBefore();
                // No table without an undo step: where there is no memory for the step, there is no new table either.
                EXPECT_EQ(own.application.undoStack().count(), done ? 1 : 0);
                EXPECT_FALSE(LyrUndoJournal::instance().isOpen());
                if (done) {
                    EXPECT_TRUE(own.application.undo());
                    EXPECT_EQ(own.content(), own.before);
                }
            });
        EXPECT_GT(failures, 30);
    }
}

TEST(ScarceGenerators, leave_the_old_table_inside_of_an_action_that_goes_on) {
    for (std::size_t i = 0; i < std::size(GENERATORS); ++i) {
        const int failures = scarce::withEachAllocationFailing<TableInAction>(
            [&](TableInAction& own) { return GENERATORS[i](*own.table); },
            [&](TableInAction& own, bool done) {
                done ? own.expectWhole(POSITIONS[i]) : own.expectAsBefore();
                own.expectAbort();
            });
        EXPECT_GT(failures, 30);
    }
}

TEST(ScarceGenerators, run_as_actions_whole_or_not_at_all) {
    const Lyrenum actions[] = {Lyr::CreateSmooth, Lyr::CreateStepped, Lyr::CreateSphereSegmentStepped};
    const LyrVector3<float> parameters[] = {{0.0f, 4.0f, 0.0f}, {0.0f, 4.0f, 0.5f}, {0.0f, 1.5f, 0.3f}};
    for (std::size_t i = 0; i < std::size(actions); ++i) {
        const int failures = scarce::withEachAllocationFailing<TableInAction>(
            [&](TableInAction& own) {
                return lyrSetValue(own.table.get(), Lyr::CreationParameters, parameters[i]) &&
                       own.table->runAction(actions[i]);
            },
            [&](TableInAction& own, bool done) {
                done ? own.expectWhole(POSITIONS[i]) : own.expectAsBefore();
                own.expectAbort();
            });
        EXPECT_GT(failures, 30);
    }
}

TEST(ScarceGenerators, keep_the_steps_before_when_there_is_no_memory_for_their_own) {
    struct TwoSteps : OwnTable {
        TwoSteps() {
            EXPECT_TRUE(Table::createSmooth(table.get(), 0.0f, 9.0f, Lyr::Rainbow));
            first = content();
            objects = objectCount();
        }
        undowalk::TableContent first;
    };
    int refused = 0;
    scarce::withEachAllocationFailing<TwoSteps>([&](TwoSteps& own) { return GENERATORS[1](*own.table); },
                                                [&](TwoSteps& own, bool done) {
                                                    ASSERT_EQ(own.application.undoStack().count(), done ? 2 : 1);
                                                    if (!done) {
                                                        ++refused;
                                                        EXPECT_EQ(own.content(), own.first);
                                                        EXPECT_EQ(objectCount(), own.objects);
                                                        EXPECT_TRUE(own.application.undo());
                                                        EXPECT_EQ(own.content(), own.before);
                                                    }
                                                });
    EXPECT_GT(refused, 60);
}

TEST(ScarceGenerators, leave_no_history_that_lacks_the_step_of_a_table_that_stays) {
    const OwnTable own;
    ASSERT_TRUE(GENERATORS[0](*own.table));
    const auto token = own.application.userActionBegin(QStringLiteral("outer"));
    ASSERT_TRUE(GENERATORS[1](*own.table));
    // A list that is being read can neither be written nor written back.
    const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>> positions(own.table.get(), Lyr::PositionList);
    const float* items = positions->lockArrayPtr();
    const scarce::ErrorCount errors;
    {
        const ScarceMemory memory(0, ScarceMemory::Failing::ForGood);
        EXPECT_TRUE(own.application.userActionEnd(token));
        EXPECT_TRUE(memory.hasFailed());
    }
    positions->unlockArrayPtr(items);
    EXPECT_GE(errors.count, 2) << "no memory, and a locked list";
    own.expectWhole(POSITIONS[1]);
    EXPECT_EQ(own.application.undoStack().count(), 0);
}

TEST(ScarceGenerators, are_undone_and_redone_without_needing_any) {
    for (const Generate generate : GENERATORS) {
        const OwnTable own;
        ASSERT_TRUE(generate(*own.table));
        const undowalk::TableContent after = own.content();
        for (int round = 0; round < 2; ++round) {
            {
                const ScarceMemory memory(0, ScarceMemory::Failing::ForGood);
                EXPECT_TRUE(own.application.undo());
                EXPECT_FALSE(memory.hasFailed());
            }
            EXPECT_EQ(own.content(), own.before);
            {
                const ScarceMemory memory(0, ScarceMemory::Failing::ForGood);
                EXPECT_TRUE(own.application.redo());
                EXPECT_FALSE(memory.hasFailed());
            }
            EXPECT_EQ(own.content(), after);
        }
    }
}
