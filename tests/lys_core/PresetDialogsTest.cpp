#include <lys_core/PresetTestTools.h>

#include <ToolkitApplication.h>
#include <lyr_core/TemporaryFolder.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqPresetComboBox.h>
#include <lys_core/LyqPresetManageDialog.h>
#include <lys_core/LyqPresetRegistry.h>
#include <lys_core/LyqPresetSaveDialog.h>

#include <QApplication>
#include <QDialogButtonBox>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QUndoStack>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace preset_test;
using testing::HasSubstr;

namespace {

class PresetDialogs : public testing::Test, ToolkitApplication {
protected:
    PresetDialogs() : handler(new ThingHandler(folder.path())) {
        LyqPresetRegistry::instance().keep(handler);
        handler->setApplicationObject(thing.thing);
    }
    ~PresetDialogs() override {
        LyqPresetRegistry::instance().release(ThingHandler::CATEGORY);
        LyqApplication::instance().undoStack().clear();
    }
    /// Presses a button of the question that will come up.
    void answer(const QString& button) {
        QTimer::singleShot(0, qApp, [this, button] {
            auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_TRUE(question);
            asked = question->text().toStdString();
            for (QAbstractButton* candidate : question->buttons()) {
                if (candidate->text().remove(QLatin1Char('&')) == button) {
                    candidate->click();
                    return;
                }
            }
            question->reject();
            ADD_FAILURE() << "no button " << button.toStdString();
        });
    }
    void breakFolder() {
        handler->setPresetFolder(Lyr::UserPreset, folder.file("file/presets"));
        folder.write("file", "");
    }
    static QPushButton* button(QWidget& dialog, const char* text) {
        for (QPushButton* candidate : dialog.findChildren<QPushButton*>()) {
            if (candidate->text().remove(QLatin1Char('&')) == QLatin1String(text)) {
                return candidate;
            }
        }
        return nullptr;
    }

    TemporaryFolder folder;
    HeldThing thing{1};
    ThingHandler* handler;
    std::string asked;
};

QStringList itemsOf(const QComboBox& box) {
    QStringList items;
    for (int i = 0; i < box.count(); ++i) {
        items.append(box.itemText(i));
    }
    return items;
}

}  // namespace

TEST_F(PresetDialogs, the_save_dialog_saves_under_the_name_without_blanks_around_it) {
    LyqPresetSaveDialog dialog(handler);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Save preset - things"));
    auto* save = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save);
    EXPECT_FALSE(save->isEnabled()) << "without a name";
    dialog.setPresetName(QStringLiteral("  a b "));
    EXPECT_TRUE(save->isEnabled());
    save->click();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(handler->findPreset("a b"), Lyr::UserPreset);
}

TEST_F(PresetDialogs, a_preset_that_is_there_is_replaced_after_a_question_only) {
    ASSERT_TRUE(handler->savePresetAs("a"));
    thing->value.setValue(2);
    LyqPresetSaveDialog dialog(handler);
    EXPECT_EQ(dialog.presetName(), QStringLiteral("a")) << "the current one's name is offered";
    answer(QStringLiteral("Cancel"));
    dialog.accept();
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_THAT(asked, HasSubstr("Replace the preset \"a\"?"));
    answer(QStringLiteral("Replace"));
    dialog.accept();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    thing->value.setValue(3);
    ASSERT_TRUE(handler->applyPreset("a", Lyr::UserPreset));
    EXPECT_EQ(thing->value.stored(), 2);
}

TEST_F(PresetDialogs, a_failed_save_is_told_in_the_dialog_which_stays_open) {
    breakFolder();
    thing->note.setValue(1);
    LyqPresetSaveDialog dialog(handler);
    dialog.show();
    dialog.setPresetName(QStringLiteral("a"));
    dialog.accept();
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_THAT(dialog.message().toStdString(), HasSubstr("cannot be made"));
    EXPECT_TRUE(handler->isCurrentPresetModified());
}

TEST_F(PresetDialogs, without_a_handler_nothing_can_be_saved_or_managed) {
    LyqPresetSaveDialog save(nullptr);
    save.setPresetName(QStringLiteral("a"));
    save.accept();
    EXPECT_EQ(save.result(), QDialog::Rejected);
    LyqPresetManageDialog manage(nullptr);
    EXPECT_FALSE(manage.select("seven", Lyr::DefaultPreset));
    EXPECT_FALSE(manage.removeSelected() || manage.renameSelected(QStringLiteral("x")));
}

TEST_F(PresetDialogs, the_manager_applies_renames_and_deletes) {
    ASSERT_TRUE(handler->savePresetAs("a"));
    thing->value.setValue(2);
    LyqPresetManageDialog dialog(handler);
    ASSERT_TRUE(dialog.select("seven", Lyr::DefaultPreset));
    EXPECT_FALSE(button(dialog, "Rename...")->isEnabled() || button(dialog, "Delete...")->isEnabled());
    EXPECT_FALSE(button(dialog, "Export...")->isEnabled());
    button(dialog, "Apply")->click();
    EXPECT_EQ(thing->value.stored(), 7);
    ASSERT_TRUE(dialog.select("a", Lyr::UserPreset));
    EXPECT_TRUE(dialog.renameSelected(QStringLiteral("b")));
    EXPECT_TRUE(dialog.select("b", Lyr::UserPreset));
    EXPECT_FALSE(dialog.select("a", Lyr::UserPreset));
    EXPECT_FALSE(dialog.renameSelected(QString()));
    EXPECT_FALSE(dialog.message().isEmpty());
    dialog.select("b", Lyr::UserPreset);
    answer(QStringLiteral("Cancel"));
    button(dialog, "Delete...")->click();
    EXPECT_THAT(asked, HasSubstr("\"b\""));
    EXPECT_TRUE(dialog.select("b", Lyr::UserPreset));
    answer(QStringLiteral("Delete"));
    button(dialog, "Delete...")->click();
    EXPECT_FALSE(dialog.select("b", Lyr::UserPreset));
    EXPECT_TRUE(folder.names().empty());
}

TEST_F(PresetDialogs, the_manager_shows_what_is_wrong_with_a_broken_preset) {
    ASSERT_TRUE(handler->savePresetAs("a") && handler->savePresetAs("good"));
    folder.write(*folder.names().begin(), "{");
    LyqPresetManageDialog dialog(handler);
    ASSERT_TRUE(dialog.select("a", Lyr::UserPreset));
    EXPECT_THAT(dialog.message().toStdString(), HasSubstr("cut off or damaged"));
    EXPECT_TRUE(button(dialog, "Delete...")->isEnabled());
    EXPECT_FALSE(button(dialog, "Rename...")->isEnabled());
    dialog.applySelected();
    EXPECT_FALSE(dialog.message().isEmpty());
    EXPECT_EQ(thing->value.stored(), 1);
    ASSERT_TRUE(dialog.select("good", Lyr::UserPreset));
    EXPECT_TRUE(dialog.message().isEmpty());
}

TEST_F(PresetDialogs, the_manager_exports_and_imports_and_names_the_files_that_it_could_not) {
    TemporaryFolder other;
    ASSERT_TRUE(handler->savePresetAs("a"));
    LyqPresetManageDialog dialog(handler);
    dialog.select("a", Lyr::UserPreset);
    ASSERT_TRUE(dialog.exportSelected(QString::fromStdString(other.file("copy.json"))));
    ASSERT_TRUE(dialog.removeSelected());
    other.write("bad.json", "{}");
    EXPECT_FALSE(dialog.importFiles(
        {QString::fromStdString(other.file("bad.json")), QString::fromStdString(other.file("copy.json"))}));
    EXPECT_THAT(dialog.message().toStdString(), HasSubstr("bad.json"));
    EXPECT_TRUE(dialog.select("a", Lyr::UserPreset));
    answer(QStringLiteral("Replace"));
    EXPECT_TRUE(dialog.importFiles({QString::fromStdString(other.file("copy.json"))}));
    EXPECT_THAT(asked, HasSubstr("Replace the preset \"a\"?"));
}

TEST_F(PresetDialogs, all_tell_of_a_folder_that_cannot_be_read) {
    folder.write("no folder", "");
    handler->setPresetFolder(Lyr::UserPreset, folder.file("no folder"));
    const LyqPresetSaveDialog save(handler);
    EXPECT_THAT(save.message().toStdString(), HasSubstr("cannot be read"));
    const LyqPresetManageDialog manage(handler);
    EXPECT_THAT(manage.message().toStdString(), HasSubstr("cannot be read"));
    LyqPresetComboBox box;
    box.setHandlerId(ThingHandler::CATEGORY);
    EXPECT_THAT(box.itemText(0).toStdString(), HasSubstr("cannot be read"));
}

TEST_F(PresetDialogs, a_name_with_blanks_around_it_is_replaced_under_its_own_name) {
    ASSERT_TRUE(handler->savePresetAs(" a "));
    LyqPresetSaveDialog dialog(handler);
    EXPECT_EQ(dialog.presetName(), QStringLiteral(" a "));
    dialog.setPresetName(QStringLiteral(" b "));
    EXPECT_EQ(dialog.presetName(), QStringLiteral("b"));
}

TEST_F(PresetDialogs, the_manager_renames_to_what_is_typed_and_leaves_a_name_that_nobody_changed) {
    ASSERT_TRUE(handler->savePresetAs(" a "));
    LyqPresetManageDialog dialog(handler);
    const auto renameTo = [&](const char* typed) {
        QTimer::singleShot(0, qApp, [this, typed] {
            auto* question = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
            ASSERT_TRUE(question);
            asked = question->textValue().toStdString();
            if (typed) {
                question->setTextValue(QString::fromUtf8(typed));
            }
            question->accept();
        });
        button(dialog, "Rename...")->click();
    };
    ASSERT_TRUE(dialog.select(" a ", Lyr::UserPreset));
    renameTo(nullptr);
    EXPECT_EQ(asked, " a ");
    EXPECT_TRUE(dialog.select(" a ", Lyr::UserPreset)) << "the blanks are part of its name";
    renameTo(" b\t");
    EXPECT_TRUE(dialog.select("b", Lyr::UserPreset)) << "as a new preset is named";
    renameTo(" b ");
    EXPECT_TRUE(dialog.select("b", Lyr::UserPreset));
    EXPECT_EQ(dialog.message(), QString());
    renameTo("  ");
    EXPECT_THAT(dialog.message().toStdString(), HasSubstr("needs a name"));
    EXPECT_TRUE(dialog.select("b", Lyr::UserPreset));
    EXPECT_EQ(folder.names().size(), 1u);
}

TEST_F(PresetDialogs, dialogs_close_when_their_handler_goes) {
    LyqPresetSaveDialog save(handler);
    LyqPresetManageDialog manage(handler);
    save.show();
    manage.show();
    LyqPresetRegistry::instance().release(ThingHandler::CATEGORY);
    EXPECT_FALSE(save.isVisible() || manage.isVisible());
    EXPECT_FALSE(manage.select("seven", Lyr::DefaultPreset));
}

TEST_F(PresetDialogs, the_box_offers_all_kinds_shows_the_current_one_and_marks_it_when_modified) {
    ASSERT_TRUE(handler->savePresetAs("a"));
    LyqPresetComboBox box;
    EXPECT_EQ(box.count(), 0);
    box.setHandlerId(ThingHandler::CATEGORY);
    EXPECT_EQ(box.handler(), handler);
    EXPECT_EQ(itemsOf(box), (QStringList{"a", "", "seven", "", "Save preset...", "Manage presets..."}));
    EXPECT_EQ(box.currentText(), QStringLiteral("a"));
    thing->note.setValue(1);
    EXPECT_EQ(box.currentText(), QStringLiteral("a *"));
    ASSERT_TRUE(handler->savePresetAs("b"));
    EXPECT_EQ(box.currentText(), QStringLiteral("b"));
    EXPECT_EQ(box.itemText(0), QStringLiteral("a"));
    handler->setApplicationObject(nullptr);
    EXPECT_EQ(box.currentIndex(), -1);
}

TEST_F(PresetDialogs, choosing_an_item_applies_the_preset_and_tells_what_went_wrong) {
    ASSERT_TRUE(handler->savePresetAs("a"));
    LyqPresetComboBox box;
    box.setHandlerId(ThingHandler::CATEGORY);
    QStringList messages;
    QObject::connect(&box, &LyqPresetComboBox::messageEmitted, [&](const QString& text) { messages.append(text); });
    Q_EMIT box.activated(2);
    EXPECT_EQ(thing->value.stored(), 7);
    EXPECT_EQ(box.currentText(), QStringLiteral("seven"));
    EXPECT_TRUE(messages.isEmpty());
    folder.write(*folder.names().begin(), "");
    Q_EMIT box.activated(0);
    ASSERT_EQ(messages.size(), 1);
    EXPECT_THAT(messages.first().toStdString(), HasSubstr(folder.path()));
    EXPECT_EQ(thing->value.stored(), 7);
    EXPECT_EQ(box.currentText(), QStringLiteral("seven"));
}

TEST_F(PresetDialogs, a_box_whose_handler_goes_is_empty) {
    LyqPresetComboBox box;
    box.setHandlerId(ThingHandler::CATEGORY);
    EXPECT_GT(box.count(), 0);
    LyqPresetRegistry::instance().release(ThingHandler::CATEGORY);
    EXPECT_EQ(box.count(), 0);
    EXPECT_EQ(box.handler(), nullptr);
    box.refresh();
    EXPECT_EQ(box.count(), 0);
}
