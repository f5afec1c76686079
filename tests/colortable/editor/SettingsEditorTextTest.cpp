#include <colortable/editor/SettingsEditorFixture.h>

#include <lys_core/LyqTranslations.h>

#include <QApplication>
#include <QColorDialog>
#include <QFontDialog>
#include <QKeySequence>
#include <QLocale>
#include <QSet>
#include <QTimer>
#include <QWheelEvent>

#include <functional>

namespace {

/** Does something with the colour dialog of a widget once it is open. */
void whenColorDialogOpens(std::function<void(QColorDialog&)> act) {
    QTimer::singleShot(0, [act = std::move(act)] {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        act(*dialog);
    });
}

/** Does something with the font dialog once it is open. */
void whenFontDialogOpens(std::function<void(QFontDialog&)> act) {
    QTimer::singleShot(0, [act = std::move(act)] {
        auto* dialog = qobject_cast<QFontDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        act(*dialog);
    });
}

}  // namespace

TEST_F(SettingsEditor, typing_in_the_caption_is_one_step) {
    type(caption(), "Wall");
    EXPECT_EQ(textOf(second.get(), "DescriptionTemplate"), "Wall");
    ASSERT_EQ(history().count(), 1);
    EXPECT_EQ(history().text(0), "Change colorbar settings");
    press(caption(), Qt::Key_Return);
    type(caption(), " thickness");
    EXPECT_EQ(history().count(), 2) << "after Return another line begins";
    application().undo();
    settle();
    EXPECT_EQ(caption().text(), "Wall");
    application().undo();
    settle();
    EXPECT_EQ(caption().text(), "");
    EXPECT_EQ(textOf(second.get(), "DescriptionTemplate"), "");
}

TEST_F(SettingsEditor, typing_goes_on_in_another_step_after_another_control_was_used) {
    type(caption(), "A");
    choose("mPositionComboBox", 1);
    type(caption(), "B");
    EXPECT_EQ(history().count(), 3);
    application().undo();
    EXPECT_EQ(textOf(first.get(), "DescriptionTemplate"), "A");
}

TEST_F(SettingsEditor, nobody_elses_steps_get_into_a_gesture) {
    type(caption(), "A");
    {
        const LyqApplication::UserActionScope action("Elsewhere");
        for (LyrObject* object : {first.get(), second.get()}) {
            lyrSetValue<const char*>(object, Lyrenum("DescriptionTemplate", true), "Other");
        }
    }
    EXPECT_EQ(history().count(), 2);
    application().undo();
    EXPECT_EQ(textOf(first.get(), "DescriptionTemplate"), "A");
}

TEST_F(SettingsEditor, the_cursor_stays_while_typing_inside_the_caption) {
    caption().setText("Wall [%l]");
    settle();
    caption().setCursorPosition(4);
    type(caption(), "s");
    settle();
    EXPECT_EQ(caption().text(), "Walls [%l]");
    EXPECT_EQ(caption().cursorPosition(), 5);
    EXPECT_TRUE(caption().isUndoAvailable()) << "the line's own history is kept";
    lyrSetValue<const char*>(first.get(), Lyrenum("DescriptionTemplate", true), "New words");
    settle();
    EXPECT_EQ(caption().cursorPosition(), 5);
    lyrSetValue<const char*>(first.get(), Lyrenum("DescriptionTemplate", true), "No");
    settle();
    EXPECT_EQ(caption().cursorPosition(), 2);
}

TEST_F(SettingsEditor, placeholders_are_edited_by_name_and_previewed_by_value) {
    caption().setText("{Value type} {Value unit} {Nothing}");
    settle();
    EXPECT_EQ(textOf(first.get(), "DescriptionTemplate"), "%{value.type} %{value.unit} {Nothing}");
    EXPECT_EQ(caption().text(), "{Value type} {Value unit} {Nothing}");
    EXPECT_EQ(control<QLabel>("mDescriptionPreviewLabel")->text(), "  {Nothing}")
        << "plain settings have neither a type nor a unit";
    lyrSetValue<const char*>(first.get(), Lyrenum("DescriptionTemplate", true), "%{value.type}: <b>%{unknown}</b>");
    settle();
    EXPECT_EQ(caption().text(), "{Value type}: <b>%{unknown}</b>");
    EXPECT_EQ(control<QLabel>("mDescriptionPreviewLabel")->text(), ": <b>%{unknown}</b>");
    EXPECT_EQ(control<QLabel>("mDescriptionPreviewLabel")->textFormat(), Qt::PlainText);
}

TEST_F(SettingsEditor, a_caption_of_any_text_survives_the_way_to_the_model_and_back) {
    for (const char* text : {"%", "%{", "{", "}{", "{}", "{Value type", "\xC3\xA4\xF0\x9F\x8C\x88", "a\tb"}) {
        caption().setText(QString::fromUtf8(text));
        settle();
        EXPECT_EQ(caption().text(), QString::fromUtf8(text));
        EXPECT_EQ(textOf(first.get(), "DescriptionTemplate"), QString::fromUtf8(text));
    }
}

TEST_F(SettingsEditor, a_half_typed_number_is_not_written) {
    LyqSpinBox& box = spin("mThicknessSpinBox");
    box.selectAll();
    type(box, "50");
    settle();
    EXPECT_EQ(valueOf<long long>(first.get(), Lyr::Thickness, -1), 12);
    editor.update();
    settle();
    EXPECT_EQ(box.text(), "50") << "the box is left alone";
    press(box, Qt::Key_Return);
    EXPECT_EQ(valueOf<long long>(first.get(), Lyr::Thickness, -1), 50);
    EXPECT_EQ(valueOf<long long>(second.get(), Lyr::Thickness, -1), 50);
    EXPECT_EQ(history().count(), 1);
}

TEST_F(SettingsEditor, a_change_from_elsewhere_replaces_a_half_typed_number) {
    LyqSpinBox& box = spin("mThicknessSpinBox");
    box.selectAll();
    type(box, "5");
    lyrSetValue(first.get(), Lyr::Thickness, 20LL);
    settle();
    EXPECT_EQ(box.text(), "20");
}

TEST_F(SettingsEditor, a_refused_number_is_not_written) {
    LyqSpinBox& box = spin("mSizeSpinBox");
    QStringList reasons;
    QObject::connect(&box, &LyqSpinBox::refused, [&](const QString& reason) { reasons.append(reason); });
    for (const char* wrong : {"0", "101", "nan", "inf", "many"}) {
        box.selectAll();
        type(box, wrong);
        press(box, Qt::Key_Return);
        EXPECT_EQ(box.text(), "70") << wrong;
    }
    EXPECT_EQ(reasons.size(), 5);
    EXPECT_EQ(valueOf<float>(first.get(), Lyr::Size, -1.0f), 0.7f);
    EXPECT_EQ(history().count(), 0);
}

TEST_F(SettingsEditor, each_number_is_a_step_and_a_held_key_is_one) {
    LyqSpinBox& box = spin("mThicknessSpinBox");
    press(box, Qt::Key_Up);
    press(box, Qt::Key_Up);
    EXPECT_EQ(history().count(), 2);
    press(box, Qt::Key_Up, {}, true);
    press(box, Qt::Key_Up, {}, true);
    EXPECT_EQ(history().count(), 2);
    EXPECT_GE(valueOf<long long>(first.get(), Lyr::Thickness, -1), 16);
    QKeyEvent up(QEvent::KeyRelease, Qt::Key_Up, Qt::NoModifier);
    QCoreApplication::sendEvent(&box, &up);
    application().undo();
    EXPECT_EQ(valueOf<long long>(first.get(), Lyr::Thickness, -1), 13);
}

TEST_F(SettingsEditor, a_wheel_that_is_kept_turning_makes_one_step) {
    LyqSpinBox& box = spin("mThicknessSpinBox");
    editor.activateWindow();
    box.setFocus();
    settle();
    ASSERT_TRUE(box.hasFocus());
    for (int i = 0; i < 3; ++i) {
        QWheelEvent notch(QPointF(2, 2), box.mapToGlobal(QPointF(2, 2)), QPoint(), QPoint(0, 120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&box, &notch);
    }
    EXPECT_EQ(valueOf<long long>(first.get(), Lyr::Thickness, -1), 15);
    EXPECT_EQ(history().count(), 1);
}

TEST_F(SettingsEditor, numbers_that_nobody_holds_are_steps_of_their_own) {
    spin("mThicknessSpinBox").setValue(30.0);
    spin("mThicknessSpinBox").setValue(40.0);
    EXPECT_EQ(history().count(), 2);
}

TEST_F(SettingsEditor, a_number_that_is_left_as_it_is_makes_no_step) {
    lyrSetValue(first.get(), Lyr::Size, 0.123f);
    settle();
    LyqSpinBox& box = spin("mSizeSpinBox");
    EXPECT_EQ(box.text(), "12");
    press(box, Qt::Key_Return);
    QFocusEvent leave(QEvent::FocusOut, Qt::TabFocusReason);
    QCoreApplication::sendEvent(&box, &leave);
    EXPECT_EQ(valueOf<float>(first.get(), Lyr::Size, -1.0f), 0.123f);
    EXPECT_EQ(history().count(), 0);
}

TEST_F(SettingsEditor, colours_that_are_tried_are_one_step_and_go_to_every_object) {
    auto* widget = control<LyqColorWidget>("mColorWidget");
    for (const int green : {10, 51, 102}) {
        Q_EMIT widget->rgbaChanged(LyqColorWidget::fromQColor(QColor(0, green, 0)));
    }
    EXPECT_EQ(valueOf(second.get(), Lyr::Color, LyrRGBAf()), LyrRGBAf(0, 102 * 0.003921569f, 0, 255 * 0.003921569f));
    EXPECT_EQ(history().count(), 1);
    Q_EMIT widget->choosingFinished();
    Q_EMIT widget->rgbaChanged({0, 0, 1, 1});
    EXPECT_EQ(history().count(), 2);
    Q_EMIT control<LyqColorWidget>("mOutlineColorWidget")->rgbaChanged({1, 0, 0, 1});
    EXPECT_EQ(valueOf(second.get(), Lyr::OutlineColor, LyrRGBAf()), LyrRGBAf(1, 0, 0, 1));
    EXPECT_EQ(history().count(), 3);
    application().undo();
    application().undo();
    application().undo();
    EXPECT_EQ(valueOf(second.get(), Lyr::Color, LyrRGBAf()), LyrRGBAf(1, 1, 1, 1));
    EXPECT_FALSE(application().undo());
}

TEST_F(SettingsEditor, a_colour_that_is_chosen_for_objects_that_differ_is_one_step) {
    const LyrRGBAf red(0.501f, 0, 0, 1);
    const float unit = 0.003921569f;
    // The second one has the colour already that is tried first.
    lyrSetValue(first.get(), Lyr::Color, red);
    lyrSetValue(second.get(), Lyr::Color, LyrRGBAf(0, 51 * unit, 0, 255 * unit));
    settle();
    whenColorDialogOpens([&](QColorDialog& dialog) {
        dialog.setCurrentColor(QColor(0, 51, 0));
        dialog.setCurrentColor(QColor(0, 102, 0));
        dialog.accept();
    });
    control<LyqColorWidget>("mColorWidget")->click();
    const LyrRGBAf chosen(0, 102 * unit, 0, 255 * unit);
    EXPECT_EQ(valueOf(first.get(), Lyr::Color, LyrRGBAf()), chosen);
    EXPECT_EQ(valueOf(second.get(), Lyr::Color, LyrRGBAf()), chosen);
    ASSERT_EQ(history().count(), 1);
    application().undo();
    EXPECT_EQ(valueOf(first.get(), Lyr::Color, LyrRGBAf()), red);
    EXPECT_EQ(valueOf(second.get(), Lyr::Color, LyrRGBAf()), LyrRGBAf(0, 51 * unit, 0, 255 * unit));
}

TEST_F(SettingsEditor, cancelling_gives_every_object_its_own_colour_back_and_leaves_no_step) {
    const LyrRGBAf red(0.501f, 0, 0, 1);
    const LyrRGBAf blue(0, 0, 1.5f, 0.25f);
    lyrSetValue(first.get(), Lyr::OutlineColor, red);
    lyrSetValue(second.get(), Lyr::OutlineColor, blue);
    settle();
    for (const bool tries : {true, false}) {
        LyrRGBAf tried;
        whenColorDialogOpens([&](QColorDialog& dialog) {
            if (tries) {
                dialog.setCurrentColor(QColor(0, 51, 0));
                dialog.setCurrentColor(QColor(0, 102, 0));
            }
            tried = valueOf(second.get(), Lyr::OutlineColor, LyrRGBAf());
            settle();
            dialog.reject();
        });
        control<LyqColorWidget>("mOutlineColorWidget")->click();
        EXPECT_EQ(tried == blue, !tries);
        EXPECT_EQ(valueOf(first.get(), Lyr::OutlineColor, LyrRGBAf()), red);
        EXPECT_EQ(valueOf(second.get(), Lyr::OutlineColor, LyrRGBAf()), blue);
        EXPECT_EQ(history().count(), 0);
        EXPECT_EQ(control<LyqColorWidget>("mOutlineColorWidget")->rgba(), red);
    }
}

TEST_F(SettingsEditor, other_objects_close_the_colour_dialog_as_if_it_had_been_cancelled) {
    const LyrObjectRefPtr third("LyrColorLookupTableRenderSettings", Lyr::DocumentScope);
    lyrSetValue(third.get(), Lyr::Color, LyrRGBAf(0, 0, 0.5f, 1));
    bool open = true;
    whenColorDialogOpens([&](QColorDialog& dialog) {
        dialog.setCurrentColor(QColor(0, 51, 0));
        edit({third.get()});
        open = dialog.isVisible();
        dialog.accept();
    });
    control<LyqColorWidget>("mColorWidget")->click();
    EXPECT_FALSE(open);
    EXPECT_EQ(valueOf(third.get(), Lyr::Color, LyrRGBAf()), LyrRGBAf(0, 0, 0.5f, 1));
    whenColorDialogOpens([&](QColorDialog& dialog) {
        dialog.setCurrentColor(QColor(0, 51, 0));
        edit({first.get(), second.get()});
    });
    control<LyqColorWidget>("mColorWidget")->click();
    EXPECT_EQ(valueOf(third.get(), Lyr::Color, LyrRGBAf()), LyrRGBAf(0, 0, 0.5f, 1));
    EXPECT_NE(valueOf(first.get(), Lyr::Color, LyrRGBAf()), LyrRGBAf(0, 0, 0.5f, 1));
}

TEST_F(SettingsEditor, a_font_that_was_chosen_for_other_objects_is_not_written) {
    const LyrObjectRefPtr third("LyrColorLookupTableRenderSettings", Lyr::DocumentScope);
    bool open = true;
    whenFontDialogOpens([&](QFontDialog& dialog) {
        dialog.setCurrentFont(QFont("Liberation Serif", 17));
        edit({third.get()});
        open = dialog.isVisible();
        dialog.accept();
    });
    control<QPushButton>("mFontPushButton")->click();
    EXPECT_FALSE(open);
    for (const LyrObject* object : {first.get(), second.get(), third.get()}) {
        EXPECT_EQ(textOf(object, "Font"), "Arial,10,-1,5,50,0,0,0,0,0");
    }
    EXPECT_EQ(history().count(), 0);
}

TEST_F(SettingsEditor, captions_that_become_the_same_by_typing_are_one_step) {
    lyrSetValue<const char*>(first.get(), Lyrenum("DescriptionTemplate", true), "A");
    lyrSetValue<const char*>(second.get(), Lyrenum("DescriptionTemplate", true), "AB");
    settle();
    caption().end(false);
    type(caption(), "BC");
    EXPECT_EQ(textOf(second.get(), "DescriptionTemplate"), "ABC");
    ASSERT_EQ(history().count(), 1);
    application().undo();
    EXPECT_EQ(textOf(first.get(), "DescriptionTemplate"), "A");
    EXPECT_EQ(textOf(second.get(), "DescriptionTemplate"), "AB");
    application().redo();
    EXPECT_EQ(textOf(first.get(), "DescriptionTemplate"), "ABC");
    EXPECT_EQ(textOf(second.get(), "DescriptionTemplate"), "ABC");
}

TEST_F(SettingsEditor, the_font_button_describes_the_font) {
    const auto shown = [&](const char* font) {
        lyrSetValue<const char*>(first.get(), Lyr::Font, font);
        settle();
        return control<QPushButton>("mFontPushButton")->text();
    };
    EXPECT_EQ(shown("Courier,12,-1,5,75,1,1,1,0,0"), "Courier, 12 pt, bold, italic, underline, strike out");
    EXPECT_EQ(shown("Arial,9,-1,5,400,0,0,0,0,0,0,0,0,0,0,1"), "Arial, 9 pt");
    const QFont plain = QApplication::font();
    const QString application = QString("%1, %2 pt").arg(plain.family()).arg(plain.pointSize());
    for (const char* none : {"Default", "", "junk", "Arial,x"}) {
        EXPECT_EQ(shown(none), application) << none;
        EXPECT_EQ(textOf(first.get(), "Font"), none) << "the property keeps what it was given";
    }
    QFont overlined = plain;
    overlined.setOverline(true);
    QApplication::setFont(overlined);
    EXPECT_EQ(shown("Arial,10,-1,5,50,0,0,0,0,0"), "Arial, 10 pt, overline");
    QApplication::setFont(plain);
}

TEST_F(SettingsEditor, long_texts_leave_the_panel_as_wide_as_it_is) {
    const int width = editor.minimumSizeHint().width();
    lyrSetValue<const char*>(first.get(), Lyr::Font, "Liberation Sans Narrow,12,-1,5,75,1,1,1,0,0");
    const QByteArray words = QByteArray("long ").repeated(200);
    lyrSetValue<const char*>(first.get(), Lyrenum("DescriptionTemplate", true), words.constData());
    settle();
    EXPECT_EQ(editor.minimumSizeHint().width(), width);
    EXPECT_EQ(control<QPushButton>("mFontPushButton")->toolTip(),
              "Liberation Sans Narrow, 12 pt, bold, italic, underline, strike out");
}

TEST_F(SettingsEditor, a_font_that_is_chosen_goes_to_every_object) {
    lyrSetValue<const char*>(first.get(), Lyr::Font, "Courier,12,-1,5,50,0,0,0,0,0");
    QFont chosen("Liberation Serif", 17);
    chosen.setItalic(true);
    whenFontDialogOpens([&](QFontDialog& dialog) {
        EXPECT_EQ(dialog.parentWidget(), &editor);
        EXPECT_EQ(dialog.currentFont().pointSize(), 12) << "it begins with the current object's font";
        dialog.setCurrentFont(chosen);
        dialog.accept();
    });
    control<QPushButton>("mFontPushButton")->click();
    EXPECT_EQ(textOf(first.get(), "Font"), textOf(second.get(), "Font"));
    QFont stored;
    ASSERT_TRUE(stored.fromString(textOf(second.get(), "Font")));
    EXPECT_EQ(stored.pointSize(), 17);
    EXPECT_TRUE(stored.italic());
    EXPECT_EQ(history().count(), 1);
}

TEST_F(SettingsEditor, cancelling_the_font_dialog_changes_nothing) {
    whenFontDialogOpens([&](QFontDialog& dialog) {
        dialog.setCurrentFont(QFont("Liberation Serif", 17));
        dialog.reject();
    });
    control<QPushButton>("mFontPushButton")->click();
    EXPECT_EQ(textOf(first.get(), "Font"), "Arial,10,-1,5,50,0,0,0,0,0");
    EXPECT_EQ(history().count(), 0);
}

TEST_F(SettingsEditor, may_go_while_its_font_dialog_is_open) {
    auto* other = new LyqColorLookupTableRenderSettingsEditorWidget;
    const auto paths = pathsTo({first.get()});
    other->setObjects(paths.data(), 1);
    other->show();
    whenFontDialogOpens([&](QFontDialog&) { delete other; });
    other->findChild<QPushButton*>("mFontPushButton")->click();
    EXPECT_EQ(textOf(first.get(), "Font"), "Arial,10,-1,5,50,0,0,0,0,0");
}

TEST_F(SettingsEditor, changes_its_language_while_it_is_shown) {
    choose("mPositionComboBox", 2);
    history().clear();
    ASSERT_TRUE(LyqTranslations::install(QLocale(QLocale::German)));
    settle();
    EXPECT_EQ(combo("mPositionComboBox").items(), (QStringList{"Links", "Rechts", "Unten", "Oben"}));
    EXPECT_EQ(combo("mPositionComboBox").currentIndex(), 2);
    EXPECT_EQ(combo("mAlignmentComboBox").items(), (QStringList{"Links", "Mitte", "Rechts"}));
    EXPECT_EQ(combo("mAlignmentComboBox").currentIndex(), 1);
    EXPECT_EQ(control<QLabel>("mDescriptionLabel")->text(), "&Beschriftung");
    EXPECT_EQ(control<QPushButton>("mFontPushButton")->text(), "Arial, 10 pt");
    LyqTranslations::remove();
    settle();
    EXPECT_EQ(control<QLabel>("mDescriptionLabel")->text(), "Caption");
    EXPECT_EQ(combo("mTextPositionComboBox").items(), (QStringList{"Bottom", "Top"}));
    EXPECT_EQ(history().count(), 0);
}

TEST_F(SettingsEditor, every_mnemonic_is_there_once_in_each_language) {
    for (const QLocale::Language language : {QLocale::German, QLocale::English}) {
        ASSERT_TRUE(LyqTranslations::install(QLocale(language)));
        settle();
        QString letters;
        for (const QLabel* label : editor.findChildren<QLabel*>()) {
            letters += QKeySequence::mnemonic(label->text()).toString();
        }
        for (const QPushButton* button : editor.findChildren<QPushButton*>()) {
            letters += QKeySequence::mnemonic(button->text()).toString();
        }
        const QStringList keys = letters.split("Alt+", Qt::SkipEmptyParts);
        EXPECT_EQ(keys.size(), 13) << letters.toStdString() << ": all but the preview";
        EXPECT_EQ(QSet<QString>(keys.begin(), keys.end()).size(), keys.size()) << letters.toStdString();
    }
    LyqTranslations::remove();
}
