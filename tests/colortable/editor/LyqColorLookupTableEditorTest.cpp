// What the editor shows, and when it is brought up to date.
#include <colortable/editor/LyqColorLookupTableCreateSmoothDialog.h>
#include <colortable/editor/LyqColorLookupTableCreateSphereSegmentSteppedDialog.h>
#include <colortable/editor/LyqColorLookupTableCreateSteppedDialog.h>
#include <colortable/legend/LyqColorLookupTableWidget.h>
#include <lys_core/LyqColorWidget.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LyqPresetComboBox.h>
#include <lys_core/LyqPresetRegistry.h>

#include <QCheckBox>
#include <QFrame>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

#include <limits>
#include <memory>

#include "EditorFixture.h"

namespace {

constexpr float LARGEST = std::numeric_limits<float>::max();

class TableEditor : public EditorFixture {
protected:
    QString title() { return find<QGroupBox>("mSectionsGroupBox")->title(); }
    QStringList labels() {
        QStringList texts;
        for (int row = 0; row < rows.numRows(); ++row) {
            if (!rows.isRowHidden(row)) {
                texts.append(rows.rowLabel(row));
            }
        }
        return texts;
    }
    QImage swatch(int row) { return rows.viewport()->grab(cell(row, DETAIL)).toImage(); }
};

struct PresetReceiver : LyqPresetRegistry::Receiver {
    LyrObject* object = nullptr;
    void setCurrentObject(LyrObject* current) override { object = current; }
};

}  // namespace

TEST_F(TableEditor, has_the_widgets_of_its_form_with_their_texts) {
    EXPECT_EQ(editor.objectName(), QStringLiteral("editor"));
    EXPECT_EQ(find<QGroupBox>("mLUTGroupBox")->title(), QStringLiteral("LUT"));
    EXPECT_TRUE(find<QFrame>("mLUTFrame"));
    EXPECT_EQ(find<QPushButton>("mCreateSmoothPushButton")->text(), QStringLiteral("Create smooth"));
    EXPECT_EQ(find<QPushButton>("mCreateSteppedPushButton")->text(), QStringLiteral("Create stepped"));
    EXPECT_EQ(find<QPushButton>("mCreateSphereSegmentSteppedPushButton")->text(),
              QStringLiteral("Create stepped (equi-surface)"));
    EXPECT_EQ(find<QGroupBox>("mAutoLabelGroupBox")->title(), QStringLiteral("LUT"));
    EXPECT_EQ(find<QCheckBox>("mAutoLabelCheckBox")->text(), QStringLiteral("Auto tickmarks"));
    EXPECT_EQ(find<QCheckBox>("mAutoScaleCheckBox")->text(), QStringLiteral("Auto scale"));
    EXPECT_EQ(find<QPushButton>("mAutoScalePushButton")->text(), QStringLiteral("Auto scale"));
    EXPECT_EQ(find<QCheckBox>("mCustomCheckBox")->text(), QStringLiteral("checkBox3"));
    EXPECT_EQ(find<QGroupBox>("mPresetGroupBox")->title(), QStringLiteral("Preset selection"));
    EXPECT_TRUE(find<LyqPresetComboBox>("mPresetComboBox"));
    const QStringList headers{"From", "To", "Type", "Detail"};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(rows.horizontalHeaderItem(i)->text(), headers[i]);
    }
}

TEST_F(TableEditor, has_placeholders_for_derived_panels) {
    EXPECT_TRUE(find<QGroupBox>("mSpecialGroupBox"));
    EXPECT_EQ(find<QGroupBox>("mSpecialOptionsGroupBox")->title(), QStringLiteral("<special_options>"));
    EXPECT_EQ(find<QGroupBox>("mSpecialColorsGroupBox")->title(), QStringLiteral("<special_colors>"));
    EXPECT_EQ(find<QPushButton>("mSpecialAction0PushButton")->text(), QStringLiteral("<act0>"));
    for (int i = 0; i < 4; ++i) {
        const QString option = QStringLiteral("mSpecialOption%1").arg(i);
        const QString color = QStringLiteral("mSpecialColor%1").arg(i);
        EXPECT_EQ(editor.findChild<QLabel*>(option + "Label")->text(), QStringLiteral("<opt%1>").arg(i));
        EXPECT_EQ(editor.findChild<LyqComboBox*>(option + "ComboBox")->items(),
                  QStringList{QStringLiteral("<opt%1_a>").arg(i)});
        EXPECT_EQ(editor.findChild<QLabel*>(color + "Label")->text(), QStringLiteral("<col%1>").arg(i));
        EXPECT_TRUE(editor.findChild<LyqColorWidget*>(color + "Widget"));
    }
}

TEST_F(TableEditor, hides_five_widgets_and_shows_the_others) {
    for (const char* name : {"mCreateSphereSegmentSteppedPushButton", "mAutoScalePushButton", "mCustomCheckBox",
                             "mPresetGroupBox", "mSpecialAction0PushButton"}) {
        EXPECT_TRUE(find<QWidget>(name)->isHidden()) << name;
    }
    for (const char* name :
         {"mLUTGroupBox", "mLUTFrame", "mSectionsGroupBox", "mSectionsTable", "mCreateSmoothPushButton",
          "mCreateSteppedPushButton", "mAutoLabelGroupBox", "mAutoLabelCheckBox", "mAutoScaleCheckBox"}) {
        EXPECT_TRUE(find<QWidget>(name)->isVisible()) << name;
    }
}

TEST_F(TableEditor, holds_the_preview_and_three_modal_dialogs) {
    auto* preview = find<QFrame>("mLUTFrame")->findChild<LyqColorLookupTableWidget*>();
    ASSERT_TRUE(preview);
    EXPECT_TRUE(qobject_cast<QVBoxLayout*>(find<QFrame>("mLUTFrame")->layout()));
    EXPECT_TRUE(preview->isVisible());
    QDialog* const dialogs[] = {editor.findChild<LyqColorLookupTableCreateSmoothDialog*>(),
                                editor.findChild<LyqColorLookupTableCreateSteppedDialog*>(),
                                editor.findChild<LyqColorLookupTableCreateSphereSegmentSteppedDialog*>()};
    for (const QDialog* dialog : dialogs) {
        ASSERT_TRUE(dialog);
        EXPECT_EQ(dialog->parent(), &editor);
        EXPECT_TRUE(dialog->isModal());
        EXPECT_TRUE(dialog->isHidden());
        EXPECT_EQ(dialog->windowType(), Qt::Dialog);
    }
}

TEST_F(TableEditor, shows_the_default_table_top_down_from_above_the_range) {
    EXPECT_EQ(column(FROM), (QStringList{"1", "-1", "-inf"}));
    EXPECT_EQ(column(TO), (QStringList{"+inf", "1", "-1"}));
    EXPECT_EQ(column(TYPE), (QStringList{"Constant", "Rainbow", "Constant"}));
    EXPECT_EQ(labels(), (QStringList{"1", "2", "3"}));
    EXPECT_EQ(combo(0)->stringList(), (QStringList{"Continue", "Constant"}));
    EXPECT_EQ(combo(1)->stringList(), (QStringList{"Constant", "Gradient", "Rainbow", "Reverse Rainbow", "Hue cycle"}));
    EXPECT_EQ(combo(2)->stringList(), (QStringList{"Continue", "Constant"}));
    EXPECT_EQ(title(), QStringLiteral("Sections [Millimeter]"));
    EXPECT_TRUE(editor.isEnabled());
}

TEST_F(TableEditor, its_table_edits_three_columns_selects_rows_and_stretches_the_last) {
    EXPECT_EQ(rows.numCols(), 4);
    EXPECT_EQ(rows.selectionBehavior(), QAbstractItemView::SelectRows);
    EXPECT_EQ(rows.selectionMode(), QAbstractItemView::ExtendedSelection);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(rows.isColumnReadOnly(i), i == 3);
        EXPECT_EQ(rows.isColumnStretchable(i), i == 3);
    }
    EXPECT_EQ(rows.item(0, TYPE)->rtti(), 1);
    EXPECT_EQ(rows.item(0, DETAIL)->rtti(), 72618);
}

TEST_F(TableEditor, shows_each_type_in_its_place) {
    show(makeTable({0, 1, 2, 3, 4, 5}, {Lyr::Continue, Lyr::Constant, Lyr::Gradient, Lyr::Rainbow, Lyr::InvertedRainbow,
                                        Lyr::HueCycle, Lyr::Rainbow}));
    EXPECT_EQ(column(TYPE),
              (QStringList{"Constant", "Hue cycle", "Reverse Rainbow", "Rainbow", "Gradient", "Constant", "Continue"}));
    EXPECT_EQ(column(FROM), (QStringList{"5", "4", "3", "2", "1", "0", "-inf"}));
    EXPECT_EQ(column(TO), (QStringList{"+inf", "5", "4", "3", "2", "1", "0"}));
}

TEST_F(TableEditor, an_unlisted_type_leaves_the_entry_as_it_was) {
    lyrSetValue(sectionOf(table.get(), 1), Lyr::Type, Lyr::HueCycle);
    settle();
    lyrSetValue(sectionOf(table.get(), 1), Lyr::Type, Lyr::BlackGreenBlueRed);
    settle();
    EXPECT_EQ(combo(1)->currentItem(), 4);
}

TEST_F(TableEditor, a_largest_range_stands_for_infinity_as_a_plain_number) {
    lyrSetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>{-1234567.0f, 0.1f});
    LyqApplication::instance().displayUnits().setInchSystem(true);
    QLocale::setDefault(QLocale(QLocale::German));
    settle();
    EXPECT_EQ(rows.text(2, FROM), QStringLiteral("-1.23457e+06"));
    EXPECT_EQ(rows.text(0, TO), QStringLiteral("0.1"));
    lyrSetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>{-LARGEST, 5.0f});
    settle();
    EXPECT_EQ(rows.text(2, FROM), QStringLiteral("-inf"));
    EXPECT_EQ(rows.text(0, TO), QStringLiteral("5"));
}

TEST_F(TableEditor, follows_display_units_and_quantity) {
    setPositions(table.get(), {0.0f, 25.4f});
    LyqApplication::instance().displayUnits().setDisplayUnit(Lyr::Length, Lyr::Inch);
    settle();
    EXPECT_EQ(rows.text(1, TO), QStringLiteral("1"));
    EXPECT_EQ(title(), QStringLiteral("Sections [Inch]"));
    lyrSetValue(table.get(), Lyr::Quantity, Lyr::Number);
    settle();
    EXPECT_EQ(rows.text(1, TO), QStringLiteral("25.4"));
    EXPECT_EQ(title(), QStringLiteral("Sections"));
    lyrSetValue(table.get(), Lyr::Quantity, Lyr::Angle);
    setPositions(table.get(), {0.0f, 3.1415927f});
    settle();
    EXPECT_EQ(rows.text(1, TO), QStringLiteral("180"));
    EXPECT_EQ(title(), QStringLiteral("Sections [Degree]"));
}

TEST_F(TableEditor, mirrors_the_two_switches) {
    for (const int on : {0, 1}) {
        lyrSetValue(table.get(), Lyr::AutoLabel, Lyrenum(on));
        lyrSetValue(table.get(), Lyr::AutoScale, Lyrenum(1 - on));
        settle();
        EXPECT_EQ(find<QCheckBox>("mAutoLabelCheckBox")->isChecked(), on == 1);
        EXPECT_EQ(find<QCheckBox>("mAutoScaleCheckBox")->isChecked(), on == 0);
    }
}

TEST_F(TableEditor, the_switches_write_one_named_step_each) {
    const StepsSince steps;
    QTest::mouseClick(find<QCheckBox>("mAutoLabelCheckBox"), Qt::LeftButton);
    QTest::keyClick(find<QCheckBox>("mAutoScaleCheckBox"), Qt::Key_Space);
    EXPECT_EQ(lyrGetValue(table.get(), Lyr::AutoLabel, Lyrenum(-1)), Lyrenum(0));
    EXPECT_EQ(lyrGetValue(table.get(), Lyr::AutoScale, Lyrenum(-1)), Lyrenum(0));
    EXPECT_EQ(steps.names(), (QStringList{"Change auto-label settings", "Change auto-scale settings"}));
    LyqApplication::instance().undo();
    settle();
    EXPECT_TRUE(find<QCheckBox>("mAutoScaleCheckBox")->isChecked());
    EXPECT_FALSE(find<QCheckBox>("mAutoLabelCheckBox")->isChecked());
}

TEST_F(TableEditor, finite_ends_hide_their_rows_and_count_the_others_from_one) {
    const auto set = [this](int below, int above) {
        lyrSetValue(table.get(), Lyr::FiniteMode, LyrValuePair<Lyrenum>{below, above});
        settle();
    };
    set(1, 1);
    EXPECT_TRUE(rows.isRowHidden(0));
    EXPECT_TRUE(rows.isRowHidden(2));
    EXPECT_EQ(labels(), QStringList{"1"});
    set(1, 0);
    EXPECT_FALSE(rows.isRowHidden(0));
    EXPECT_TRUE(rows.isRowHidden(2));
    EXPECT_EQ(labels(), (QStringList{"1", "2"}));
    set(0, 1);
    EXPECT_TRUE(rows.isRowHidden(0));
    EXPECT_EQ(labels(), (QStringList{"1", "2"}));
    show(makeTable({0, 1, 2}, {Lyr::Constant, Lyr::Constant, Lyr::Constant, Lyr::Constant}));
    EXPECT_FALSE(rows.isRowHidden(0));
    EXPECT_EQ(labels(), (QStringList{"1", "2", "3", "4"}));
}

TEST_F(TableEditor, a_swatch_fills_its_cell_over_white_above_and_black_below) {
    LyrObject* section = sectionOf(table.get(), 0);
    setPoints(section, Lyr::PointListRed, {{0, 0.5f}});
    setPoints(section, Lyr::PointListGreen, {{0, 0}});
    setPoints(section, Lyr::PointListBlue, {{0, 1}});
    setPoints(section, Lyr::PointListAlpha, {{0, 0.5f}});
    settle();
    const QImage image = swatch(2);
    const int bottom = image.height() - 2;
    // 0.5 * 0.5 + 0.5 = 0.75 -> 191, 0.5 -> 127, 1 -> 255; over black 0.25 -> 63, 0, 0.5 -> 127.
    for (const int x : {2, image.width() / 2, image.width() - 3}) {
        EXPECT_EQ(image.pixel(x, 1), qRgb(191, 127, 255));
        EXPECT_EQ(image.pixel(x, bottom), qRgb(63, 0, 127));
    }
}

TEST_F(TableEditor, a_swatch_runs_from_the_start_of_its_section_to_its_end) {
    LyrObject* section = sectionOf(table.get(), 1);
    lyrSetValue(section, Lyr::Type, Lyrenum(Lyr::Gradient));
    setPoints(section, Lyr::PointListRed, {{0, 0}, {0, 1}});
    setPoints(section, Lyr::PointListAlpha, {{0, 1}, {0, 1}});
    settle();
    const QImage image = swatch(1);
    EXPECT_EQ(image.pixel(0, 1), qRgb(0, 0, 0));
    EXPECT_EQ(image.pixel(image.width() - 1, 1), qRgb(255, 0, 0));
}

TEST_F(TableEditor, a_continuing_section_shows_its_neighbours_colour) {
    lyrSetValue(sectionOf(table.get(), 2), Lyr::Type, Lyr::Continue);
    lyrSetValue(sectionOf(table.get(), 0), Lyr::Type, Lyr::Continue);
    settle();
    // The rainbow ends red and, asked from below, starts blue.
    EXPECT_EQ(swatch(0).pixel(5, 1), qRgb(255, 0, 0));
    EXPECT_EQ(swatch(2).pixel(5, 1), qRgb(0, 0, 255));
}

TEST_F(TableEditor, a_swatch_that_was_hidden_is_fresh_when_it_is_shown_again) {
    lyrSetValue(table.get(), Lyr::FiniteMode, LyrValuePair<Lyrenum>{1, 0});
    settle();
    setPoints(sectionOf(table.get(), 0), Lyr::PointListRed, {{0, 0}});
    settle();
    lyrSetValue(table.get(), Lyr::FiniteMode, LyrValuePair<Lyrenum>{0, 0});
    settle();
    EXPECT_EQ(swatch(2).pixel(5, 1), qRgb(0, 0, 255));
}

TEST_F(TableEditor, many_changes_cost_one_rebuild_which_runs_twice) {
    const int before = editor.syncs;
    for (int i = 0; i < 10; ++i) {
        setPositions(table.get(), {0.0f, 1.0f + static_cast<float>(i)});
        lyrSetValue(sectionOf(table.get(), 1), Lyr::Type, i % 2 ? Lyr::HueCycle : Lyr::Rainbow);
    }
    EXPECT_EQ(editor.syncs, before);
    settle();
    EXPECT_EQ(editor.syncs, before + 2);
    editor.update();
    settle();
    EXPECT_EQ(editor.syncs, before + 2);
}

TEST_F(TableEditor, a_rebuild_keeps_the_cells) {
    const QTableItem* type = rows.item(1, TYPE);
    const QTableItem* detail = rows.item(1, DETAIL);
    const QTableItem* from = rows.item(1, FROM);
    setPositions(table.get(), {4.0f, 5.0f});
    settle();
    EXPECT_EQ(rows.item(1, TYPE), type);
    EXPECT_EQ(rows.item(1, DETAIL), detail);
    EXPECT_EQ(rows.item(1, FROM), from);
    rows.setItem(1, TYPE, new QTableItem);
    setPositions(table.get(), {4.0f, 6.0f});
    settle();
    EXPECT_EQ(rows.item(1, TYPE)->rtti(), 1);
    EXPECT_EQ(rows.text(1, TYPE), QStringLiteral("Rainbow"));
}

TEST_F(TableEditor, an_inconsistent_table_disables_it_until_it_is_consistent_again) {
    const std::vector<float> broken[] = {{0, 1, 2}, {0}, {}};
    for (const auto& positions : broken) {
        setPositions(table.get(), positions);
        settle();
        EXPECT_FALSE(editor.isEnabled());
        EXPECT_EQ(column(FROM), (QStringList{"1", "-1", "-inf"}));
    }
    setPositions(table.get(), {3, 4});
    settle();
    EXPECT_TRUE(editor.isEnabled());
    EXPECT_EQ(column(FROM), (QStringList{"4", "3", "-inf"}));
}

TEST_F(TableEditor, without_a_table_it_is_disabled_and_every_slot_does_nothing) {
    editor.setLogicObject(nullptr);
    settle();
    EXPECT_FALSE(editor.isEnabled());
    EXPECT_EQ(title(), QStringLiteral("Sections"));
    EXPECT_FALSE(find<QCheckBox>("mAutoLabelCheckBox")->isChecked());
    EXPECT_FALSE(find<QCheckBox>("mAutoScaleCheckBox")->isChecked());
    EXPECT_EQ(rows.numRows(), 3);
    const StepsSince steps;
    editor.autoLabelToggledSlot();
    editor.autoScaleToggledSlot();
    for (int column = -1; column < 5; ++column) {
        editor.tableValueChangedSlot(1, column);
        editor.tableDoubleClickedSlot(1, column, Qt::LeftButton, QPoint());
        editor.tableContextMenuRequestedSlot(1, column, QPoint());
    }
    EXPECT_EQ(steps.names(), QStringList());
    editor.setLogicObject(table.get());
    settle();
    EXPECT_TRUE(editor.isEnabled());
}

TEST_F(TableEditor, an_object_that_is_no_table_disables_it) {
    ExpectedErrors wrongType(Lyr::WrongType);
    const LyrObjectPtr section(sectionOf(table.get(), 1));
    editor.setLogicObject(section.get());
    settle();
    EXPECT_FALSE(editor.isEnabled());
    EXPECT_GE(wrongType.count(), 1);
}

TEST_F(TableEditor, a_link_to_something_else_is_reported_and_its_row_skipped) {
    const LyrObjectRefPtr stranger = newTable();
    ExpectedErrors wrongType(Lyr::WrongType);
    LyrValueArrayOPCache<LyrObjectLink> links;
    links.load(table.get(), Lyr::SectionList);
    links.items()[1] = LyrObjectLink(stranger.get(), nullptr, -1);
    links.store(table.get(), Lyr::SectionList);
    setPositions(table.get(), {7, 8});
    settle();
    EXPECT_GE(wrongType.count(), 2);
    EXPECT_EQ(column(FROM), (QStringList{"8", "-1", "-inf"}));
    EXPECT_TRUE(editor.isEnabled());
    const StepsSince steps;
    editor.tableDoubleClickedSlot(1, DETAIL, Qt::LeftButton, QPoint());
    editor.tableContextMenuRequestedSlot(1, FROM, QPoint());
    rows.setText(1, TO, QStringLiteral("9"));
    editor.tableValueChangedSlot(1, TO);
    editor.tableValueChangedSlot(1, TYPE);
    EXPECT_EQ(steps.names(), QStringList());
    editor.setLogicObject(nullptr);
}

TEST_F(TableEditor, hands_its_table_to_the_preset_handler_that_its_box_names) {
    PresetReceiver receiver;
    LyqPresetRegistry::instance().add(4242, &receiver);
    editor.setLogicObject(nullptr);
    EXPECT_EQ(receiver.object, nullptr);
    find<LyqPresetComboBox>("mPresetComboBox")->setHandlerId(4242);
    editor.setLogicObject(table.get());
    EXPECT_EQ(receiver.object, table.get());
    editor.setLogicObject(nullptr);
    EXPECT_EQ(receiver.object, nullptr);
}

TEST_F(TableEditor, keeps_its_table_alive_and_goes_without_a_trace) {
    const LyrObject* object = table.get();
    const auto count = object->getRefCount();
    {
        LyqColorLookupTableEditor other;
        other.setLogicObject(table.get());
        EXPECT_GT(object->getRefCount(), count);
    }
    EXPECT_EQ(object->getRefCount(), count);
    setPositions(table.get(), {0, 5});
    settle();
}

TEST_F(TableEditor, hears_what_its_row_header_is_sent_and_lets_it_through) {
    struct Hearing : LyqColorLookupTableEditor {
        QList<QEvent::Type> heard;
        bool eventFilter(QObject* watched, QEvent* event) override {
            if (watched == findChild<QTable*>()->verticalHeader()) {
                heard.append(event->type());
            }
            return LyqColorLookupTableEditor::eventFilter(watched, event);
        }
    } hearing;
    QEvent sent(QEvent::EnabledChange);
    QCoreApplication::sendEvent(hearing.findChild<QTable*>()->verticalHeader(), &sent);
    EXPECT_EQ(hearing.heard.count(QEvent::EnabledChange), 1);
    QEvent event(QEvent::MouseButtonPress);
    EXPECT_FALSE(editor.eventFilter(rows.verticalHeader(), &event));
}

TEST_F(TableEditor, a_new_language_sets_the_texts_and_brings_the_rows_up_to_date) {
    find<QPushButton>("mCreateSmoothPushButton")->setText(QStringLiteral("old"));
    const int before = editor.syncs;
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(&editor, &change);
    settle();
    EXPECT_EQ(find<QPushButton>("mCreateSmoothPushButton")->text(), QStringLiteral("Create smooth"));
    EXPECT_EQ(title(), QStringLiteral("Sections [Millimeter]"));
    EXPECT_EQ(editor.syncs, before + 2);
}

TEST_F(TableEditor, its_columns_have_room_for_every_text) {
    setPositions(table.get(), {-1234567.0f, -0.000123456f});
    editor.resize(editor.sizeHint());
    settle();
    for (int column = 0; column < 3; ++column) {
        for (int row = 0; row < 3; ++row) {
            const int needed = rows.fontMetrics().horizontalAdvance(rows.text(row, column));
            EXPECT_GT(rows.columnWidth(column), needed + 6) << rows.text(row, column).toStdString();
        }
    }
    EXPECT_GT(rows.columnWidth(TYPE), rows.fontMetrics().horizontalAdvance(QStringLiteral("Reverse Rainbow")) + 16);
    editor.resize(editor.sizeHint());
    settle();
    EXPECT_FALSE(rows.horizontalScrollBar()->isVisible());
}

TEST_F(TableEditor, ten_thousand_sections_are_shown) {
    std::vector<float> positions;
    std::vector<Lyrenum> types(10000, Lyr::Constant);
    for (int i = 0; i < 9999; ++i) {
        positions.push_back(static_cast<float>(i));
    }
    show(makeTable(positions, types));
    EXPECT_EQ(rows.numRows(), 10000);
    EXPECT_EQ(rows.text(0, FROM), QStringLiteral("9998"));
    EXPECT_EQ(rows.text(9999, TO), QStringLiteral("0"));
    EXPECT_EQ(rows.text(4999, TO), QStringLiteral("5000"));
    show(newTable());
    EXPECT_EQ(rows.numRows(), 3);
}
