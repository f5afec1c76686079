#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LegendPicture.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqUnitConverter.h>

#include <QFontMetrics>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <algorithm>

namespace {

using lys::legend::fontFromString;
using lys::legend::paintText;
using lys::legend::Style;

constexpr QRgb GROUND = 0xff00ff00u;
constexpr QRgb TEXT = 0xffff0000u;
constexpr QRgb OUTLINE = 0xff0000ffu;
const QString LETTERS = QStringLiteral("0.125 Thgill [µm]");

class LegendPicture : private ToolkitApplication, public testing::Test {
protected:
    LegendPicture() {
        style.font = QFont(QStringLiteral("Arial"));
        style.font.setPixelSize(13);
        style.textColor = QColor(TEXT);
        style.outlineColor = QColor(OUTLINE);
    }

    QImage paint(QRgb ground = GROUND) const {
        QImage image(160, 40, QImage::Format_RGB32);
        image.fill(ground);
        QPainter painter(&image);
        paintText(painter, QPoint(10, 25), LETTERS, style);
        return image;
    }

    Style style;
};

bool isAt(const QImage& image, int x, int y, QRgb color) {
    return image.valid(x, y) && image.pixel(x, y) == color;
}

}  // namespace

TEST_F(LegendPicture, an_outline_is_eight_strokes_of_which_the_upper_one_is_missing) {
    style.font.setStyleStrategy(QFont::NoAntialias);
    style.outlined = false;
    const QImage plain = paint();
    style.outlined = true;
    const QImage outlined = paint();
    constexpr int STROKES[][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}, {-1, 0}, {1, 0}, {0, 1}};
    int text = 0;
    int uncovered = 0;
    for (int y = 0; y < plain.height(); ++y) {
        for (int x = 0; x < plain.width(); ++x) {
            bool stroke = false;
            for (const auto& by : STROKES) {
                stroke = stroke || isAt(plain, x - by[0], y - by[1], TEXT);
            }
            const QRgb expected = isAt(plain, x, y, TEXT) ? TEXT : stroke ? OUTLINE : GROUND;
            ASSERT_EQ(outlined.pixel(x, y), expected) << x << "," << y;
            text += expected == TEXT;
            uncovered += expected == GROUND && isAt(plain, x, y + 1, TEXT);
        }
    }
    EXPECT_GT(text, 100);
    EXPECT_GT(uncovered, 0);
}

TEST_F(LegendPicture, on_the_key_colour_nothing_blends_with_the_background) {
    style.keyed = true;
    style.textColor = Qt::white;
    style.outlineColor = Qt::black;
    for (const int pixels : {9, 13, 20, 27}) {
        for (const bool outlined : {true, false}) {
            style.font.setPixelSize(pixels);
            style.outlined = outlined;
            const QImage image = paint(lys::legend::KEY_COLOR);
            int text = 0;
            int between = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const QRgb pixel = image.pixel(x, y);
                    const bool gray = qRed(pixel) == qGreen(pixel) && qGreen(pixel) == qBlue(pixel);
                    ASSERT_TRUE(pixel == lys::legend::KEY_COLOR || gray) << std::hex << pixel;
                    text += gray && qRed(pixel) > 127;
                    between += gray && pixel != 0xffffffffu && pixel != 0xff000000u;
                }
            }
            EXPECT_GT(text, 50);
            EXPECT_EQ(between > 0, outlined) << "smoothed over its outline only";
        }
    }
}

TEST_F(LegendPicture, a_text_is_never_smoothed_by_subpixels) {
    style.textColor = Qt::black;
    style.outlined = false;
    const QImage image = paint(0xffffffffu);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            ASSERT_TRUE(qRed(pixel) == qGreen(pixel) && qGreen(pixel) == qBlue(pixel));
        }
    }
}

TEST_F(LegendPicture, painting_a_text_leaves_the_painter_as_it_was) {
    QImage image(100, 40, QImage::Format_RGB32);
    for (const bool keyed : {false, true}) {
        style.keyed = keyed;
        style.outlined = false;
        QPainter painter(&image);
        painter.setFont(QFont(QStringLiteral("Arial"), 30));
        painter.setPen(Qt::yellow);
        const QFont font = painter.font();
        paintText(painter, QPoint(0, 20), LETTERS, style);
        EXPECT_EQ(painter.font(), font);
        EXPECT_EQ(painter.pen().color(), QColor(Qt::yellow));
    }
}

TEST_F(LegendPicture, a_text_in_a_rectangle_keeps_its_lines_and_alignment) {
    style.font.setPixelSize(12);
    style.outlined = true;
    QImage image(120, 80, QImage::Format_RGB32);
    image.fill(GROUND);
    QPainter painter(&image);
    painter.setFont(style.font);
    paintText(painter, QRect(0, 0, 120, 80), Qt::AlignRight | Qt::AlignBottom, QStringLiteral("H\nHHH"), style);
    painter.end();
    QRect inked;
    int firstLine = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != GROUND) {
                inked |= QRect(x, y, 1, 1);
                firstLine = std::max(firstLine, y < 80 - QFontMetrics(style.font).lineSpacing() ? 120 - x : 0);
            }
        }
    }
    EXPECT_GT(inked.height(), QFontMetrics(style.font).lineSpacing()) << "two lines";
    EXPECT_GT(inked.top(), 40);
    EXPECT_GT(inked.left(), 60);
    EXPECT_GT(firstLine, 0);
    EXPECT_LT(firstLine, 20) << "one letter stands above three";
}

TEST_F(LegendPicture, fonts_are_read_in_both_forms_of_the_toolkit) {
    bool valid = false;
    const QFont old = fontFromString(QStringLiteral("Arial,10,-1,5,50,0,0,0,0,0"), &valid);
    EXPECT_TRUE(valid);
    EXPECT_EQ(old.family(), QStringLiteral("Arial"));
    EXPECT_EQ(old.pointSize(), 10);
    EXPECT_EQ(old.weight(), int(QFont::Normal));
    EXPECT_EQ(fontFromString(QStringLiteral("Arial,10,-1,5,75,1,1,0,0,0")).weight(), int(QFont::Bold));
    QFont now(QStringLiteral("Courier"), 14, QFont::Bold, true);
    now.setStrikeOut(true);
    const QFont back = fontFromString(now.toString(), &valid);
    EXPECT_TRUE(valid);
    EXPECT_EQ(back.toString(), now.toString());
    for (const QString& withPixels :
         {QStringLiteral("Arial,-1,22,5,50,0,0,0,0,0"), QStringLiteral("Arial,10,22,5,50,0,0,0,0,0")}) {
        EXPECT_EQ(fontFromString(withPixels, &valid).pixelSize(), 22);
        EXPECT_TRUE(valid);
    }
}

TEST_F(LegendPicture, fonts_are_read_with_every_style_strategy_that_the_toolkit_writes) {
    for (const QFont::StyleStrategy strategy : {QFont::PreferDefault, QFont::NoAntialias, QFont::PreferNoShaping,
                                                QFont::ForceOutline, QFont::NoFontMerging}) {
        QFont font(QStringLiteral("Arial"), 10);
        font.setStyleStrategy(strategy);
        bool valid = false;
        EXPECT_EQ(fontFromString(font.toString(), &valid), font);
        EXPECT_TRUE(valid) << font.toString().toStdString();
    }
}

TEST_F(LegendPicture, a_font_of_a_size_with_many_digits_is_the_same_after_writing_it) {
    bool valid = false;
    const QFont font = fontFromString(QStringLiteral("Arial,9.1234567,-1,5,400,0,0,0,0,0,0,0,0,0,0,1"), &valid);
    EXPECT_TRUE(valid);
    EXPECT_EQ(font.pointSizeF(), 9.12346);
    EXPECT_EQ(fontFromString(font.toString(), &valid), font);
    EXPECT_EQ(fontFromString(QStringLiteral("Arial,10.5,-1,5,50,0,0,0,0,0")).pointSizeF(), 10.5);
}

TEST_F(LegendPicture, what_is_no_font_gives_the_applications) {
    const QString numbers = QStringLiteral(",5,400,0,0,0,0,0,0,0,%1,%2,0,0");
    for (const QString& junk :
         {QString(), QStringLiteral("Default"), QStringLiteral("junk"), QStringLiteral("Arial,x"),
          QStringLiteral("Arial,0,-1,5,50,0,0,0,0,0"), QStringLiteral("Arial,-1,-1,5,50,0,0,0,0,0"),
          QStringLiteral("Arial,1e9,-1,5,50,0,0,0,0,0"), QStringLiteral("Arial,nan,-1,5,50,0,0,0,0,0"),
          QStringLiteral("Arial,10,4001,5,50,0,0,0,0,0"), QStringLiteral("Arial,1e9,22,5,50,0,0,0,0,0"),
          QStringLiteral(",10,-1,5,50,0,0,0,0,0"), QStringLiteral("Arial,10,-1,5,bold,0,0,0,0,0"),
          QStringLiteral("Arial,10,-1") + numbers.arg(QStringLiteral("inf"), QStringLiteral("0")),
          QStringLiteral("Arial,10,-1") + numbers.arg(QStringLiteral("0"), QStringLiteral("1e300"))}) {
        bool valid = true;
        EXPECT_EQ(fontFromString(junk, &valid), QGuiApplication::font()) << junk.toStdString();
        EXPECT_FALSE(valid) << junk.toStdString();
    }
}

TEST_F(LegendPicture, every_abbreviation_place_in_the_caption_is_filled_and_nothing_else) {
    const LyrObjectRefPtr table("LyrColorLookupTable", Lyr::DocumentScope);
    const LyrObjectRefPtr settings("LyrColorLookupTableRenderSettings", Lyr::DocumentScope);
    LyqUnitConverter converter(Lyr::Length);
    const auto caption = [&](const char* text) {
        lyrSetValue<const char*>(settings.get(), Lyrenum("DescriptionTemplate", true), text);
        return lys::legend::captionText(table.get(), settings.get(), converter);
    };
    EXPECT_EQ(caption("%l/%l %1 %% %L %%l"), QStringLiteral("mm/mm %1 %% %L %mm"));
    lyrSetValue(table.get(), Lyr::Quantity, Lyr::Percent);
    EXPECT_EQ(caption("%l of %2"), QStringLiteral("% of %2"));
    EXPECT_EQ(lys::legend::captionText(table.get(), nullptr, converter), QString());
}

TEST_F(LegendPicture, without_settings_there_are_the_fallbacks) {
    const LyrObjectRefPtr table("LyrColorLookupTable", Lyr::DocumentScope);
    LyqUnitConverter converter(Lyr::Length);
    const auto reading = lys::legend::read(table.get(), nullptr, converter, QSize(100, 200), 96.0f);
    EXPECT_EQ(reading.input.thickness, 24);
    EXPECT_FALSE(reading.input.horizontal);
    EXPECT_TRUE(reading.input.textRight);
    EXPECT_TRUE(reading.input.alignRight);
    EXPECT_EQ(reading.input.caption, QString());
    EXPECT_TRUE(reading.style.outlined);
    EXPECT_EQ(reading.style.textColor, QColor(Qt::black));
    EXPECT_EQ(reading.style.outlineColor, QColor(Qt::white));
    EXPECT_EQ(reading.style.font.family(), QGuiApplication::font().family());
}
