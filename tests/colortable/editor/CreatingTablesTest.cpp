// The creation dialogs as the editor runs them.
#include <colortable/editor/LyqColorLookupTableCreateSmoothDialog.h>
#include <colortable/editor/LyqColorLookupTableCreateSphereSegmentSteppedDialog.h>
#include <colortable/editor/LyqColorLookupTableCreateSteppedDialog.h>
#include <lys_core/LyqComboBox.h>

#include <QPushButton>

#include "EditorFixture.h"

namespace {

class CreatingTables : public EditorFixture {
protected:
    std::vector<float> positions() { return positionsOf(table.get()); }
    template <class Dialog>
    void answer(bool accept) {
        whenModal<Dialog>([accept](Dialog& dialog) {
            EXPECT_TRUE(dialog.isEnabled());
            accept ? dialog.applySlot() : dialog.reject();
        });
    }
    StepsSince steps;
    using Smooth = LyqColorLookupTableCreateSmoothDialog;
    using Stepped = LyqColorLookupTableCreateSteppedDialog;
    using Sphere = LyqColorLookupTableCreateSphereSegmentSteppedDialog;
};

}  // namespace

TEST_F(CreatingTables, the_buttons_run_the_dialogs_between_their_hooks) {
    // A panel of its own may have left them disabled.
    editor.findChild<Smooth*>()->setEnabled(false);
    editor.findChild<Stepped*>()->setEnabled(false);
    editor.findChild<Sphere*>()->setEnabled(false);
    editor.setCreateSmoothParams(0.0f, 10.0f, Lyr::HueCycle);
    answer<Smooth>(true);
    QTest::mouseClick(find<QPushButton>("mCreateSmoothPushButton"), Qt::LeftButton);
    EXPECT_EQ(positions(), (std::vector<float>{0, 10}));
    settle();
    EXPECT_EQ(column(TYPE), (QStringList{"Constant", "Hue cycle", "Constant"}));
    editor.setCreateSteppedParams(0.0f, 4.0f, 2.0f, Lyr::Rainbow);
    answer<Stepped>(true);
    QTest::mouseClick(find<QPushButton>("mCreateSteppedPushButton"), Qt::LeftButton);
    EXPECT_EQ(positions(), (std::vector<float>{0, 2, 4}));
    answer<Sphere>(true);
    find<QPushButton>("mCreateSphereSegmentSteppedPushButton")->click();
    EXPECT_EQ(positions().size(), 30u);
    EXPECT_EQ(editor.hooks, (QStringList{"smooth start", "smooth end", "stepped start", "stepped end", "sphere start",
                                         "sphere end"}));
    EXPECT_EQ(steps.names(),
              (QStringList{"Create smooth colortable", "Create stepped colortable", "Create stepped colortable"}));
}

TEST_F(CreatingTables, a_dialog_that_is_rejected_aborts) {
    answer<Smooth>(false);
    editor.createSmoothSlot();
    answer<Stepped>(false);
    editor.createSteppedSlot();
    answer<Sphere>(false);
    editor.createSphereSegmentSteppedSlot();
    EXPECT_EQ(editor.hooks, (QStringList{"smooth start", "smooth abort", "stepped start", "stepped abort",
                                         "sphere start", "sphere abort"}));
    EXPECT_EQ(steps.names(), QStringList());
}

TEST_F(CreatingTables, without_a_table_accepting_aborts_too) {
    editor.setLogicObject(nullptr);
    answer<Smooth>(true);
    editor.createSmoothSlot();
    EXPECT_EQ(editor.hooks, (QStringList{"smooth start", "smooth abort"}));
}

TEST_F(CreatingTables, the_fields_are_preset_and_read_in_internal_units) {
    float from = -1;
    float to = -1;
    float step = -1;
    Lyrenum type(-1);
    LyqApplication::instance().displayUnits().setDisplayUnit(Lyr::Length, Lyr::Inch);
    const Lyrenum schemes[] = {Lyr::Rainbow, Lyr::InvertedRainbow, Lyr::HueCycle};
    for (int i = 0; i < 3; ++i) {
        editor.setCreateSmoothParams(1.0f / 3.0f, 7.7f, schemes[i]);
        EXPECT_EQ(editor.findChild<Smooth*>()->findChild<LyqComboBox*>("mTypeComboBox")->currentIndex(), i);
        ASSERT_TRUE(editor.getCreateSmoothParams(from, to, type));
        EXPECT_EQ(from, 1.0f / 3.0f);
        EXPECT_EQ(to, 7.7f);
        EXPECT_EQ(type, schemes[i]);
    }
    editor.setCreateSteppedParams(1, 2, 0.1f, Lyr::InvertedRainbow);
    editor.setCreateSteppedParams(1, 2, 0.1f, Lyr::Custom);
    ASSERT_TRUE(editor.getCreateSteppedParams(from, to, step, type));
    EXPECT_EQ(step, 0.1f);
    EXPECT_EQ(type, Lyr::InvertedRainbow);
    ASSERT_TRUE(editor.getCreateSphereSegmentSteppedParams(from, to, step, type));
    EXPECT_EQ(from, 0.0f);
    EXPECT_EQ(to, 1.5707964f);
    EXPECT_EQ(step, 0.2617994f);
    EXPECT_EQ(type, Lyr::Rainbow);
    editor.setCreateSphereSegmentSteppedParams(0.5f, 1.0f, 0.25f, Lyr::HueCycle);
    ASSERT_TRUE(editor.getCreateSphereSegmentSteppedParams(from, to, step, type));
    EXPECT_EQ(from, 0.5f);
    EXPECT_EQ(to, 1.0f);
    EXPECT_EQ(step, 0.25f);
    EXPECT_EQ(type, Lyr::HueCycle);
}

TEST_F(CreatingTables, a_dialog_that_is_gone_is_asked_for_nothing) {
    delete editor.findChild<Smooth*>();
    delete editor.findChild<Stepped*>();
    delete editor.findChild<Sphere*>();
    float from = 11;
    float to = 12;
    float step = 13;
    Lyrenum type(14);
    EXPECT_FALSE(editor.getCreateSmoothParams(from, to, type));
    EXPECT_FALSE(editor.getCreateSteppedParams(from, to, step, type));
    EXPECT_FALSE(editor.getCreateSphereSegmentSteppedParams(from, to, step, type));
    EXPECT_EQ(from, 11);
    EXPECT_EQ(type, Lyrenum(14));
    editor.setCreateSmoothParams(0, 1, Lyr::Rainbow);
    editor.setCreateSteppedParams(0, 1, 1, Lyr::Rainbow);
    editor.setCreateSphereSegmentSteppedParams(0, 1, 1, Lyr::Rainbow);
    editor.createSmoothSlot();
    editor.createSteppedSlot();
    editor.createSphereSegmentSteppedSlot();
    EXPECT_EQ(editor.hooks, QStringList());
}

TEST_F(CreatingTables, an_editor_deleted_under_an_open_creation_dialog_is_not_called_any_more) {
    auto* other = new LyqColorLookupTableEditor;
    other->setLogicObject(table.get());
    whenModal<Stepped>([other](Stepped&) { delete other; });
    other->createSteppedSlot();
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(CreatingTables, a_table_that_is_taken_away_under_an_open_dialog_rejects_it) {
    bool open = true;
    whenModal<Stepped>([&](Stepped& dialog) {
        editor.setLogicObject(nullptr);
        settle();
        open = dialog.isVisible();
        dialog.reject();
    });
    editor.createSteppedSlot();
    EXPECT_FALSE(open);
    EXPECT_EQ(editor.hooks, (QStringList{"stepped start", "stepped abort"}));
    EXPECT_EQ(positions(), (std::vector<float>{-1, 1}));
}

TEST_F(CreatingTables, a_panel_that_is_disabled_around_it_leaves_an_open_dialog_to_its_user) {
    QWidget around;
    editor.setParent(&around);
    around.show();
    whenModal<Smooth>([&](Smooth& dialog) {
        around.setEnabled(false);
        EXPECT_FALSE(editor.isEnabled());
        EXPECT_TRUE(dialog.findChild<QPushButton*>(QStringLiteral("mCancelPushButton"))->isEnabled());
        dialog.reject();
    });
    editor.createSmoothSlot();
    EXPECT_EQ(editor.hooks, (QStringList{"smooth start", "smooth abort"}));
    editor.setParent(nullptr);
}

TEST_F(CreatingTables, an_inconsistent_table_that_arrives_under_an_open_dialog_is_built_anew) {
    editor.setCreateSmoothParams(0, 1, Lyr::Rainbow);
    whenModal<Smooth>([this](Smooth& dialog) {
        setPositions(table.get(), {1, 2, 3, 4});
        settle();
        EXPECT_FALSE(editor.isEnabled());
        EXPECT_TRUE(dialog.isEnabled());
        auto* ok = dialog.findChild<QPushButton*>(QStringLiteral("mOkPushButton"));
        EXPECT_TRUE(ok->isEnabled());
        QTest::mouseClick(ok, Qt::LeftButton);
        EXPECT_FALSE(dialog.isVisible());
        dialog.reject();  // in case the button did nothing
    });
    editor.createSmoothSlot();
    settle();
    EXPECT_EQ(positions(), (std::vector<float>{0, 1}));
    EXPECT_TRUE(editor.isEnabled());
}
