#include <lyr_core/LyrMetaClass.h>
#include <lys_core/LyqColorWidget.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LyqLineEdit.h>
#include <lys_core/LyqObjectEditorHandler.h>

#include <QColorDialog>
#include <QCoreApplication>
#include <QImage>
#include <QKeyEvent>
#include <QPointer>
#include <QTimer>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <functional>
#include <limits>
#include <vector>

namespace {

class ThemedWidgets : private ToolkitApplication, public testing::Test {
protected:
    ThemedWidgets() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
};

/** A colour widget whose user does something in its dialog, and what it told. */
struct Choosing {
    Choosing(const LyrRGBAf& color, const std::function<void(QColorDialog&)>& act) {
        widget.setRgba(color);
        QObject::connect(&widget, &LyqColorWidget::rgbaChanged,
                         [this](const LyrRGBAf& told) { colors.push_back(told); });
        QObject::connect(&widget, &LyqColorWidget::choosingStarted, [this] { ++started; });
        QObject::connect(&widget, &LyqColorWidget::choosingCancelled, [this] { cancelled += finished == 0; });
        QObject::connect(&widget, &LyqColorWidget::choosingFinished, [this] { ++finished; });
        QTimer::singleShot(0, &widget, [&] {
            auto* dialog = widget.findChild<QColorDialog*>();
            ASSERT_NE(dialog, nullptr);
            act(*dialog);
        });
        widget.click();
    }

    LyqColorWidget widget;
    std::vector<LyrRGBAf> colors;
    int started = 0;
    int cancelled = 0;
    int finished = 0;
};

}  // namespace

TEST_F(ThemedWidgets, colours_are_truncated_to_bytes_and_all_bytes_survive_a_round_trip) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(LyqColorWidget::toQColor({0.5f, 1.0f, nan, -2.0f}), QColor(127, 255, 0, 0));
    EXPECT_EQ(LyqColorWidget::toQColor({3.0e38f, 0.999f, 0.0f, 1.0f}), QColor(255, 254, 0, 255));
    for (int byte = 0; byte < 256; ++byte) {
        const QColor color(byte, 255 - byte, byte, byte);
        EXPECT_EQ(LyqColorWidget::toQColor(LyqColorWidget::fromQColor(color)), color);
    }
}

TEST_F(ThemedWidgets, a_colour_that_is_set_is_kept_exactly_and_silently) {
    LyqColorWidget widget(nullptr, "mColor");
    int told = 0;
    QObject::connect(&widget, &LyqColorWidget::rgbaChanged, [&] { ++told; });
    widget.setRgba({0.5f, 2.0f, 0.25f, 0.125f});
    EXPECT_EQ(widget.rgba(), LyrRGBAf(0.5f, 2.0f, 0.25f, 0.125f));
    EXPECT_EQ(told, 0);
    EXPECT_EQ(widget.objectName(), "mColor");
}

TEST_F(ThemedWidgets, colours_that_are_tried_are_told_at_once) {
    std::size_t toldMeanwhile = 0;
    Choosing choosing({0.5f, 0.5f, 0.5f, 1.0f}, [&](QColorDialog& dialog) {
        EXPECT_TRUE(dialog.testOption(QColorDialog::ShowAlphaChannel));
        EXPECT_EQ(dialog.currentColor(), QColor(127, 127, 127));
        dialog.setCurrentColor(QColor(255, 0, 0));
        dialog.setCurrentColor(QColor(0, 51, 0, 102));
        toldMeanwhile = choosing.colors.size();
        dialog.accept();
    });
    EXPECT_GE(toldMeanwhile, 2u);
    EXPECT_EQ(choosing.colors.size(), toldMeanwhile);
    EXPECT_EQ(choosing.colors.front(), LyrRGBAf(255 * 0.003921569f, 0.0f, 0.0f, 255 * 0.003921569f));
    EXPECT_EQ(choosing.colors.back(), LyrRGBAf(0.0f, 51 * 0.003921569f, 0.0f, 102 * 0.003921569f));
    EXPECT_EQ(choosing.widget.rgba(), choosing.colors.back());
    EXPECT_EQ(choosing.started, 1);
    EXPECT_EQ(choosing.cancelled, 0);
    EXPECT_EQ(choosing.finished, 1);
}

TEST_F(ThemedWidgets, cancelling_shows_the_exact_first_colour_and_says_so) {
    const LyrRGBAf first(0.501f, 0.1f, 1.5f, 0.75f);
    const Choosing choosing(first, [](QColorDialog& dialog) {
        dialog.setCurrentColor(QColor(255, 0, 0));
        dialog.reject();
    });
    ASSERT_GE(choosing.colors.size(), 1u);
    EXPECT_NE(choosing.colors.back(), first) << "the first one is no choice";
    EXPECT_EQ(choosing.widget.rgba(), first);
    EXPECT_EQ(choosing.cancelled, 1);
    EXPECT_EQ(choosing.finished, 1);
}

TEST_F(ThemedWidgets, confirming_without_a_choice_changes_nothing) {
    const Choosing choosing({0.501f, 0.1f, 0.9f, 0.75f}, [](QColorDialog& dialog) { dialog.accept(); });
    EXPECT_TRUE(choosing.colors.empty());
    EXPECT_EQ(choosing.finished, 1);
}

TEST_F(ThemedWidgets, a_colour_widget_may_go_while_its_dialog_is_open) {
    const QPointer<LyqColorWidget> widget = new LyqColorWidget;
    QTimer::singleShot(0, [&] { delete widget; });
    widget->click();
    EXPECT_TRUE(widget.isNull());
}

TEST_F(ThemedWidgets, a_colour_looks_the_same_with_the_focus) {
    LyqColorWidget widget;
    widget.setRgba({0.0f, 1.0f, 0.0f, 0.5f});
    widget.resize(60, 20);
    widget.show();
    widget.activateWindow();
    widget.window()->setAttribute(Qt::WA_KeyboardFocusChange);
    widget.setFocus(Qt::TabFocusReason);
    QCoreApplication::processEvents();
    ASSERT_TRUE(widget.hasFocus());
    const QImage image = widget.grab().toImage();
    // Green of half the opacity (127 of 255) over white and over black.
    EXPECT_EQ(image.pixelColor(15, 10), QColor(128, 255, 128));
    EXPECT_EQ(image.pixelColor(45, 10), QColor(0, 127, 0));
}

TEST_F(ThemedWidgets, the_space_bar_opens_the_colour_dialog) {
    LyqColorWidget widget;
    EXPECT_EQ(widget.focusPolicy(), Qt::StrongFocus);
    bool opened = false;
    QTimer::singleShot(0, &widget, [&] {
        auto* dialog = widget.findChild<QColorDialog*>();
        opened = dialog != nullptr;
        if (dialog) {
            dialog->reject();
        }
    });
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent space(type, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
        QCoreApplication::sendEvent(&widget, &space);
    }
    EXPECT_TRUE(opened);
}

TEST_F(ThemedWidgets, a_combo_box_is_filled_silently_and_only_when_its_items_differ) {
    LyqComboBox box(nullptr, "mBox");
    int told = 0;
    int rows = 0;
    QObject::connect(&box, &QComboBox::currentIndexChanged, [&] { ++told; });
    box.setItems({"a", "b", "c"});
    EXPECT_EQ(box.currentIndex(), 0);
    QObject::connect(box.model(), &QAbstractItemModel::rowsRemoved, [&] { ++rows; });
    box.setCurrentSilently(2);
    box.setItems({"a", "b", "c"});
    EXPECT_EQ(box.currentIndex(), 2);
    EXPECT_EQ(rows, 0);
    box.setItems({"x", "y"});
    EXPECT_EQ(box.currentIndex(), 1);
    EXPECT_EQ(box.items(), (QStringList{"x", "y"}));
    EXPECT_EQ(told, 0);
}

TEST_F(ThemedWidgets, a_line_keeps_its_cursor_and_its_own_history) {
    LyqLineEdit line;
    int told = 0;
    QObject::connect(&line, &QLineEdit::textChanged, [&] { ++told; });
    line.insert("abcdef");
    told = 0;
    line.setCursorPosition(2);
    line.showText("abcdef");
    EXPECT_TRUE(line.isUndoAvailable()) << "the same text was left alone";
    EXPECT_EQ(line.cursorPosition(), 2);
    line.showText("uvwxyz");
    EXPECT_EQ(line.cursorPosition(), 2);
    line.showText("u");
    EXPECT_EQ(line.cursorPosition(), 1);
    EXPECT_EQ(told, 0);
}

TEST_F(ThemedWidgets, an_object_editor_is_made_by_name_only_if_it_is_one) {
    EXPECT_EQ(LyqObjectEditorHandler::create("LyrObject"), nullptr);
    EXPECT_EQ(LyqObjectEditorHandler::create("NoSuchClass"), nullptr);
    EXPECT_EQ(LyqObjectEditorHandler::create("LyqObjectEditorHandler"), nullptr) << "there is nothing to edit with";
}
