#include "LegendView.h"
#include "ToolkitApplication.h"
#include "colortable/model/UndoWalkContent.h"
#include "colortable/model/UndoWalkEdits.h"

#include <colortable/legend/LyrColorLookupTableRenderSettings.h>
#include <lyr_core/LyrError.h>

#include <QUndoStack>

#include <gtest/gtest.h>

#include <string>

// Undo and redo over a table, the settings of its legend and the annotation that shows both, in any mixture.

namespace {

using undowalk::RandomEdits;

Lyrenum templateId() {
    return Lyrenum("DescriptionTemplate", true);
}

/** What undo has to bring back: the table, and the settings as bits and texts. */
struct Content {
    undowalk::TableContent table;
    std::vector<std::string> texts;
    std::vector<long long> numbers;
    undowalk::Bits bits;
    bool operator==(const Content&) const = default;
};

/** What stands beside it and is never taken back: where the annotation is, and what it shows. */
struct Beside {
    QRect place;
    bool visible;
    const LyrObject* table;
    const LyrObject* settings;
    bool operator==(const Beside&) const = default;
};

struct SilencedRefusals : LyrError::Listener {
    bool errorEmitted(const LyrError::Message& message) override { return message.getCode() == Lyr::InvalidParameters; }
};

class MixedWalk : ToolkitApplication {
public:
    explicit MixedWalk(std::uint64_t seed) : mEdits(mTables, seed), mAnnotation(nullptr, "legend") {
        mStack.clear();
        mTables.emplace_back("LyrColorLookupTable", Lyr::DocumentScope);
        lyrSetValue(&mAnnotation, Lyr::Object, LyrObjectLink(table(), nullptr, -1));
        lyrSetValue(&mAnnotation, Lyr::ColorLookupTableRenderSettings, LyrObjectLink(settings(), nullptr, -1));
        mContents.push_back(read());
    }
    ~MixedWalk() { mStack.clear(); }

    void run(int actions) {
        for (int i = 0; i < actions && !testing::Test::HasFailure(); ++i) {
            const std::size_t kind = mEdits.pick(8);
            if (kind < 5) {
                act();
            } else {
                move(kind == 7);
            }
            mAnnotation.getImage();  // a view that draws in between changes nothing
            ASSERT_EQ(read(), mContents[static_cast<std::size_t>(mStack.index())]);
        }
        while (mStack.canUndo() && !testing::Test::HasFailure()) {
            move(false);
        }
        EXPECT_EQ(read(), mContents.front());
    }
    int steps = 0;
    int moves = 0;
    int mixed = 0;

private:
    LyrObject* table() const { return mTables.front().get(); }
    LyrObject* settings() const { return mSettings.get(); }

    Content read() const {
        Content content;
        content.table = undowalk::contentOfTable(table(), mNumbers);
        for (const Lyrenum id : {Lyrenum(Lyr::Font), templateId()}) {
            content.texts.emplace_back(lyrGetValue<const char*>(settings(), id, ""));
        }
        // The caption follows its template.
        EXPECT_EQ(std::string(lyrGetValue<const char*>(settings(), Lyr::Description, "?")), content.texts.back());
        content.numbers.push_back(lyrGetValue(settings(), Lyr::Thickness, -1LL));
        for (const Lyrenum id :
             {Lyr::Position, Lyr::Alignment, Lyr::TextPosition, Lyr::TextAlignment, Lyr::HasOutline, Lyr::Rendering}) {
            content.numbers.push_back(int(lyrGetValue(settings(), id, Lyrenum(-1))));
        }
        undowalk::append(content.bits, lyrGetValue(settings(), Lyr::Size, -1.0f));
        for (const Lyrenum id : {Lyr::Color, Lyr::OutlineColor}) {
            const auto color = lyrGetValue(settings(), id, LyrRGBA<float>());
            for (const float channel : {color.red, color.green, color.blue, color.alpha}) {
                undowalk::append(content.bits, channel);
            }
        }
        return content;
    }

    Beside beside() const {
        const auto linked = [&](Lyrenum id) { return lyrGetValue(&mAnnotation, id, LyrObjectLink()).getLink(); };
        return {mAnnotation.frameGeometry(), mAnnotation.isVisible(), linked(Lyr::Object),
                linked(Lyr::ColorLookupTableRenderSettings)};
    }

    float fraction() { return static_cast<float>(mEdits.pick(101)) / 100.0f; }

    void editSettings() {
        const Lyrenum sides[] = {Lyr::Left, Lyr::Right, Lyr::Top, Lyr::Bottom};
        const std::string text = "caption " + std::to_string(mEdits.pick(5));
        switch (mEdits.pick(6)) {
            case 0:
                lyrSetValue<const char*>(settings(), templateId(), text.c_str());
                break;
            case 1:
                lyrSetValue(settings(), Lyr::Thickness, static_cast<long long>(mEdits.pick(60)));
                break;
            case 2:
                lyrSetValue(settings(), Lyr::Size, fraction());
                break;
            case 3:
                lyrSetValue(settings(), mEdits.chance(50) ? Lyr::Position : Lyr::TextPosition, sides[mEdits.pick(4)]);
                break;
            case 4:
                lyrSetValue(settings(), mEdits.chance(50) ? Lyr::Color : Lyr::OutlineColor,
                            LyrRGBA<float>(fraction(), fraction(), fraction(), 1.0f));
                break;
            default:
                settings()->runAction(Lyr::ResetToDefaults);
        }
    }

    void editAnnotation() {
        mAnnotation.setPosition(QPoint(static_cast<int>(mEdits.pick(300)), static_cast<int>(mEdits.pick(300))));
        mAnnotation.setFixedSize(QSize(20 + static_cast<int>(mEdits.pick(60)), 40 + static_cast<int>(mEdits.pick(90))));
        mAnnotation.setVisible(mEdits.chance(50));
    }

    void act() {
        const int index = mStack.index();
        const bool aborted = mEdits.chance(20);
        const auto token = mApplication.userActionBegin(QStringLiteral("action"));
        bool both = true;
        for (std::size_t left = 1 + mEdits.pick(4); left > 0; --left) {
            const std::size_t kind = mEdits.pick(5);
            if (kind < 2) {
                mEdits.anyEdit();
            } else if (kind < 4) {
                editSettings();
            } else {
                editAnnotation();
            }
        }
        const Content now = read();
        if (aborted) {
            const Beside before = beside();
            ASSERT_TRUE(mApplication.userActionAborted(token));
            EXPECT_EQ(beside(), before);
            EXPECT_EQ(mStack.index(), index);
            return;
        }
        ASSERT_TRUE(mApplication.userActionEnd(token));
        const Content& last = mContents[static_cast<std::size_t>(index)];
        if (mStack.index() == index) {
            EXPECT_EQ(now, last) << "a change was not recorded";
            return;
        }
        both = !(now.table == last.table) && (now.texts != last.texts || now.bits != last.bits);
        mContents.resize(static_cast<std::size_t>(index) + 1);
        mContents.push_back(now);
        ++steps;
        mixed += both ? 1 : 0;
    }

    void move(bool forwards) {
        const bool possible = forwards ? mStack.canRedo() : mStack.canUndo();
        const Beside before = beside();
        ASSERT_EQ(forwards ? mApplication.redo() : mApplication.undo(), possible);
        EXPECT_EQ(read(), mContents[static_cast<std::size_t>(mStack.index())]);
        EXPECT_EQ(beside(), before);
        moves += possible ? 1 : 0;
    }

    LyqApplication& mApplication = LyqApplication::instance();
    QUndoStack& mStack = mApplication.undoStack();
    undowalk::SectionNumbers mNumbers;
    std::vector<LyrObjectRefPtr> mTables;
    RandomEdits mEdits;
    LyrObjectRefPtr mSettings{"LyrColorLookupTableRenderSettings", Lyr::DocumentScope};
    LyqColorLookupTableAnnotation mAnnotation;
    std::vector<Content> mContents;
};

}  // namespace

TEST(MixedUndoWalk, table_settings_and_annotation_are_as_they_were_at_every_step) {
    const SilencedRefusals silenced;
    int steps = 0;
    int moves = 0;
    int mixed = 0;
    for (std::uint64_t seed = 1; seed <= 40 && !HasFailure(); ++seed) {
        SCOPED_TRACE("walk " + std::to_string(seed));
        MixedWalk walk(seed);
        walk.run(60);
        steps += walk.steps;
        moves += walk.moves;
        mixed += walk.mixed;
    }
    EXPECT_GT(steps, 400);
    EXPECT_GT(moves, 400);
    EXPECT_GT(mixed, 50);
}
