#include <colortable/editor/LyqColorLookupTableCreateSmoothDialog.h>
#include <colortable/editor/LyqColorLookupTableCreateSphereSegmentSteppedDialog.h>
#include <colortable/editor/LyqColorLookupTableCreateSteppedDialog.h>
#include <lyr_core/LyrUnitIdentifiers.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LyqMessageBox.h>
#include <lys_core/LyqSpinBox.h>
#include <lys_core/LyrApplicationObject.h>

#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <limits>

#include "EditorTools.h"

namespace {

constexpr float LARGEST = std::numeric_limits<float>::max();

class CreateDialogs : private ToolkitApplication, public testing::Test {
protected:
    using Smooth = LyqColorLookupTableCreateSmoothDialog;
    using Stepped = LyqColorLookupTableCreateSteppedDialog;
    using Sphere = LyqColorLookupTableCreateSphereSegmentSteppedDialog;

    CreateDialogs() { QLocale::setDefault(QLocale::c()); }

    static LyqSpinBox& box(QDialog& dialog, const char* name) { return *dialog.findChild<LyqSpinBox*>(name); }
    static LyqComboBox& combo(QDialog& dialog) { return *dialog.findChild<LyqComboBox*>("mTypeComboBox"); }
    static void press(QDialog& dialog, const char* button) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(button), Qt::LeftButton);
    }
    /** Types a number into a box and leaves it. */
    static void type(QDialog& dialog, const char* name, const char* text) {
        LyqSpinBox& field = box(dialog, name);
        field.setFocus();
        field.selectAll();
        QTest::keyClicks(&field, QString::fromUtf8(text));
        field.interpretText();
    }

    static QStringList labels(const QDialog& dialog) {
        QStringList texts;
        for (const QLabel* label : dialog.findChildren<QLabel*>()) {
            texts.append(label->text());
        }
        return texts;
    }

    LyrObjectRefPtr table = newTable();
};

}  // namespace

TEST_F(CreateDialogs, have_their_captions_texts_and_buttons) {
    Smooth smooth;
    Stepped stepped;
    Sphere sphere;
    EXPECT_EQ(smooth.windowTitle(), QStringLiteral("Create smooth table"));
    EXPECT_EQ(stepped.windowTitle(), QStringLiteral("Create stepped table"));
    EXPECT_EQ(sphere.windowTitle(), QStringLiteral("Create stepped table"));
    const QString stepHeading = QStringLiteral("Create stepped lookup-table with");
    EXPECT_EQ(labels(smooth), (QStringList{"Create continuous lookup-table with", "from", "to", "type"}));
    EXPECT_EQ(labels(stepped), (QStringList{stepHeading, "from", "to", "step", "type"}));
    EXPECT_EQ(labels(sphere), (QStringList{stepHeading, "from", "to", "step", "type"}));
    for (QDialog* dialog : std::initializer_list<QDialog*>{&smooth, &stepped, &sphere}) {
        EXPECT_EQ(dialog->findChild<QPushButton*>("mOkPushButton")->text(), QStringLiteral("Ok"));
        EXPECT_EQ(dialog->findChild<QPushButton*>("mCancelPushButton")->text(), QStringLiteral("Cancel"));
        EXPECT_EQ(combo(*dialog).items(), (QStringList{"Rainbow", "Reverse Rainbow", "Hue Cycle"}));
        EXPECT_EQ(combo(*dialog).currentIndex(), 0);
    }
    EXPECT_FALSE(smooth.findChild<LyqSpinBox*>("mStepSpinBox"));
}

TEST_F(CreateDialogs, translate_the_old_window_flags_to_an_ordinary_dialog) {
    QWidget parent;
    Smooth dialog(&parent, "name", true, 2050);
    EXPECT_EQ(dialog.objectName(), QStringLiteral("name"));
    EXPECT_TRUE(dialog.isModal());
    EXPECT_EQ(dialog.windowType(), Qt::Dialog);
    EXPECT_FALSE(dialog.windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_FALSE(Stepped(&parent).isModal());
}

TEST_F(CreateDialogs, smooth_and_stepped_fields_take_all_floats_as_lengths_with_five_decimals) {
    Smooth smooth;
    Stepped stepped;
    for (LyqSpinBox* field : {&box(smooth, "mFromSpinBox"), &box(smooth, "mToSpinBox"), &box(stepped, "mFromSpinBox"),
                              &box(stepped, "mToSpinBox"), &box(stepped, "mStepSpinBox")}) {
        EXPECT_EQ(field->getQuantity(), Lyr::Length);
        EXPECT_EQ(field->getPrecision(), 5);
        EXPECT_EQ(field->value(), 0.0);
        EXPECT_EQ(field->maximum(), double(LARGEST));
        EXPECT_EQ(field->minimum(), field->objectName() == QStringLiteral("mStepSpinBox") ? 0.0 : -double(LARGEST));
        EXPECT_LT(field->sizeHint().width(), 400);
    }
}

TEST_F(CreateDialogs, sphere_segment_fields_show_degrees_and_hold_radians) {
    Sphere dialog;
    const struct {
        const char* name;
        float value;
        const char* text;
    } fields[] = {{"mFromSpinBox", 0.0f, "0 \u00b0"},
                  {"mToSpinBox", 1.5707964f, "90 \u00b0"},
                  {"mStepSpinBox", 0.2617994f, "15 \u00b0"}};
    for (const auto& field : fields) {
        LyqSpinBox& spin = box(dialog, field.name);
        EXPECT_EQ(static_cast<float>(spin.value()), field.value);
        EXPECT_EQ(spin.text(), QString::fromUtf8(field.text));
        EXPECT_EQ(spin.getQuantity(), Lyr::Angle);
        EXPECT_EQ(spin.getUnit(), Lyrenum("Degree", true));
        EXPECT_EQ(static_cast<float>(spin.minimum()), 0.0f);
        EXPECT_EQ(static_cast<float>(spin.maximum()), 1.5707964f);
        EXPECT_EQ(spin.getPrecision(), 5);
    }
    type(dialog, "mFromSpinBox", "45");
    EXPECT_FLOAT_EQ(static_cast<float>(box(dialog, "mFromSpinBox").value()), 0.78539816f);
    type(dialog, "mFromSpinBox", "91");
    EXPECT_FLOAT_EQ(static_cast<float>(box(dialog, "mFromSpinBox").value()), 0.78539816f);
}

TEST_F(CreateDialogs, sphere_segment_defaults_build_thirty_boundaries) {
    Sphere dialog;
    dialog.setTable(table.get());
    const StepsSince steps;
    press(dialog, "mOkPushButton");
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(positionsOf(table.get()).size(), 30u);
    EXPECT_EQ(steps.names(), QStringList{"Create stepped colortable"});
}

TEST_F(CreateDialogs, a_smooth_table_is_built_as_one_named_step) {
    Smooth dialog;
    dialog.setTable(table.get());
    type(dialog, "mFromSpinBox", "2.5");
    type(dialog, "mToSpinBox", "1 cm");
    combo(dialog).setCurrentIndex(1);
    const StepsSince steps;
    press(dialog, "mOkPushButton");
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(positionsOf(table.get()), (std::vector<float>{2.5f, 10.0f}));
    EXPECT_EQ(typeOf(sectionOf(table.get(), 1)), Lyr::InvertedRainbow);
    EXPECT_EQ(steps.names(), QStringList{"Create smooth colortable"});
    EXPECT_TRUE(LyqApplication::instance().undo());
    EXPECT_EQ(positionsOf(table.get()), (std::vector<float>{-1.0f, 1.0f}));
}

TEST_F(CreateDialogs, a_stepped_table_is_built_as_one_named_step) {
    Stepped dialog;
    dialog.setTable(table.get());
    type(dialog, "mToSpinBox", "10");
    type(dialog, "mStepSpinBox", "5");
    combo(dialog).setCurrentIndex(2);
    const StepsSince steps;
    press(dialog, "mOkPushButton");
    EXPECT_EQ(positionsOf(table.get()), (std::vector<float>{0.0f, 5.0f, 10.0f}));
    EXPECT_EQ(lyrGetValue(table.get(), Lyr::CreationType, Lyrenum(-1)), Lyr::HueCycle);
    EXPECT_EQ(lyrGetValue(table.get(), Lyr::AutoLabel, Lyrenum(-1)), Lyrenum(0));
    EXPECT_EQ(steps.names(), QStringList{"Create stepped colortable"});
}

TEST_F(CreateDialogs, text_that_is_still_being_typed_counts) {
    Smooth dialog;
    dialog.setTable(table.get());
    dialog.show();
    LyqSpinBox& to = box(dialog, "mToSpinBox");
    to.setFocus();
    to.selectAll();
    QTest::keyClicks(&to, QStringLiteral("7"));
    dialog.applySlot();
    EXPECT_EQ(positionsOf(table.get()), (std::vector<float>{0.0f, 7.0f}));
}

TEST_F(CreateDialogs, refused_parameters_warn_and_accept_and_leave_no_step) {
    const auto check = [&](auto& dialog) {
        ExpectedErrors refused(Lyr::InvalidParameters);
        dialog.setTable(table.get());
        box(dialog, "mToSpinBox").setValue(box(dialog, "mFromSpinBox").value());
        QString caption;
        QString text;
        qsizetype buttons = 0;
        whenModal<LyqMessageBox>([&](LyqMessageBox& message) {
            caption = message.windowTitle();
            text = message.text();
            buttons = message.buttons().size();
            EXPECT_EQ(message.icon(), QMessageBox::Warning);
            EXPECT_EQ(message.parentWidget(), &dialog);
            message.accept();
        });
        const StepsSince steps;
        dialog.show();
        press(dialog, "mOkPushButton");
        EXPECT_EQ(caption, QStringLiteral("Invalid parameters"));
        EXPECT_EQ(text, QStringLiteral("Could not create lookup table.\nInvalid parameters given."));
        EXPECT_EQ(buttons, 1);
        EXPECT_EQ(dialog.result(), QDialog::Accepted);
        EXPECT_FALSE(dialog.isVisible());
        EXPECT_EQ(steps.names(), QStringList());
        EXPECT_EQ(positionsOf(table.get()), (std::vector<float>{-1.0f, 1.0f}));
        EXPECT_GE(refused.count(), 1);
    };
    Smooth smooth;
    check(smooth);
    Stepped stepped;
    check(stepped);
    Sphere sphere;
    check(sphere);
}

TEST_F(CreateDialogs, without_a_table_they_are_rejected_silently) {
    Smooth smooth;
    Stepped stepped;
    Sphere sphere;
    for (QDialog* dialog : std::initializer_list<QDialog*>{&smooth, &stepped, &sphere}) {
        QSignalSpy rejected(dialog, &QDialog::rejected);
        const StepsSince steps;
        dialog->show();
        press(*dialog, "mOkPushButton");
        EXPECT_EQ(rejected.count(), 1);
        EXPECT_EQ(steps.names(), QStringList());
    }
}

TEST_F(CreateDialogs, cancel_and_escape_reject) {
    for (const bool byKey : {false, true}) {
        Stepped dialog;
        dialog.setTable(table.get());
        dialog.show();
        if (byKey) {
            QTest::keyClick(&dialog, Qt::Key_Escape);
        } else {
            press(dialog, "mCancelPushButton");
        }
        EXPECT_EQ(dialog.result(), QDialog::Rejected);
        EXPECT_FALSE(dialog.isVisible());
    }
    EXPECT_EQ(positionsOf(table.get()), (std::vector<float>{-1.0f, 1.0f}));
}

TEST_F(CreateDialogs, return_in_a_field_takes_the_number_and_applies) {
    Smooth dialog;
    dialog.setTable(table.get());
    dialog.show();
    LyqSpinBox& to = box(dialog, "mToSpinBox");
    to.setFocus();
    to.selectAll();
    QTest::keyClicks(&to, QStringLiteral("3"));
    QTest::keyClick(&to, Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(positionsOf(table.get()), (std::vector<float>{0.0f, 3.0f}));
}

TEST_F(CreateDialogs, a_table_gives_its_quantity_and_largest_range_but_resets_no_field) {
    lyrSetValue(table.get(), Lyr::Quantity, Lyr::Angle);
    lyrSetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>{0.0f, 100.0f});
    Stepped dialog;
    box(dialog, "mFromSpinBox").setValue(12.0);
    box(dialog, "mStepSpinBox").setValue(500.0);
    dialog.setTable(table.get());
    for (const char* name : {"mFromSpinBox", "mToSpinBox"}) {
        EXPECT_EQ(box(dialog, name).getQuantity(), Lyr::Angle);
        EXPECT_EQ(box(dialog, name).minimum(), 0.0);
        EXPECT_EQ(box(dialog, name).maximum(), 100.0);
    }
    EXPECT_EQ(box(dialog, "mStepSpinBox").getQuantity(), Lyr::Angle);
    EXPECT_EQ(box(dialog, "mStepSpinBox").maximum(), double(LARGEST));
    EXPECT_EQ(box(dialog, "mFromSpinBox").value(), 12.0);
    EXPECT_EQ(box(dialog, "mStepSpinBox").value(), 500.0);
    dialog.setTable(newTable().get());
    EXPECT_EQ(box(dialog, "mFromSpinBox").getQuantity(), Lyr::Length);
    EXPECT_EQ(box(dialog, "mFromSpinBox").minimum(), -double(LARGEST));
}

TEST_F(CreateDialogs, numbers_outside_the_largest_range_do_not_get_in) {
    lyrSetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>{0.0f, 100.0f});
    Smooth smooth;
    Stepped stepped;
    smooth.setTable(table.get());
    stepped.setTable(table.get());
    for (QDialog* dialog : std::initializer_list<QDialog*>{&smooth, &stepped}) {
        box(*dialog, "mFromSpinBox").setValue(12.5);
        box(*dialog, "mToSpinBox").setValue(37.25);
        for (const char* text : {"-1", "-0.5 mm", "100.1", "1 m", "1e39", "nan", "inf", "abc", ""}) {
            type(*dialog, "mFromSpinBox", text);
            type(*dialog, "mToSpinBox", text);
            EXPECT_EQ(box(*dialog, "mFromSpinBox").value(), 12.5) << text;
            EXPECT_EQ(box(*dialog, "mToSpinBox").value(), 37.25) << text;
        }
    }
}

TEST_F(CreateDialogs, after_a_refused_number_nothing_is_built_until_the_user_has_been_told) {
    enum class By { Mouse, Return, Slot };
    for (const By by : {By::Mouse, By::Return, By::Slot}) {
        Smooth dialog;
        dialog.setTable(table.get());
        box(dialog, "mToSpinBox").setValue(4.0);
        dialog.show();
        QApplication::setActiveWindow(&dialog);
        LyqSpinBox& to = box(dialog, "mToSpinBox");
        to.setFocus();
        to.selectAll();
        QTest::keyClicks(&to, QStringLiteral("many"));
        QString why;
        whenModal<LyqMessageBox>([&](LyqMessageBox& message) {
            why = message.text();
            message.accept();
        });
        if (by == By::Mouse) {
            dialog.findChild<QPushButton*>("mOkPushButton")->setFocus();
            press(dialog, "mOkPushButton");
        } else if (by == By::Return) {
            QTest::keyClick(&to, Qt::Key_Return);
        } else {
            dialog.applySlot();
        }
        EXPECT_TRUE(why.startsWith(QStringLiteral("\"many\" is no number"))) << why.toStdString();
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(positionsOf(table.get()), (std::vector<float>{-1.0f, 1.0f}));
        EXPECT_EQ(to.value(), 4.0);
        EXPECT_EQ(dialog.focusWidget(), &to);
        QTest::keyClicks(&to, QStringLiteral("5"));
        dialog.applySlot();
        EXPECT_EQ(positionsOf(table.get()), (std::vector<float>{0.0f, 5.0f}));
        EXPECT_FALSE(dialog.isVisible());
        ASSERT_TRUE(LyqApplication::instance().undo());
    }
}

TEST_F(CreateDialogs, a_refused_number_that_was_typed_anew_is_forgotten) {
    Stepped dialog;
    dialog.setTable(table.get());
    type(dialog, "mStepSpinBox", "-1");
    type(dialog, "mStepSpinBox", "2");
    type(dialog, "mToSpinBox", "4");
    dialog.applySlot();
    EXPECT_EQ(positionsOf(table.get()), (std::vector<float>{0.0f, 2.0f, 4.0f}));
}

TEST_F(CreateDialogs, a_dialog_that_is_run_again_knows_of_no_refusal_before) {
    Smooth dialog;
    type(dialog, "mToSpinBox", "many");
    dialog.setTable(table.get());
    box(dialog, "mToSpinBox").setValue(4.0);
    type(dialog, "mFromSpinBox", "many");
    dialog.setTable(table.get());
    dialog.applySlot();
    EXPECT_EQ(positionsOf(table.get()), (std::vector<float>{0.0f, 4.0f}));
}

TEST_F(CreateDialogs, the_sphere_segment_dialog_keeps_degrees_whatever_the_table_measures) {
    lyrSetValue(table.get(), Lyr::Quantity, Lyr::Volume);
    lyrSetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>{0.0f, 0.1f});
    Sphere dialog;
    dialog.setTable(table.get());
    EXPECT_EQ(box(dialog, "mToSpinBox").getQuantity(), Lyr::Angle);
    EXPECT_EQ(static_cast<float>(box(dialog, "mToSpinBox").value()), 1.5707964f);
    LyrDisplayUnits& units = LyqApplication::instance().displayUnits();
    units.setDisplayUnit(Lyr::Angle, Lyr::Radian);
    EXPECT_EQ(box(dialog, "mToSpinBox").text(), QStringLiteral("90 \u00b0"));
    units.setDisplayUnit(Lyr::Angle, Lyrenum("Degree", true));
}

TEST_F(CreateDialogs, an_unlisted_scheme_index_is_the_rainbow) {
    Smooth dialog;
    dialog.setTable(table.get());
    box(dialog, "mToSpinBox").setValue(1.0);
    combo(dialog).setCurrentIndex(-1);
    dialog.applySlot();
    EXPECT_EQ(typeOf(sectionOf(table.get(), 1)), Lyr::Rainbow);
}

TEST_F(CreateDialogs, a_table_that_everybody_else_let_go_of_is_still_built) {
    Smooth dialog;
    dialog.setTable(table.get());
    const LyrObject* gone = table.get();
    table.release();
    box(dialog, "mToSpinBox").setValue(4.0);
    dialog.applySlot();
    EXPECT_EQ(positionsOf(gone), (std::vector<float>{0.0f, 4.0f}));
}

TEST_F(CreateDialogs, tab_goes_through_the_fields_in_their_order) {
    Stepped dialog;
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    box(dialog, "mFromSpinBox").setFocus();
    for (const char* next : {"mToSpinBox", "mStepSpinBox", "mTypeComboBox", "mOkPushButton", "mCancelPushButton"}) {
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
        ASSERT_TRUE(dialog.focusWidget());
        EXPECT_EQ(dialog.focusWidget()->objectName(), QString::fromUtf8(next));
    }
}
