#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqAnnotation.h>
#include <lys_core/LyqFrame.h>

#include <QPainter>
#include <QPointer>
#include <QResizeEvent>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

namespace {

/** Paints itself red on its background and counts what it is told. */
class RedDot : public QWidget {
public:
    using QWidget::QWidget;
    int paints = 0;
    int resizes = 0;
    QSize sizeHint() const override { return QSize(60, 128); }
    QSize minimumSizeHint() const override { return QSize(20, 30); }

protected:
    void paintEvent(QPaintEvent*) override {
        ++paints;
        QPainter(this).fillRect(QRect(1, 2, 3, 4), Qt::red);
    }
    void resizeEvent(QResizeEvent*) override { ++resizes; }
};

class Dot : public LyqAnnotation {
public:
    explicit Dot(RenderingModeEnum mode) : LyqAnnotation(nullptr, "dot"), mMode(mode) {
        mOuter = new LyqFrame;
        auto* inner = new LyqAnnotationFrame(mOuter);
        inner->setBackgroundColor(QColor(KEY_COLOR));
        inner->setContent(new RedDot(inner));
        mOuter->setContent(inner);
        mInner = inner;
    }
    ~Dot() override { delete mOuter; }
    LyqFrame* widget() const override { return mInner; }
    RenderingModeEnum getRenderingMode() const override { return mMode; }
    LyqFrame* outer() const { return mOuter; }
    RedDot* dot() const { return static_cast<RedDot*>(innerWidget()); }

protected:
    LyqFrame* outerFrame() const override { return mOuter; }

private:
    QPointer<LyqFrame> mOuter;
    QPointer<LyqFrame> mInner;
    RenderingModeEnum mMode;
};

class Annotation : private ToolkitApplication, public testing::Test {
protected:
    LyrObjectPtr held{new Dot(LyqAnnotation::RenderedImage)};
    Dot& dot = static_cast<Dot&>(*held);
};

}  // namespace

TEST_F(Annotation, asks_for_the_size_of_its_widget_and_nothing_more) {
    EXPECT_EQ(dot.sizeHint(), QSize(60, 128));
    EXPECT_EQ(dot.minimumSizeHint(), QSize(20, 30));
    dot.setFixedSize(QSize(10, 300));
    EXPECT_EQ(dot.sizeHint(), QSize(60, 128));
}

TEST_F(Annotation, resizes_what_it_holds_at_once_though_it_is_hidden) {
    const int before = dot.dot()->resizes;
    dot.setFixedSize(QSize(70, 90));
    EXPECT_EQ(dot.dot()->size(), QSize(70, 90));
    EXPECT_EQ(dot.outer()->size(), QSize(70, 90));
    EXPECT_EQ(dot.dot()->resizes, before + 1);
    dot.setFixedSize(QSize(70, 90));
    EXPECT_EQ(dot.dot()->resizes, before + 1);
}

TEST_F(Annotation, renders_its_widget_onto_the_key_colour) {
    dot.setFixedSize(QSize(8, 9));
    const QImage image = dot.getImage();
    ASSERT_EQ(image.size(), QSize(8, 9));
    EXPECT_EQ(image.format(), QImage::Format_RGB32);
    for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < 8; ++x) {
            const bool red = QRect(1, 2, 3, 4).contains(x, y);
            EXPECT_EQ(image.pixel(x, y) & 0xffffffu, red ? 0xff0000u : 0x000008u) << x << ' ' << y;
        }
    }
}

TEST_F(Annotation, renders_once_until_it_is_asked_to_or_its_size_changes) {
    dot.setFixedSize(QSize(8, 9));
    dot.getImage();
    const int paints = dot.dot()->paints;
    dot.getImage();
    EXPECT_EQ(dot.dot()->paints, paints);
    dot.updateImage();
    EXPECT_EQ(dot.dot()->paints, paints + 1);
    dot.setFixedSize(QSize(12, 9));
    EXPECT_EQ(dot.getImage().size(), QSize(12, 9));
    EXPECT_EQ(dot.dot()->paints, paints + 2);
}

TEST_F(Annotation, keeps_the_key_colour_while_disabled) {
    dot.outer()->setEnabled(false);
    dot.setFixedSize(QSize(8, 9));
    EXPECT_EQ(dot.getImage().pixel(7, 8) & 0xffffffu, 0x000008u);
}

TEST_F(Annotation, is_never_shown_as_a_widget_when_a_driver_draws_it) {
    dot.setVisible(true);
    EXPECT_TRUE(dot.isVisible());
    EXPECT_FALSE(dot.outer()->isVisible());
    dot.setPosition(QPoint(30, 40));
    EXPECT_EQ(dot.frameGeometry().topLeft(), QPoint(30, 40));
    EXPECT_EQ(dot.outer()->pos(), QPoint(0, 0));
}

TEST_F(Annotation, survives_the_loss_of_its_frames) {
    delete dot.outer();
    EXPECT_EQ(dot.widget(), nullptr);
    EXPECT_EQ(dot.sizeHint(), QSize(0, 0));
    EXPECT_EQ(dot.minimumSizeHint(), QSize(0, 0));
    dot.setFixedSize(QSize(5, 5));
    dot.setVisible(true);
    EXPECT_TRUE(dot.getImage().isNull());
}

TEST_F(Annotation, has_an_image_of_one_pixel_at_least) {
    dot.setFixedSize(QSize(0, -4));
    EXPECT_EQ(dot.getImage().size(), QSize(1, 1));
}

TEST(LiveAnnotation, moves_and_shows_its_frame) {
    const ToolkitApplication application;
    const LyrObjectPtr held(new Dot(LyqAnnotation::LiveWidget));
    auto& dot = static_cast<Dot&>(*held);
    dot.setPosition(QPoint(7, 8));
    EXPECT_EQ(dot.outer()->pos(), QPoint(7, 8));
    dot.setVisible(true);
    EXPECT_TRUE(dot.outer()->isVisible());
    dot.setVisible(false);
    EXPECT_FALSE(dot.outer()->isVisible());
}

TEST_F(Annotation, passes_changes_of_what_it_shows_on_to_its_owners) {
    struct Owner : LyrObject {
        int heard = 0;
        LyrObjectHardLinkListOP annotations;
        Owner() { addProperty(7, &annotations); }
        bool iocCallback(Message& message) override {
            heard += message.getPropertyID() == Lyr::NameTemplate ? 1 : 0;
            return LyrObject::iocCallback(message);
        }
    } owner;
    owner.incRef();
    const LyrObjectPtr table(new LyrObject);
    const LyrObjectLink link(&dot, nullptr, -1);
    ASSERT_TRUE(owner.annotations.initArray(0, 0, &link));
    ASSERT_TRUE(lyrSetValue(&dot, Lyr::Object, LyrObjectLink(table.get(), nullptr, -1)));
    const LyrTimestamp before = dot.getModificationTimestamp();
    table->setNameTemplate("other");
    EXPECT_EQ(owner.heard, 1);
    EXPECT_EQ(dot.getModificationTimestamp(), before);
    owner.annotations.initArray(0, -1, nullptr);
}
