#include "PresetTools.h"

#include <colortable/presets/LyqPresetColortableSaveDialogExtensionWidget.h>
#include <lys_core/LyqPresetSaveDialog.h>

#include <QPointer>

#include <gtest/gtest.h>

#include <memory>

using namespace presets;

using Extension = LyqPresetColortableSaveDialogExtensionWidget;

class LyqPresetColortableSaveDialogExtensionWidgetTest : public PresetTest {};

TEST_F(LyqPresetColortableSaveDialogExtensionWidgetTest, it_shows_the_mode_and_hands_over_clicks_alone) {
    handler->setAbsolutePreset(true);
    Extension box(handler, nullptr, "box");
    EXPECT_EQ(box.text(), QStringLiteral("Absolute preset"));
    EXPECT_EQ(box.objectName(), QStringLiteral("box"));
    EXPECT_TRUE(box.isChecked());
    box.setChecked(false);
    EXPECT_TRUE(handler->isAbsolutePreset()) << "set by code, not by the user";
    box.click();
    EXPECT_TRUE(box.isChecked() && handler->isAbsolutePreset());
    box.click();
    EXPECT_FALSE(box.isChecked() || handler->isAbsolutePreset());
}

TEST_F(LyqPresetColortableSaveDialogExtensionWidgetTest, a_null_handler_is_safe) {
    Extension box(nullptr, nullptr, nullptr);
    EXPECT_FALSE(box.isChecked());
    box.click();
    EXPECT_TRUE(box.isChecked());
}

TEST_F(LyqPresetColortableSaveDialogExtensionWidgetTest, the_handler_makes_one_without_parent_and_name) {
    const std::unique_ptr<QWidget> made(handler->createSaveDialogExtension());
    EXPECT_TRUE(dynamic_cast<Extension*>(made.get()));
    EXPECT_EQ(made->parent(), nullptr);
    EXPECT_TRUE(made->objectName().isEmpty());
}

TEST_F(LyqPresetColortableSaveDialogExtensionWidgetTest, the_dialog_saves_what_is_ticked_and_a_load_ticks_it_again) {
    {
        LyqPresetSaveDialog dialog(handler);
        auto* box = dynamic_cast<Extension*>(dialog.extension());
        ASSERT_TRUE(box);
        EXPECT_FALSE(box->isChecked());
        box->click();
        dialog.setPresetName(QStringLiteral("absolute"));
        dialog.accept();
        EXPECT_EQ(dialog.result(), QDialog::Accepted);
    }
    EXPECT_EQ(lyrGetValue(stored("absolute").get(), Lyr::AbsoluteMode, Lyrenum(9)), 1);
    ASSERT_TRUE(handler->applyPreset("Rainbow", Lyr::DefaultPreset));
    ASSERT_TRUE(handler->applyPreset("absolute", Lyr::UserPreset));
    LyqPresetSaveDialog again(handler);
    EXPECT_TRUE(dynamic_cast<Extension*>(again.extension())->isChecked());
}

TEST_F(LyqPresetColortableSaveDialogExtensionWidgetTest, a_dialog_whose_handler_goes_closes_and_drops_the_box) {
    LyrObjectPtr mortal(new OpenHandler(folder.path()));
    LyqPresetSaveDialog dialog(static_cast<OpenHandler*>(mortal.get()));
    dialog.show();
    const QPointer<QWidget> box(dialog.extension());
    ASSERT_TRUE(box);
    mortal = LyrObjectPtr();
    EXPECT_TRUE(box.isNull());
    EXPECT_EQ(dialog.extension(), nullptr);
    EXPECT_FALSE(dialog.isVisible());
    dialog.setPresetName(QStringLiteral("x"));
    dialog.accept();
    EXPECT_TRUE(folder.names().empty());
}
