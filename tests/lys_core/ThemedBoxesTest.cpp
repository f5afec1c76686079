#include <lys_core/LyqMessageBox.h>
#include <lys_core/LyqPainter.h>
#include <lys_core/LyqPresetComboBox.h>
#include <lys_core/LyqPresetRegistry.h>

#include <QApplication>
#include <QImage>
#include <QPixmap>
#include <QTimer>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <memory>

namespace {

class ThemedBoxes : private ToolkitApplication, public testing::Test {};

struct Receiver : LyqPresetRegistry::Receiver {
    void setCurrentObject(LyrObject*) override {}
};

constexpr Lyrenum CATEGORY{77};

}  // namespace

TEST_F(ThemedBoxes, a_warning_shows_plain_text_over_its_parent_until_its_button_is_pressed) {
    QWidget parent;
    bool seen = false;
    QTimer::singleShot(0, &parent, [&] {
        auto* box = qobject_cast<LyqMessageBox*>(QApplication::activeModalWidget());
        ASSERT_TRUE(box);
        seen = true;
        EXPECT_EQ(box->parentWidget(), &parent);
        EXPECT_EQ(box->windowTitle(), QStringLiteral("Caption"));
        EXPECT_EQ(box->text(), QStringLiteral("<b>text"));
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
        EXPECT_EQ(box->icon(), QMessageBox::Warning);
        EXPECT_EQ(box->standardButtons(), QMessageBox::Ok);
        box->accept();
    });
    LyqMessageBox::warning(&parent, QStringLiteral("Caption"), QStringLiteral("<b>text"));
    EXPECT_TRUE(seen);
    EXPECT_TRUE(parent.findChildren<LyqMessageBox*>().isEmpty());
}

TEST_F(ThemedBoxes, a_warning_ends_when_its_parent_goes) {
    auto* parent = new QWidget;
    QTimer::singleShot(0, parent, [parent] { delete parent; });
    LyqMessageBox::warning(parent, QStringLiteral("Caption"), QStringLiteral("text"));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(ThemedBoxes, a_stretched_picture_has_sharp_pixels) {
    QImage two(2, 1, QImage::Format_RGB32);
    two.setPixel(0, 0, qRgb(255, 0, 0));
    two.setPixel(1, 0, qRgb(0, 0, 255));
    QImage target(20, 10, QImage::Format_RGB32);
    target.fill(Qt::white);
    {
        LyqPainter painter(&target);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawStretched(QRect(0, 0, 20, 10), QPixmap::fromImage(two));
        EXPECT_TRUE(painter.testRenderHint(QPainter::SmoothPixmapTransform));
    }
    for (int x = 0; x < 20; ++x) {
        EXPECT_EQ(target.pixel(x, 5), x < 10 ? qRgb(255, 0, 0) : qRgb(0, 0, 255)) << x;
    }
}

TEST_F(ThemedBoxes, a_preset_box_knows_its_handler_also_by_a_forms_property) {
    LyqPresetComboBox box;
    EXPECT_EQ(box.getHandlerId(), Lyrenum(-1));
    box.setProperty("handlerId", 77);
    EXPECT_EQ(box.getHandlerId(), CATEGORY);
    EXPECT_EQ(box.property("handlerId").toInt(), 77);
}

TEST_F(ThemedBoxes, a_preset_receiver_is_found_until_it_goes) {
    LyqPresetRegistry& registry = LyqPresetRegistry::instance();
    auto first = std::make_unique<Receiver>();
    Receiver second;
    EXPECT_EQ(registry.find(CATEGORY), nullptr);
    EXPECT_FALSE(registry.add(CATEGORY, nullptr));
    EXPECT_TRUE(registry.add(CATEGORY, first.get()));
    EXPECT_TRUE(registry.add(CATEGORY, first.get()));
    EXPECT_FALSE(registry.add(CATEGORY, &second));
    EXPECT_EQ(registry.find(CATEGORY), first.get());
    first.reset();
    EXPECT_EQ(registry.find(CATEGORY), nullptr);
    EXPECT_TRUE(registry.add(CATEGORY, &second));
    registry.remove(&second);
    EXPECT_EQ(registry.find(CATEGORY), nullptr);
}
