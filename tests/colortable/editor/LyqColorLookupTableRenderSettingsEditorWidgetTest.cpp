#include <colortable/editor/SettingsEditorFixture.h>

#include <lyr_core/LyrMetaClass.h>

#include <QApplication>
#include <QFontDialog>
#include <QTimer>

#include <limits>
#include <memory>

TEST_F(SettingsEditor, has_every_control_under_its_name_and_with_its_text) {
    LyqColorLookupTableRenderSettingsEditorWidgetUI form;
    EXPECT_EQ(form.size(), QSize(218, 422));
    const std::pair<const char*, const char*> texts[] = {{"mRenderingLabel", "Colorbar visibility"},
                                                         {"mThicknessLabel", "Colorbar thickness [pixel]"},
                                                         {"mSizeLabel", "Colorbar stretch [%]"},
                                                         {"mPositionLabel", "Colorbar position"},
                                                         {"mTextPositionLabel", "Text position"},
                                                         {"mAlignmentLabel", "Colorbar alignment"},
                                                         {"mHasOutlineLabel", "Font outline"},
                                                         {"mFontLabel", "Font"},
                                                         {"mOutlineColorLabel", "Font outline color"},
                                                         {"mTextAlignmentLabel", "Text alignment"},
                                                         {"mDescriptionLabel", "Caption"},
                                                         {"mColorLabel", "Font color"},
                                                         {"mPreviewLabel", "Caption preview"}};
    const char* const controls[] = {"mRenderingComboBox",      "mThicknessSpinBox",     "mSizeSpinBox",
                                    "mPositionComboBox",       "mTextPositionComboBox", "mAlignmentComboBox",
                                    "mHasOutlineComboBox",     "mFontPushButton",       "mOutlineColorWidget",
                                    "mTextAlignmentComboBox",  "mDescriptionLineEdit",  "mColorWidget",
                                    "mDescriptionPreviewLabel"};
    for (std::size_t i = 0; i < std::size(texts); ++i) {
        const auto* label = form.findChild<QLabel*>(texts[i].first);
        ASSERT_NE(label, nullptr) << texts[i].first;
        EXPECT_EQ(label->text(), texts[i].second);
        ASSERT_NE(label->buddy(), nullptr) << texts[i].first;
        EXPECT_EQ(label->buddy()->objectName(), controls[i]);
    }
    EXPECT_EQ(form.findChild<QPushButton*>("mResetPushButton")->text(), "Restore Defaults");
    EXPECT_EQ(form.findChild<QPushButton*>("mFontPushButton")->text(), "Font");
    const auto items = [&](const char* name) { return form.findChild<LyqComboBox*>(name)->items(); };
    EXPECT_EQ(items("mRenderingComboBox"), (QStringList{"On", "Off"}));
    EXPECT_EQ(items("mHasOutlineComboBox"), (QStringList{"On", "Off"}));
    EXPECT_EQ(items("mPositionComboBox"), (QStringList{"Left", "Right"}));
    EXPECT_EQ(items("mAlignmentComboBox"), (QStringList{"Left", "Right"}));
    EXPECT_EQ(items("mTextAlignmentComboBox"), (QStringList{"Top", "Center", "Bottom"}));
    for (const char* name : controls) {
        const auto* control = form.findChild<QWidget*>(name);
        const bool preview = QString(name) == "mDescriptionPreviewLabel";
        EXPECT_EQ(control->minimumHeight(), preview ? 21 : 20) << name;
        EXPECT_TRUE(preview || control->maximumHeight() == 20) << name;
    }
    for (const char* name : {"mThicknessSpinBox", "mSizeSpinBox"}) {
        const auto* box = form.findChild<LyqSpinBox*>(name);
        EXPECT_EQ(box->minimum(), 1.0);
        EXPECT_EQ(box->maximum(), 100.0);
        EXPECT_EQ(box->getPrecision(), 0);
    }
}

TEST_F(SettingsEditor, the_tab_key_goes_through_the_controls_in_their_order) {
    const char* const order[] = {"mRenderingComboBox",  "mThicknessSpinBox",      "mSizeSpinBox",
                                 "mPositionComboBox",   "mTextPositionComboBox",  "mAlignmentComboBox",
                                 "mHasOutlineComboBox", "mResetPushButton",       "mFontPushButton",
                                 "mOutlineColorWidget", "mTextAlignmentComboBox", "mDescriptionLineEdit",
                                 "mColorWidget"};
    QStringList reached;
    for (const QWidget* at = editor.nextInFocusChain(); at != &editor; at = at->nextInFocusChain()) {
        if ((at->focusPolicy() & Qt::TabFocus) && at->parentWidget() == &editor) {
            reached.append(at->objectName());
        }
    }
    EXPECT_EQ(reached, QStringList(std::begin(order), std::end(order)));
}

TEST_F(SettingsEditor, is_made_by_its_class_name_as_an_editor_of_objects) {
    const std::unique_ptr<LyqObjectEditorHandler> made(
        LyqObjectEditorHandler::create("LyqColorLookupTableRenderSettingsEditorWidget"));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->getWidget()->objectName(), "LyqColorLookupTableRenderSettingsEditorWidget");
    EXPECT_STREQ(made->getMetaClass().getModule(), "lys_colortable");
    const auto paths = pathsTo({first.get()});
    EXPECT_TRUE(made->checkObjects(paths.data(), 1));
    made->setObjects(paths.data(), 1);
}

TEST_F(SettingsEditor, takes_paths_that_end_at_settings_only) {
    const LyrObjectRefPtr table("LyrColorLookupTable", Lyr::DocumentScope);
    const auto check = [&](std::initializer_list<LyrObject*> objects) {
        const auto paths = pathsTo(objects);
        return editor.checkObjects(paths.data(), static_cast<long long>(paths.size()));
    };
    EXPECT_TRUE(check({first.get(), second.get()}));
    EXPECT_TRUE(check({}));
    EXPECT_TRUE(editor.checkObjects(nullptr, 0));
    EXPECT_FALSE(check({first.get(), table.get()}));
    EXPECT_FALSE(check({first.get(), nullptr})) << "a path without links";
    LyrObjectPath longer;
    longer.append(LyrObjectLink(table.get(), nullptr, -1));
    longer.append(LyrObjectLink(first.get(), nullptr, -1));
    EXPECT_TRUE(editor.checkObjects(&longer, 1)) << "the last link counts";
}

TEST_F(SettingsEditor, shows_the_defaults_of_a_new_object) {
    EXPECT_EQ(spin("mThicknessSpinBox").value(), 12.0);
    EXPECT_EQ(spin("mSizeSpinBox").value(), 70.0);
    EXPECT_EQ(combo("mPositionComboBox").items(), (QStringList{"Left", "Right", "Bottom", "Top"}));
    EXPECT_EQ(combo("mPositionComboBox").currentIndex(), 0);
    EXPECT_EQ(combo("mAlignmentComboBox").items(), (QStringList{"Bottom", "Center", "Top"}));
    EXPECT_EQ(combo("mAlignmentComboBox").currentIndex(), 1);
    EXPECT_EQ(combo("mTextPositionComboBox").items(), (QStringList{"Left", "Right"}));
    EXPECT_EQ(combo("mTextPositionComboBox").currentIndex(), 1);
    EXPECT_EQ(combo("mTextAlignmentComboBox").items(), (QStringList{"Left", "Right"}));
    EXPECT_EQ(combo("mTextAlignmentComboBox").currentIndex(), 1);
    EXPECT_EQ(combo("mHasOutlineComboBox").currentIndex(), 0);
    EXPECT_EQ(combo("mRenderingComboBox").currentIndex(), 0);
    EXPECT_EQ(control<QPushButton>("mFontPushButton")->text(), "Arial, 10 pt");
    EXPECT_EQ(control<LyqColorWidget>("mColorWidget")->rgba(), LyrRGBAf(1, 1, 1, 1));
    EXPECT_EQ(control<LyqColorWidget>("mOutlineColorWidget")->rgba(), LyrRGBAf(0, 0, 0, 1));
    EXPECT_EQ(caption().text(), "");
    EXPECT_EQ(control<QLabel>("mDescriptionPreviewLabel")->text(), "");
    EXPECT_EQ(history().count(), 0) << "filling writes nothing";
}

TEST_F(SettingsEditor, every_slot_writes_its_property_to_every_object) {
    const auto expectBoth = [&](Lyrenum property, Lyrenum value) {
        EXPECT_EQ(choiceOf(first.get(), property), value);
        EXPECT_EQ(choiceOf(second.get(), property), value);
    };
    struct Row {
        const char* name;
        Lyrenum property;
        std::vector<Lyrenum> byIndex;
    };
    const Row rows[] = {{"mPositionComboBox", Lyr::Position, {Lyr::Left, Lyr::Right, Lyr::Bottom, Lyr::Top}},
                        {"mAlignmentComboBox", Lyr::Alignment, {Lyr::Bottom, Lyr::Center, Lyr::Top}},
                        {"mTextPositionComboBox", Lyr::TextPosition, {Lyr::Left, Lyr::Right}},
                        {"mTextAlignmentComboBox", Lyr::TextAlignment, {Lyr::Left, Lyr::Right}},
                        {"mHasOutlineComboBox", Lyr::HasOutline, {1, 0}},
                        {"mRenderingComboBox", Lyr::Rendering, {1, 0}}};
    for (const Row& row : rows) {
        for (std::size_t i = row.byIndex.size(); i-- > 0;) {
            choose(row.name, static_cast<int>(i));
            expectBoth(row.property, row.byIndex[i]);
            EXPECT_EQ(combo(row.name).currentIndex(), static_cast<int>(i)) << row.name;
        }
    }
    spin("mThicknessSpinBox").setValue(33.0);
    spin("mSizeSpinBox").setValue(50.0);
    caption().setText("Wall");
    for (const LyrObject* object : {first.get(), second.get()}) {
        EXPECT_EQ(valueOf<long long>(object, Lyr::Thickness, -1), 33);
        EXPECT_EQ(valueOf<float>(object, Lyr::Size, -1.0f), 0.5f);
        EXPECT_EQ(textOf(object, "DescriptionTemplate"), "Wall");
    }
}

TEST_F(SettingsEditor, indices_beyond_the_lists_mean_the_stated_values) {
    for (LyrObject* object : {first.get(), second.get()}) {
        lyrSetValue(object, Lyr::Position, Lyr::Top);
        lyrSetValue(object, Lyr::Alignment, Lyr::Top);
        lyrSetValue<Lyrenum>(object, Lyr::HasOutline, 0);
        lyrSetValue<Lyrenum>(object, Lyr::Rendering, 0);
    }
    for (const int index : {-1, 4, 99}) {
        editor.setPosition(index);
        editor.setAlignment(index);
        editor.setTextPosition(index);
        editor.setTextAlignment(index);
        editor.setHasOutline(index);
        editor.setRendering(index);
        EXPECT_EQ(choiceOf(second.get(), Lyr::Position), Lyr::Left);
        EXPECT_EQ(choiceOf(second.get(), Lyr::Alignment), Lyr::Center);
        EXPECT_EQ(choiceOf(second.get(), Lyr::TextPosition), Lyr::Left);
        EXPECT_EQ(choiceOf(second.get(), Lyr::TextAlignment), Lyr::Left);
        EXPECT_EQ(choiceOf(second.get(), Lyr::HasOutline), 1);
        EXPECT_EQ(choiceOf(second.get(), Lyr::Rendering), 1);
    }
}

TEST_F(SettingsEditor, numbers_are_truncated_and_narrowed_once) {
    editor.setThickness(33.99);
    EXPECT_EQ(valueOf<long long>(first.get(), Lyr::Thickness, -1), 33);
    editor.setThickness(-2.5);
    EXPECT_EQ(valueOf<long long>(first.get(), Lyr::Thickness, -1), -2);
    editor.setThickness(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(valueOf<long long>(first.get(), Lyr::Thickness, -1), -2);
    editor.setThickness(1e300);
    EXPECT_GT(valueOf<long long>(first.get(), Lyr::Thickness, -1), 1000000);
    editor.setSize(50.0);
    editor.setSize(70.0);
    EXPECT_EQ(valueOf<float>(first.get(), Lyr::Size, -1.0f), 0.7f);
}

TEST_F(SettingsEditor, a_horizontal_bar_turns_the_words_and_not_the_values) {
    choose("mPositionComboBox", 2);
    EXPECT_EQ(choiceOf(first.get(), Lyr::Position), Lyr::Bottom);
    EXPECT_EQ(combo("mAlignmentComboBox").items(), (QStringList{"Left", "Center", "Right"}));
    EXPECT_EQ(combo("mTextPositionComboBox").items(), (QStringList{"Bottom", "Top"}));
    EXPECT_EQ(combo("mTextAlignmentComboBox").items(), (QStringList{"Left", "Right"}));
    EXPECT_EQ(combo("mTextPositionComboBox").currentText(), "Top");
    choose("mAlignmentComboBox", 0);
    EXPECT_EQ(choiceOf(first.get(), Lyr::Alignment), Lyr::Bottom);
    EXPECT_EQ(combo("mAlignmentComboBox").currentText(), "Left");
    choose("mAlignmentComboBox", 2);
    EXPECT_EQ(choiceOf(first.get(), Lyr::Alignment), Lyr::Top);
    choose("mTextPositionComboBox", 0);
    EXPECT_EQ(choiceOf(first.get(), Lyr::TextPosition), Lyr::Left);
}

TEST_F(SettingsEditor, shows_either_word_for_one_end_and_the_first_entry_for_strangers) {
    const auto shown = [&](Lyrenum property, Lyrenum value, const char* name) {
        lyrSetValue(first.get(), property, value);
        settle();
        return combo(name).currentIndex();
    };
    EXPECT_EQ(shown(Lyr::Alignment, Lyr::Left, "mAlignmentComboBox"), 0);
    EXPECT_EQ(shown(Lyr::Alignment, Lyr::Right, "mAlignmentComboBox"), 2);
    EXPECT_EQ(shown(Lyr::Alignment, Lyr::Length, "mAlignmentComboBox"), 0);
    EXPECT_EQ(shown(Lyr::TextPosition, Lyr::Top, "mTextPositionComboBox"), 1);
    EXPECT_EQ(shown(Lyr::TextPosition, Lyr::Bottom, "mTextPositionComboBox"), 0);
    EXPECT_EQ(shown(Lyr::TextPosition, Lyr::Center, "mTextPositionComboBox"), 0);
    EXPECT_EQ(shown(Lyr::TextAlignment, Lyr::Top, "mTextAlignmentComboBox"), 0);
    EXPECT_EQ(shown(Lyr::Position, Lyr::Top, "mPositionComboBox"), 3);
    EXPECT_EQ(shown(Lyr::Position, Lyr::Center, "mPositionComboBox"), 0);
    EXPECT_EQ(combo("mAlignmentComboBox").items(), (QStringList{"Bottom", "Center", "Top"}))
        << "only the sides Bottom and Top lie across";
}

TEST_F(SettingsEditor, two_objects_keep_their_own_position_and_share_what_is_written) {
    lyrSetValue(second.get(), Lyr::Position, Lyr::Top);
    settle();
    choose("mAlignmentComboBox", 2);
    EXPECT_EQ(choiceOf(first.get(), Lyr::Alignment), Lyr::Top);
    EXPECT_EQ(choiceOf(second.get(), Lyr::Alignment), Lyr::Top);
    EXPECT_EQ(combo("mAlignmentComboBox").items(), (QStringList{"Bottom", "Center", "Top"}))
        << "as the current one lies";
    EXPECT_EQ(choiceOf(second.get(), Lyr::Position), Lyr::Top);
}

TEST_F(SettingsEditor, choosing_the_entry_that_is_shown_writes_it_to_the_other_objects) {
    lyrSetValue(second.get(), Lyr::Position, Lyr::Top);
    choose("mPositionComboBox", 0);
    EXPECT_EQ(choiceOf(second.get(), Lyr::Position), Lyr::Left);
}

TEST_F(SettingsEditor, the_current_object_stays_if_it_is_among_the_new_ones) {
    const LyrObjectRefPtr third("LyrColorLookupTableRenderSettings", Lyr::DocumentScope);
    lyrSetValue(first.get(), Lyr::Thickness, 11LL);
    lyrSetValue(second.get(), Lyr::Thickness, 22LL);
    lyrSetValue(third.get(), Lyr::Thickness, 33LL);
    const auto shown = [&](std::initializer_list<LyrObject*> objects) {
        edit(objects);
        settle();
        return spin("mThicknessSpinBox").value();
    };
    EXPECT_EQ(shown({third.get(), first.get()}), 11.0) << "first was current";
    EXPECT_EQ(shown({second.get(), third.get()}), 22.0);
    EXPECT_EQ(shown({third.get(), second.get(), first.get()}), 22.0);
    EXPECT_EQ(shown({}), 22.0) << "nothing to show";
    EXPECT_EQ(shown({third.get(), second.get()}), 33.0) << "nothing was current";
}

TEST_F(SettingsEditor, without_objects_every_control_does_nothing) {
    lyrSetValue<const char*>(first.get(), Lyrenum("DescriptionTemplate", true), "Old");
    settle();
    edit({});
    settle();
    EXPECT_EQ(caption().text(), "");
    EXPECT_EQ(textOf(first.get(), "DescriptionTemplate"), "Old");
    choose("mPositionComboBox", 3);
    spin("mThicknessSpinBox").setValue(99.0);
    caption().setText("X");
    editor.setColor({1, 0, 0, 1});
    control<QPushButton>("mFontPushButton")->click();
    control<QPushButton>("mResetPushButton")->click();
    settle();
    EXPECT_EQ(choiceOf(first.get(), Lyr::Position), Lyr::Left);
    EXPECT_EQ(valueOf<long long>(first.get(), Lyr::Thickness, -1), 12);
    EXPECT_EQ(history().count(), 0);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "no dialog either";
}

TEST_F(SettingsEditor, restoring_defaults_is_for_the_current_object_alone_and_one_step) {
    for (LyrObject* object : {first.get(), second.get()}) {
        lyrSetValue(object, Lyr::Thickness, 40LL);
        lyrSetValue(object, Lyr::Size, 0.25f);
        lyrSetValue(object, Lyr::Position, Lyr::Bottom);
        lyrSetValue<const char*>(object, Lyrenum("DescriptionTemplate", true), "A");
    }
    control<QPushButton>("mResetPushButton")->click();
    EXPECT_EQ(valueOf<long long>(first.get(), Lyr::Thickness, -1), 12);
    EXPECT_EQ(valueOf<float>(first.get(), Lyr::Size, -1.0f), 0.7f);
    EXPECT_EQ(choiceOf(first.get(), Lyr::Position), Lyr::Left);
    EXPECT_EQ(textOf(first.get(), "DescriptionTemplate"), "");
    EXPECT_EQ(valueOf<long long>(second.get(), Lyr::Thickness, -1), 40);
    EXPECT_EQ(textOf(second.get(), "DescriptionTemplate"), "A");
    ASSERT_EQ(history().count(), 1);
    EXPECT_EQ(history().text(0), "Change colorbar settings");
    application().undo();
    EXPECT_EQ(valueOf<long long>(first.get(), Lyr::Thickness, -1), 40);
    EXPECT_EQ(valueOf<float>(first.get(), Lyr::Size, -1.0f), 0.25f);
    EXPECT_EQ(choiceOf(first.get(), Lyr::Position), Lyr::Bottom);
    EXPECT_EQ(textOf(first.get(), "DescriptionTemplate"), "A");
}

TEST_F(SettingsEditor, follows_changes_from_elsewhere_while_it_is_visible) {
    lyrSetValue(first.get(), Lyr::Thickness, 44LL);
    settle();
    EXPECT_EQ(spin("mThicknessSpinBox").value(), 44.0);
    lyrSetValue(first.get(), Lyr::Thickness, 250LL);
    settle();
    EXPECT_EQ(spin("mThicknessSpinBox").value(), 100.0);
    EXPECT_EQ(valueOf<long long>(first.get(), Lyr::Thickness, -1), 250) << "showing the nearest writes nothing";
    editor.hide();
    lyrSetValue(first.get(), Lyr::Thickness, 55LL);
    settle();
    EXPECT_EQ(spin("mThicknessSpinBox").value(), 100.0) << "not while it is hidden";
    editor.show();
    EXPECT_EQ(spin("mThicknessSpinBox").value(), 55.0);
}

TEST_F(SettingsEditor, lets_go_of_its_objects_and_hears_no_more_after_its_end) {
    auto other = std::make_unique<LyqColorLookupTableRenderSettingsEditorWidget>();
    const auto paths = pathsTo({first.get()});
    const auto before = first->getRefCount();
    other->setObjects(paths.data(), 1);
    EXPECT_GT(first->getRefCount(), before);
    other.reset();
    EXPECT_EQ(first->getRefCount(), before);
    lyrSetValue(first.get(), Lyr::Thickness, 44LL);
}
