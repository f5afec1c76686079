#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LyqColorLookupTableWidget.h>
#include <colortable/viewport/LyqColorLookupTableAnnotation.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrUnitIdentifiers.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqFrame.h>
#include <lys_core/LyrApplicationObject.h>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <vector>

namespace {

class LegendAnnotation : private ToolkitApplication, public testing::Test {
protected:
    void SetUp() override {
        lyrSetValue(held.get(), Lyr::Object, LyrObjectLink(table.get(), nullptr, -1));
        lyrSetValue(held.get(), Lyr::ColorLookupTableRenderSettings, LyrObjectLink(settings.get(), nullptr, -1));
    }
    void TearDown() override { LyqApplication::instance().displayUnits().setInchSystem(false); }

    LyrObjectRefPtr table{"LyrColorLookupTable", Lyr::DocumentScope};
    LyrObjectRefPtr settings{"LyrColorLookupTableRenderSettings", Lyr::DocumentScope};
    LyrObjectRefPtr held{"LyqColorLookupTableAnnotation", Lyr::TransientScope};
    LyqColorLookupTableAnnotation& annotation = static_cast<LyqColorLookupTableAnnotation&>(*held.get());
};

bool isKey(QRgb pixel) {
    return (pixel & 0xffffffu) == 0x000008u;
}

/** Hears of display units. */
struct UnitEar : LyrIOC {
    std::vector<const LyrObject*> senders;
    bool iocCallback(Message& message) override {
        if (message.getMessageType() == Lyrenum(0x0C35012B) && message.getPropertyID() == Lyr::DisplayUnitList) {
            senders.push_back(message.getInitialSender());
        }
        return LyrIOC::iocCallback(message);
    }
};

}  // namespace

TEST_F(LegendAnnotation, is_an_image_that_nobody_can_drag) {
    EXPECT_EQ(annotation.getRenderingMode(), LyqAnnotation::RenderedImage);
    EXPECT_EQ(static_cast<int>(annotation.getRenderingMode()), 1);
    EXPECT_FALSE(annotation.isMovingEnabled());
    annotation.setPosition(QPoint(3, 4));
    annotation.beginUserMove();
    EXPECT_EQ(annotation.frameGeometry().topLeft(), QPoint(3, 4));
}

TEST_F(LegendAnnotation, asks_for_the_size_of_its_colour_bar) {
    ASSERT_NE(annotation.lookupTableWidget(), nullptr);
    EXPECT_EQ(annotation.sizeHint(), annotation.lookupTableWidget()->sizeHint());
    EXPECT_EQ(annotation.minimumSizeHint(), annotation.lookupTableWidget()->minimumSizeHint());
}

TEST_F(LegendAnnotation, shows_its_table_on_the_key_colour) {
    annotation.setFixedSize(QSize(100, 200));
    const QImage image = annotation.getImage();
    ASSERT_EQ(image.size(), QSize(100, 200));
    EXPECT_EQ(image.pixel(5, 10) & 0xffffffu, 0xff0099u);
    EXPECT_TRUE(isKey(image.pixel(99, 199)));
    EXPECT_FALSE(annotation.lookupTableWidget()->needsUpdate());
}

TEST_F(LegendAnnotation, is_nothing_but_key_colour_without_a_table) {
    lyrSetValue(held.get(), Lyr::Object, LyrObjectLink());
    for (const bool enabled : {true, false}) {
        annotation.lookupTableWidget()->setEnabled(enabled);
        annotation.setFixedSize(QSize(40, 50));
        annotation.updateImage();
        const QImage image = annotation.getImage();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                ASSERT_TRUE(isKey(image.pixel(x, y))) << x << ' ' << y;
            }
        }
    }
}

TEST_F(LegendAnnotation, follows_its_properties_at_once) {
    annotation.getImage();
    lyrSetValue(held.get(), Lyr::DotsPerInch, LyrVector2<float>{192.0f, 96.0f});
    EXPECT_EQ(annotation.lookupTableWidget()->getDotsPerInch(), 192.0f);
    EXPECT_TRUE(annotation.lookupTableWidget()->needsUpdate());
    annotation.updateImage();
    EXPECT_FALSE(annotation.lookupTableWidget()->needsUpdate());
    lyrSetValue(held.get(), Lyr::ColorLookupTableRenderSettings, LyrObjectLink());
    EXPECT_TRUE(annotation.lookupTableWidget()->needsUpdate());
}

TEST_F(LegendAnnotation, has_a_need_for_an_update_after_each_change_of_size) {
    annotation.setFixedSize(QSize(100, 200));
    annotation.updateImage();
    EXPECT_FALSE(annotation.lookupTableWidget()->needsUpdate());
    annotation.setFixedSize(QSize(100, 201));
    EXPECT_TRUE(annotation.lookupTableWidget()->needsUpdate());
}

TEST_F(LegendAnnotation, tells_its_listeners_of_display_units_and_never_within_another) {
    const LyrObjectRefPtr other("LyqColorLookupTableAnnotation", Lyr::TransientScope);
    UnitEar ear;
    const LyrObjectIOCPtr first(&ear, held.get());
    const LyrObjectIOCPtr second(&ear, other.get());
    LyqApplication::instance().displayUnits().setDisplayUnit(Lyr::Length, Lyr::Inch);
    ASSERT_EQ(ear.senders.size(), 2u);
    EXPECT_NE(ear.senders[0], ear.senders[1]);
}

TEST_F(LegendAnnotation, tells_nothing_of_units_that_change_while_another_tells) {
    // Each message heard is answered by another change of units.
    struct Echo : UnitEar {
        bool iocCallback(Message& message) override {
            const bool result = UnitEar::iocCallback(message);
            LyrObject& application = LyqApplication::instance().object();
            Message again(&application, Lyr::PropertyHasChanged, Lyr::DisplayUnitList);
            application.iocBroadcast(again);
            return result;
        }
    };
    const LyrObjectRefPtr other("LyqColorLookupTableAnnotation", Lyr::TransientScope);
    Echo ear;
    const LyrObjectIOCPtr first(&ear, held.get());
    const LyrObjectIOCPtr second(&ear, other.get());
    const LyrTimestamp stamped = held->getModificationTimestamp();
    LyqApplication::instance().displayUnits().setDisplayUnit(Lyr::Length, Lyr::Inch);
    EXPECT_EQ(ear.senders.size(), 2u);
    EXPECT_EQ(held->getModificationTimestamp(), stamped);
    LyqApplication::instance().displayUnits().setDisplayUnit(Lyr::Length, Lyr::Millimeter);
    EXPECT_EQ(ear.senders.size(), 4u);
}

TEST_F(LegendAnnotation, survives_its_frames) {
    QWidget* frame = annotation.widget()->parentWidget();
    delete frame;
    EXPECT_EQ(annotation.widget(), nullptr);
    EXPECT_EQ(annotation.lookupTableWidget(), nullptr);
    EXPECT_EQ(annotation.sizeHint(), QSize(0, 0));
    EXPECT_TRUE(lyrSetValue(held.get(), Lyr::DotsPerInch, LyrVector2<float>{1.0f, 1.0f}));
    EXPECT_TRUE(annotation.getImage().isNull());
}

TEST_F(LegendAnnotation, has_no_copy) {
    EXPECT_FALSE(LyrMetaClass::find("LyqColorLookupTableAnnotation")->copy(held.get(), table.get()));
}
