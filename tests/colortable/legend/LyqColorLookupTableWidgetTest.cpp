#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LyqColorLookupTableWidget.h>
#include <colortable/legend/SectionImage.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrUnitIdentifiers.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyrApplicationObject.h>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <cmath>
#include <functional>

namespace {

/** Counts how often the picture is made. */
class CountingWidget : public LyqColorLookupTableWidget {
public:
    int syncs = 0;

protected:
    void doSync() override {
        ++syncs;
        LyqColorLookupTableWidget::doSync();
    }
};

class LegendWidget : private ToolkitApplication, public testing::Test {
protected:
    LegendWidget() {
        QPalette palette = widget.palette();
        palette.setColor(widget.backgroundRole(), QColor(10, 20, 30));
        widget.setPalette(palette);
        widget.setColorTable(table.get());
        widget.setRenderSettings(settings.get());
        widget.resize(100, 200);
    }

    QImage picture() {
        QImage image(widget.size(), QImage::Format_RGB32);
        image.fill(Qt::yellow);
        widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        return image;
    }

    LyrObject* section(int index) {
        LyrValueArrayOPCache<LyrObjectLink> links;
        links.load(table.get(), Lyr::SectionList);
        return links.items().at(static_cast<std::size_t>(index)).getLink();
    }

    LyrObjectRefPtr table{"LyrColorLookupTable", Lyr::DocumentScope};
    LyrObjectRefPtr settings{"LyrColorLookupTableRenderSettings", Lyr::DocumentScope};
    CountingWidget widget;
};

}  // namespace

TEST_F(LegendWidget, an_unchanged_widget_paints_its_picture_again) {
    const QImage first = picture();
    EXPECT_EQ(widget.syncs, 1);
    EXPECT_FALSE(widget.needsUpdate());
    EXPECT_EQ(picture(), first);
    EXPECT_EQ(widget.syncs, 1);
}

TEST_F(LegendWidget, each_kind_of_change_makes_the_picture_once) {
    picture();
    const std::vector<std::function<void()>> changes = {
        [&] { lyrSetValue<Lyrenum>(table.get(), Lyr::AutoLabel, 0); },
        [&] { lyrSetValue(section(1), Lyr::Type, Lyr::HueCycle); },
        [&] { lyrSetValue(settings.get(), Lyr::Thickness, 20LL); },
        [&] { lyrSetValue<const char*>(settings.get(), Lyrenum("DescriptionTemplate", true), "[%l]"); },
        [&] { LyqApplication::instance().displayUnits().setDisplayUnit(Lyr::Length, Lyr::Inch); },
        [&] { LyqApplication::instance().displayUnits().setDisplayUnit(Lyr::Length, Lyr::Millimeter); },
        [&] { widget.setDotsPerInch(144.0f); },
        [&] { widget.setEnabled(false); },
        [&] { widget.setEnabled(true); },
        [&] { widget.invalidate(); },
        [&] { widget.resize(120, 220); },
        [&] { widget.setColorTable(nullptr); },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const int before = widget.syncs;
        changes[i]();
        picture();
        picture();
        EXPECT_EQ(widget.syncs, before + 1) << "change " << i;
    }
}

TEST_F(LegendWidget, equal_setters_change_nothing) {
    picture();
    widget.setColorTable(table.get());
    widget.setRenderSettings(settings.get());
    widget.setDotsPerInch(0.0f);
    EXPECT_FALSE(widget.needsUpdate());
}

TEST_F(LegendWidget, a_disabled_widget_shows_its_background_only) {
    widget.setEnabled(false);
    QPalette palette = widget.palette();
    palette.setColor(QPalette::Disabled, widget.backgroundRole(), QColor(10, 20, 30));
    widget.setPalette(palette);
    const QImage image = picture();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            ASSERT_EQ(image.pixel(x, y), qRgb(10, 20, 30));
        }
    }
}

TEST_F(LegendWidget, the_bar_shows_the_sections_in_black_frames) {
    lyrSetValue(section(1), Lyr::Type, Lyr::Constant);
    const LyrVector2<float> half{0.0f, 0.5f};
    const LyrVector2<float> opaque{0.0f, 1.0f};
    for (const Lyrenum channel : {Lyr::PointListRed, Lyr::PointListAlpha}) {
        LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrVector2<float>>>(section(1), channel)
            ->initArray(0, 0, channel == Lyr::PointListRed ? &opaque : &half);
    }
    const QImage image = picture();
    // Columns 0 to 11, rows 16 to 187: a frame, then (1, 0, 0) of opacity 1/2 over white and over black.
    EXPECT_EQ(image.pixel(0, 100), qRgb(0, 0, 0));
    EXPECT_EQ(image.pixel(11, 100), qRgb(0, 0, 0));
    EXPECT_EQ(image.pixel(1, 100), qRgb(255, 127, 127));
    EXPECT_EQ(image.pixel(5, 100), qRgb(255, 127, 127));
    EXPECT_EQ(image.pixel(6, 100), qRgb(127, 0, 0));
    EXPECT_EQ(image.pixel(10, 100), qRgb(127, 0, 0));
    EXPECT_EQ(image.pixel(12, 100), qRgb(10, 20, 30));
    // The outer boxes: pink above, violet below.
    EXPECT_EQ(image.pixel(4, 10), qRgb(255, 0, 153));
    EXPECT_EQ(image.pixel(4, 193), qRgb(153, 0, 255));
    EXPECT_EQ(image.pixel(4, 16), qRgb(0, 0, 0));
    EXPECT_EQ(image.pixel(4, 187), qRgb(0, 0, 0));
}

TEST_F(LegendWidget, a_table_that_is_not_valid_leaves_the_widget_blank) {
    const float one = 1.0f;
    LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>>(table.get(), Lyr::PositionList)->initArray(0, 0, &one);
    const QImage image = picture();
    QImage blank(image.size(), image.format());
    blank.fill(qRgb(10, 20, 30));
    EXPECT_EQ(image, blank);
}

TEST_F(LegendWidget, an_object_of_another_class_is_reported) {
    struct Ears : LyrError::Listener {
        int wrongTypes = 0;
        bool errorEmitted(const LyrError::Message& message) override {
            wrongTypes += message.getCode() == Lyr::WrongType;
            return true;
        }
    } ears;
    widget.setColorTable(settings.get());
    picture();
    EXPECT_EQ(ears.wrongTypes, 1);
}

TEST_F(LegendWidget, percentages_have_two_decimals_and_a_percent_sign) {
    lyrSetValue(table.get(), Lyr::Quantity, Lyr::Percent);
    lyrSetValue<const char*>(settings.get(), Lyrenum("DescriptionTemplate", true), "Share %1 [%l]");
    EXPECT_EQ(widget.internalToDisplayString(12.3456f), QStringLiteral("12.35"));
    EXPECT_EQ(widget.internalToDisplayString(3.0f), QStringLiteral("3.00"));
    EXPECT_EQ(widget.getDescriptionString(), QStringLiteral("Share %1 [%]"));
}

TEST_F(LegendWidget, labels_and_caption_follow_the_display_unit) {
    lyrSetValue<const char*>(settings.get(), Lyrenum("DescriptionTemplate", true), "Thickness [%l]");
    picture();
    LyqApplication::instance().displayUnits().setDisplayUnit(Lyr::Length, Lyr::Inch);
    EXPECT_EQ(widget.internalToDisplayString(25.4f), QStringLiteral("1"));
    EXPECT_EQ(widget.getDescriptionString(), QStringLiteral("Thickness [in]"));
    LyqApplication::instance().displayUnits().setDisplayUnit(Lyr::Length, Lyr::Millimeter);
    EXPECT_EQ(widget.internalToDisplayString(25.4f), QStringLiteral("25.4"));
}

TEST(SectionImage, halves_lie_where_they_are_said_to_for_odd_sizes) {
    const LyrObjectRefPtr object("LyrColorLookupTable::Section", Lyr::DocumentScope);
    const auto& section = static_cast<const LyrColorLookupTable::Section&>(*object.get());
    // A constant section without points is transparent: white over white, black over black.
    using lys::legend::Halves;
    const QImage left = lys::legend::sectionImage({11, 25}, Halves::LeftOverWhite, section, nullptr, nullptr);
    EXPECT_EQ(left.pixel(4, 12), qRgb(255, 255, 255));
    EXPECT_EQ(left.pixel(5, 12), qRgb(0, 0, 0));
    const QImage lower = lys::legend::sectionImage({25, 11}, Halves::LowerOverWhite, section, nullptr, nullptr);
    EXPECT_EQ(lower.pixel(12, 10), qRgb(255, 255, 255));
    EXPECT_EQ(lower.pixel(12, 6), qRgb(255, 255, 255));
    EXPECT_EQ(lower.pixel(12, 5), qRgb(0, 0, 0));
    const QImage upper = lys::legend::sectionImage({25, 11}, Halves::UpperOverWhite, section, nullptr, nullptr);
    EXPECT_EQ(upper.pixel(12, 0), qRgb(255, 255, 255));
    EXPECT_EQ(upper.pixel(12, 4), qRgb(255, 255, 255));
    EXPECT_EQ(upper.pixel(12, 5), qRgb(0, 0, 0));
}

TEST(SectionImage, colours_are_truncated_and_kept_in_their_bytes) {
    EXPECT_EQ(lys::legend::opaque({0.5f, 0.999f, 1.0f, 1.0f}), qRgb(127, 254, 255));
    EXPECT_EQ(lys::legend::opaque({-3.0f, 7.0f, std::nanf(""), 1.0f}), qRgb(0, 255, 0));
    EXPECT_EQ(lys::legend::overWhite({1.0f, 0.0f, 0.0f, 0.5f}), qRgb(255, 127, 127));
    EXPECT_EQ(lys::legend::overBlack({1.0f, 0.0f, 0.0f, 0.5f}), qRgb(127, 0, 0));
}

TEST(SectionImage, a_bar_runs_from_bottom_to_top_and_from_left_to_right) {
    const LyrObjectRefPtr object("LyrColorLookupTable::Section", Lyr::DocumentScope);
    lyrSetValue(object.get(), Lyr::Type, Lyr::Rainbow);
    const auto& section = static_cast<const LyrColorLookupTable::Section&>(*object.get());
    using lys::legend::Halves;
    const QImage bar = lys::legend::sectionImage({10, 51}, Halves::LeftOverWhite, section, nullptr, nullptr);
    EXPECT_EQ(bar.pixel(0, 50), qRgb(0, 0, 255));
    EXPECT_EQ(bar.pixel(0, 25), qRgb(0, 255, 0));
    EXPECT_EQ(bar.pixel(0, 0), qRgb(255, 0, 0));
    const QImage flat = lys::legend::sectionImage({51, 10}, Halves::LowerOverWhite, section, nullptr, nullptr);
    EXPECT_EQ(flat.pixel(0, 0), qRgb(0, 0, 255));
    EXPECT_EQ(flat.pixel(50, 0), qRgb(255, 0, 0));
}
