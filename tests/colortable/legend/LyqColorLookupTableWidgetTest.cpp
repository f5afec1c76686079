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

#include <QCoreApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QPalette>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
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

TEST_F(LegendWidget, takes_its_name_and_paints_all_of_its_pixels_itself) {
    const LyqColorLookupTableWidget named(nullptr, "legend");
    EXPECT_EQ(named.objectName(), QStringLiteral("legend"));
    EXPECT_EQ(widget.objectName(), QString());
    EXPECT_TRUE(named.testAttribute(Qt::WA_OpaquePaintEvent));
    EXPECT_TRUE(named.testAttribute(Qt::WA_StaticContents));
    EXPECT_TRUE(named.hasMouseTracking());
    EXPECT_FALSE(named.windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_EQ(named.getDotsPerInch(), 0.0f);
    EXPECT_TRUE(named.needsUpdate());
    EXPECT_EQ(named.getVirtualBorderSectionSize(), 12);
}

TEST_F(LegendWidget, answers_for_what_it_was_given_before_it_is_painted) {
    lyrSetValue<const char*>(settings.get(), Lyr::Font, "Arial,20,-1,5,50,0,0,0,0,0");
    EXPECT_EQ(widget.getScaledFont().pixelSize(), 27);
    widget.setDotsPerInch(192.0f);
    EXPECT_EQ(widget.getScaledFont().pixelSize(), 53);
    EXPECT_EQ(widget.getScaledFontMetrics().height(), QFontMetrics(widget.getScaledFont()).height());
    EXPECT_GE(widget.getVirtualBorderSectionSize(), 24);
    widget.setDotsPerInch(0.0f);
    lyrSetValue<const char*>(settings.get(), Lyr::Font, "Arial,10,-1,5,50,0,0,0,0,0");
    // 195 pixels from row 5, less 12 at each end.
    EXPECT_EQ(widget.realToWidget(1.0f), 16);
    lyrSetValue(table.get(), Lyr::Quantity, Lyr::Angle);
    EXPECT_EQ(widget.internalToDisplayString(3.14159265f), QStringLiteral("180"));
}

TEST_F(LegendWidget, a_resolution_that_is_no_number_changes_once) {
    widget.setDotsPerInch(std::nanf(""));
    picture();
    widget.setDotsPerInch(std::nanf(""));
    EXPECT_FALSE(widget.needsUpdate());
    widget.setDotsPerInch(1e38f);
    EXPECT_GT(widget.minimumSizeHint().height(), 0);
    EXPECT_GT(widget.sizeHint().width(), 0);
}

TEST_F(LegendWidget, many_changes_on_the_screen_make_one_picture) {
    widget.show();
    const auto settle = [] {
        for (int i = 0; i < 5; ++i) {
            QCoreApplication::processEvents();
        }
    };
    settle();
    const int before = widget.syncs;
    ASSERT_GT(before, 0);
    for (int i = 0; i < 20; ++i) {
        lyrSetValue<long long>(settings.get(), Lyr::Thickness, 20 + i);
        lyrSetValue<Lyrenum>(table.get(), Lyr::AutoLabel, i % 2);
        lyrSetValue(section(1), Lyr::Type, i % 2 ? Lyr::HueCycle : Lyr::Rainbow);
    }
    widget.setDotsPerInch(120.0f);
    EXPECT_EQ(widget.syncs, before);
    settle();
    EXPECT_EQ(widget.syncs, before + 1);
    EXPECT_FALSE(widget.needsUpdate());
    widget.update();
    settle();
    EXPECT_EQ(widget.syncs, before + 1);
}

TEST_F(LegendWidget, needs_an_update_after_each_change_before_it_is_painted) {
    const std::vector<std::function<void()>> changes = {
        [&] { lyrSetValue<Lyrenum>(table.get(), Lyr::AutoLabel, 0); },
        [&] { lyrSetValue(section(0), Lyr::Type, Lyr::HueCycle); },
        [&] { lyrSetValue(section(2), Lyr::Type, Lyr::HueCycle); },
        [&] { lyrSetValue(settings.get(), Lyr::Thickness, 20LL); },
        [&] { LyqApplication::instance().displayUnits().setDisplayUnit(Lyr::Length, Lyr::Inch); },
        [&] { LyqApplication::instance().displayUnits().setDisplayUnit(Lyr::Length, Lyr::Millimeter); },
        [&] { widget.setDotsPerInch(144.0f); },
        [&] { widget.setEnabled(false); },
        [&] { widget.setEnabled(true); },
        [&] { widget.invalidate(); },
        [&] { widget.setFont(QFont(QStringLiteral("Arial"), 30)); },
        [&] { widget.setRenderSettings(nullptr); },
        [&] { widget.setColorTable(nullptr); },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        picture();
        ASSERT_FALSE(widget.needsUpdate()) << i;
        changes[i]();
        EXPECT_TRUE(widget.needsUpdate()) << i;
    }
}

TEST_F(LegendWidget, without_a_table_it_is_blank_and_without_settings_the_bar_is_thick) {
    widget.setRenderSettings(nullptr);
    const QImage thick = picture();
    EXPECT_EQ(thick.pixel(0, 100), qRgb(0, 0, 0));
    EXPECT_EQ(thick.pixel(23, 100), qRgb(0, 0, 0));
    EXPECT_EQ(thick.pixel(24, 100), qRgb(10, 20, 30));
    int black = 0;
    int white = 0;
    for (int y = 0; y < 200; ++y) {
        for (int x = 26; x < 100; ++x) {
            // Grey are only letters on their outline: thin ones, of some fonts, are nowhere quite black.
            const QRgb pixel = thick.pixel(x, y);
            const bool grey = qRed(pixel) == qGreen(pixel) && qGreen(pixel) == qBlue(pixel);
            black += grey && qRed(pixel) < 128;
            white += grey && qRed(pixel) >= 128;
        }
    }
    EXPECT_GT(black, 5) << "text";
    EXPECT_GT(white, 40) << "outline";
    widget.setColorTable(nullptr);
    QImage blank(thick.size(), thick.format());
    blank.fill(qRgb(10, 20, 30));
    EXPECT_EQ(picture(), blank);
}

TEST_F(LegendWidget, the_boxes_beyond_the_range_follow_the_finite_mode) {
    for (const int mode : {0, 1, 2, 3}) {
        lyrSetValue(table.get(), Lyr::FiniteMode, LyrValuePair<Lyrenum>{mode & 1, mode >> 1});
        const QImage image = picture();
        EXPECT_EQ(image.pixel(4, 193), mode & 1 ? qRgb(10, 20, 30) : qRgb(153, 0, 255)) << mode;
        EXPECT_EQ(image.pixel(4, 10), mode >> 1 ? qRgb(10, 20, 30) : qRgb(255, 0, 153)) << mode;
        EXPECT_EQ(image.pixel(4, 187), qRgb(0, 0, 0)) << "no room is reclaimed";
    }
}

TEST_F(LegendWidget, all_kinds_of_sections_look_as_they_evaluate) {
    for (const Lyrenum type : {Lyr::Rainbow, Lyr::HueCycle, Lyr::Gradient, Lyr::Constant}) {
        lyrSetValue(section(1), Lyr::Type, type);
        const LyrVector2<float> alpha[] = {{0.0f, 0.25f}, {1.0f, 0.75f}};
        LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrVector2<float>>>(section(1), Lyr::PointListAlpha)
            ->initArray(0, 1, alpha);
        for (const bool horizontal : {false, true}) {
            lyrSetValue(settings.get(), Lyr::Position, horizontal ? Lyr::Bottom : Lyr::Left);
            widget.resize(horizontal ? QSize(200, 60) : QSize(100, 200));
            const QImage image = picture();
            const int first = widget.realToWidget(-1.0f);
            const int last = widget.realToWidget(1.0f);
            const int length = std::abs(last - first) - 1;  // without the frame's lines
            const auto& shown = static_cast<const LyrColorLookupTable::Section&>(*section(1));
            const auto* below = static_cast<const LyrColorLookupTable::Section*>(section(0));
            const auto* above = static_cast<const LyrColorLookupTable::Section*>(section(2));
            for (int i = 0; i < length; ++i) {
                LyrRGBA<float> color(0.0f, 0.0f, 0.0f, 0.0f);
                shown.getColor({0.0f, static_cast<float>(length - 1)}, static_cast<float>(i), color, below, above);
                const auto byte = [](double c) { return std::clamp(static_cast<int>(c * 255.0), 0, 255); };
                const double a = static_cast<double>(color.alpha);
                const double channels[] = {double(color.red), double(color.green), double(color.blue)};
                // Labels on top: the bar's rows follow the label rectangle; column and row in the middle of each half.
                const int top = horizontal ? widget.getScaledPixelip(3) * 2 +
                                                 QFontMetrics(widget.getScaledFont()).boundingRect("-1").height() - 1
                                           : 0;
                const QRgb overWhite = horizontal ? image.pixel(first + 1 + i, top + 8) : image.pixel(3, first - 1 - i);
                const QRgb overBlack = horizontal ? image.pixel(first + 1 + i, top + 3) : image.pixel(8, first - 1 - i);
                const int white[] = {qRed(overWhite), qGreen(overWhite), qBlue(overWhite)};
                const int black[] = {qRed(overBlack), qGreen(overBlack), qBlue(overBlack)};
                for (int c = 0; c < 3; ++c) {
                    ASSERT_NEAR(white[c], byte(channels[c] * a + 1.0 - a), 1) << int(type) << " at " << i << horizontal;
                    ASSERT_NEAR(black[c], byte(channels[c] * a), 1) << int(type) << " at " << i << horizontal;
                }
            }
        }
    }
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

TEST(SectionImage, only_the_lines_inside_an_area_are_computed) {
    using lys::legend::Halves;
    using lys::legend::linesInside;
    const QRect area(0, 0, 60, 100);
    const auto vertical = linesInside(QRect(5, -900, 10, 1000), Halves::LeftOverWhite, area);
    EXPECT_EQ(vertical.first, 0) << "the lowest line is the first";
    EXPECT_EQ(vertical.last, 99);
    const auto above = linesInside(QRect(5, 40, 10, 1000000000), Halves::LeftOverWhite, area);
    EXPECT_EQ(above.first, 999999940);
    EXPECT_EQ(above.last, 999999999);
    const auto flat = linesInside(QRect(-1000, 5, 1500, 10), Halves::LowerOverWhite, area);
    EXPECT_EQ(flat.first, 1000);
    EXPECT_EQ(flat.last, 1059);
    const auto outside = linesInside(QRect(5, 200, 10, 1000), Halves::LeftOverWhite, area);
    EXPECT_LT(outside.last, outside.first);
}

TEST(SectionImage, a_picture_much_longer_than_what_it_is_drawn_on_looks_as_its_part) {
    const LyrObjectRefPtr object("LyrColorLookupTable::Section", Lyr::DocumentScope);
    lyrSetValue(object.get(), Lyr::Type, Lyr::Rainbow);
    const auto& section = static_cast<const LyrColorLookupTable::Section&>(*object.get());
    using lys::legend::Halves;
    for (const bool flat : {false, true}) {
        const Halves halves = flat ? Halves::LowerOverWhite : Halves::LeftOverWhite;
        const QSize size = flat ? QSize(400, 10) : QSize(10, 400);
        const QImage whole = lys::legend::sectionImage(size, halves, section, nullptr, nullptr);
        QImage part(50, 50, QImage::Format_RGB32);
        part.fill(Qt::magenta);
        QPainter painter(&part);
        // Moved there and back: what counts is what the device shows.
        painter.translate(-300, -300);
        const QPoint corner = flat ? QPoint(200, 300) : QPoint(300, 200);
        paintSection(painter, QRect(corner, size), halves, section, nullptr, nullptr);
        painter.end();
        const QPoint shift = flat ? QPoint(100, 0) : QPoint(0, 100);
        for (int i = 0; i < 50; ++i) {
            const QPoint at = flat ? QPoint(i, 3) : QPoint(3, i);
            ASSERT_EQ(part.pixel(at), whole.pixel(at + shift)) << i << flat;
        }
    }
    QImage small(10, 10, QImage::Format_RGB32);
    QPainter painter(&small);
    // With all its lines in memory it would take 16 GB.
    paintSection(painter, QRect(0, -5, 10, 1000000000), Halves::LeftOverWhite, section, nullptr, nullptr);
    painter.end();
    EXPECT_EQ(small.pixel(0, 5), qRgb(255, 0, 0)) << "the upper end of the rainbow";
}
