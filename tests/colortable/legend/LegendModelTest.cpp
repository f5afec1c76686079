#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LegendPicture.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqUnitConverter.h>

#include <QFontMetrics>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <algorithm>
#include <cmath>
#include <random>

// Layouts worked out a second time, in whole numbers and with the edges of rectangles instead of their sizes.

namespace {

using lys::legend::Label;
using lys::legend::Layout;

/** First and last column and row. */
struct Edges {
    int left = 0;
    int top = 0;
    int right = -1;
    int bottom = -1;

    int width() const { return right - left + 1; }
    int height() const { return bottom - top + 1; }
    void shift(int dx, int dy) {
        left += dx;
        right += dx;
        top += dy;
        bottom += dy;
    }
    QRect rect() const { return QRect(left, top, width(), height()); }
};

struct Case {
    int width = 0;
    int height = 0;
    int dpi = 96;
    Lyrenum position;
    Lyrenum textPosition;
    Lyrenum textAlignment;
    int thickness = 12;
    std::string caption;
    std::vector<float> positions;
    bool autoLabel = true;
    bool finiteBelow = false;
    bool finiteAbove = false;
};

class Model {
public:
    explicit Model(const Case& given) : mGiven(given), mMetrics(makeFont(given.dpi)) {
        mCaption = QString::fromStdString(given.caption).replace(QStringLiteral("%l"), QStringLiteral("mm"));
        horizontal = given.position == Lyr::Top || given.position == Lyr::Bottom;
        thickness = scaled(given.thickness);
        if (!mCaption.isEmpty()) {
            caption = {0, 0, size(mCaption).width() - 1, size(mCaption).height() - 1 + scaled(3)};
        }
        horizontal ? layOutHorizontal() : layOutVertical();
    }

    bool horizontal = false;
    int thickness = 0;
    int widest = 0;
    int tallest = 0;
    int extension = 0;
    Edges caption;
    Edges bar;
    Edges labelArea;
    QSize hint;
    QSize minimum;

    /** n pixels of 1/96 inch, halves up. */
    int scaled(int n) const { return n < 1 ? 0 : std::max(1, (2 * n * mGiven.dpi + 96) / 192); }

    std::vector<float> values(int available, int label) const {
        const std::vector<float>& all = mGiven.positions;
        if (!mGiven.autoLabel) {
            return all;
        }
        int intervals = std::min(std::max(available, 1) / (scaled(10) + label), 10);
        if (intervals < 1) {
            intervals = 1;
        } else if (intervals > 5 && intervals != 10) {
            intervals = 5;
        }
        const float range = all.back() - all.front();
        const float step = range / static_cast<float>(intervals);
        std::vector<float> result;
        float running = all.front();
        while (static_cast<int>(result.size()) < intervals + 1) {
            result.push_back(std::fabs(running) < range / 1000.0f ? 0.0f : running);
            running = running + step;
        }
        return result;
    }
    std::vector<float> values() const {
        return horizontal ? values(labelArea.width(), widest) : values(mGiven.height - caption.height(), tallest);
    }

    int coordinate(float value) const {
        const int length = (horizontal ? bar.width() : bar.height()) - 2 * extension;
        if (length < 1) {
            return 0;
        }
        const float low = mGiven.positions.front();
        const float along = (value - low) * static_cast<float>(length) / (mGiven.positions.back() - low);
        return static_cast<int>(horizontal ? static_cast<float>(bar.left + extension) + along
                                           : static_cast<float>(bar.top + length - 1 + extension) - along);
    }

    std::vector<Label> labels() const {
        std::vector<Label> result;
        for (const float value : values()) {
            const QString text = textOf(value);
            const int at = coordinate(value);
            if (horizontal) {
                result.push_back({value, text, at - size(text).width() / 2, labelArea.bottom - scaled(3), true});
            } else {
                const int space = mGiven.textAlignment == Lyr::Right ? widest - size(text).width() : 0;
                result.push_back({value, text, labelArea.left + space, at + size(text).height() / 2, true});
            }
        }
        horizontal ? leaveOutFromLeft(result) : leaveOutFromTop(result);
        return result;
    }

private:
    static QFont makeFont(int dpi) {
        QFont font(QStringLiteral("Arial"));
        font.setPixelSize((20 * dpi + 72) / 144);
        font.setStyleHint(QFont::AnyStyle);
        return font;
    }
    static QString textOf(float value) { return QString::number(static_cast<double>(value), 'g', 6); }
    QSize size(const QString& text) const { return mMetrics.boundingRect(text).size(); }

    void layOutVertical() {
        const int room = mGiven.height - caption.height();
        for (const float value : values(room, 0)) {
            widest = std::max(widest, size(textOf(value)).width());
            tallest = std::max(tallest, size(textOf(value)).height());
        }
        for (const float value : values(room, tallest)) {
            widest = std::max(widest, size(textOf(value)).width());
        }
        extension = std::max(scaled(12), tallest / 2 + 1);
        const int wide = std::max(thickness + widest * 105 / 100 + scaled(3), scaled(3) + caption.width());
        hint = {wide, 128};
        minimum = {wide, scaled(3) + 2 * extension};
        bar = {0, caption.bottom + scaled(6), mGiven.width - 1, mGiven.height - 1};
        labelArea = bar;
        if (mGiven.textPosition == Lyr::Right) {
            bar.right = thickness;
            labelArea.left = thickness + scaled(3);
        } else {
            bar.left = scaled(3) + widest;
            labelArea.right = widest;
            const int by = std::max(bar.width() - thickness, 0);
            bar.shift(by, 0);
            labelArea.shift(by, 0);
        }
    }

    void layOutHorizontal() {
        for (const float value : {mGiven.positions.front(), mGiven.positions.back()}) {
            widest = std::max(widest, size(textOf(value)).width());
            tallest = std::max(tallest, size(textOf(value)).height());
        }
        extension = scaled(12);
        hint = {scaled(3) + std::max(caption.width(), widest), scaled(9) + caption.height() + tallest + thickness};
        minimum = hint;
        labelArea = {0, 0, mGiven.width - 1, scaled(3) + tallest - 1};
        bar = {0, 0, std::max(mGiven.width - widest, 0) - 1, thickness + 2 - 1};
        bar.shift(std::max((mGiven.width - bar.width()) / 2, 0), 0);
        caption.shift(std::max((mGiven.width - caption.width()) / 2, 0), 0);
        if (mGiven.textPosition == Lyr::Right || mGiven.textPosition == Lyr::Top) {
            bar.shift(0, labelArea.bottom + scaled(3));
            caption.shift(0, bar.bottom + scaled(3));
        } else {
            bar.shift(0, caption.bottom + scaled(3));
            labelArea.shift(0, bar.bottom + scaled(3));
        }
    }

    void leaveOutFromLeft(std::vector<Label>& labels) const {
        int used = labels.front().x + size(labels.front().text).width() - 1;
        for (std::size_t i = 1; i + 1 < labels.size(); ++i) {
            labels[i].drawn = labels[i].x > used;
            used = labels[i].drawn ? labels[i].x + size(labels[i].text).width() - 1 : used;
        }
    }
    void leaveOutFromTop(std::vector<Label>& labels) const {
        int used = labels.back().baseline;
        for (std::size_t i = labels.size() - 1; i-- > 1;) {
            labels[i].drawn = labels[i].baseline + mMetrics.boundingRect(labels[i].text).top() > used;
            used = labels[i].drawn ? labels[i].baseline : used;
        }
    }

    Case mGiven;
    QFontMetrics mMetrics;
    QString mCaption;
};

class LegendModel : private ToolkitApplication, public testing::TestWithParam<int> {
protected:
    template <class T>
    T one(std::initializer_list<T> of) {
        return *(of.begin() + random() % of.size());
    }

    Case makeCase() {
        Case made;
        std::uniform_int_distribution<int> side(1, 600);
        made.width = side(random);
        made.height = side(random);
        made.dpi = GetParam();
        made.position = one({Lyr::Left, Lyr::Right, Lyr::Top, Lyr::Bottom});
        made.textPosition = one({Lyr::Left, Lyr::Right, Lyr::Top, Lyr::Bottom});
        made.textAlignment = one({Lyr::Left, Lyr::Right});
        made.thickness = std::uniform_int_distribution<int>(0, 60)(random);
        made.caption =
            one<std::string>({"", "Deviation [%l]", "gq", "A caption that is longer than most legends are wide %1"});
        const float scale = one({1e-6f, 0.01f, 1.0f, 300.0f, 1e9f});
        std::uniform_real_distribution<float> number(-scale, scale);
        for (std::size_t count = 2 + random() % 7; made.positions.size() < count;) {
            made.positions.push_back(number(random));
        }
        std::sort(made.positions.begin(), made.positions.end());
        made.autoLabel = random() % 3 != 0;
        made.finiteBelow = random() % 2;
        made.finiteAbove = random() % 2;
        return made;
    }

    void give(const Case& given) {
        LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>>(table.get(), Lyr::PositionList)
            ->initArray(0, static_cast<long long>(given.positions.size()) - 1, given.positions.data());
        lyrSetValue<Lyrenum>(table.get(), Lyr::AutoLabel, given.autoLabel);
        lyrSetValue(table.get(), Lyr::FiniteMode, LyrValuePair<Lyrenum>{given.finiteBelow, given.finiteAbove});
        lyrSetValue(settings.get(), Lyr::Position, given.position);
        lyrSetValue(settings.get(), Lyr::TextPosition, given.textPosition);
        lyrSetValue(settings.get(), Lyr::TextAlignment, given.textAlignment);
        lyrSetValue<long long>(settings.get(), Lyr::Thickness, given.thickness);
        lyrSetValue<const char*>(settings.get(), Lyrenum("DescriptionTemplate", true), given.caption.c_str());
    }

    void compareBoxes(const Case& given, const Model& model, const lys::legend::Input& input, const Layout& layout) {
        const int box = model.scaled(12);
        const int across = model.thickness;
        const Edges& bar = model.bar;
        const int first = model.coordinate(given.positions.front());
        const int last = model.coordinate(given.positions.back());
        const auto lower = lowerExtensionBox(input, layout);
        const auto upper = upperExtensionBox(input, layout);
        ASSERT_EQ(lower.has_value(), !given.finiteBelow);
        ASSERT_EQ(upper.has_value(), !given.finiteAbove);
        if (lower) {
            EXPECT_EQ(*lower, model.horizontal ? QRect(bar.left, bar.top, box, across)
                                               : QRect(bar.left, first, across, box + 1));
        }
        if (upper) {
            EXPECT_EQ(*upper, model.horizontal ? QRect(bar.right - box, bar.top, box, across)
                                               : QRect(bar.left, last - box, across, box + 1));
        }
        const auto inner = innerBoxes(input, layout);
        ASSERT_EQ(inner.size(), given.positions.size() - 1);
        for (std::size_t i = 0; i < inner.size(); ++i) {
            const int from = model.coordinate(given.positions[i]);
            const int to = model.coordinate(given.positions[i + 1]);
            EXPECT_EQ(inner[i].section, static_cast<int>(i) + 1);
            EXPECT_EQ(inner[i].rect, model.horizontal ? QRect(from, bar.top, to - from + 1, across)
                                                      : QRect(bar.left, to, across, from - to + 1));
        }
    }

    std::mt19937 random{static_cast<unsigned>(GetParam())};
    LyrObjectRefPtr table{"LyrColorLookupTable", Lyr::DocumentScope};
    LyrObjectRefPtr settings{"LyrColorLookupTableRenderSettings", Lyr::DocumentScope};
};

}  // namespace

TEST_P(LegendModel, gives_the_same_rectangles_hints_boxes_and_labels) {
    LyqUnitConverter converter(Lyr::Length);
    for (int round = 0; round < 500; ++round) {
        SCOPED_TRACE(round);
        const Case given = makeCase();
        give(given);
        const Model model(given);
        const auto reading = lys::legend::read(table.get(), settings.get(), converter, QSize(given.width, given.height),
                                               static_cast<float>(given.dpi));
        const auto measure = lys::legend::measureOf(reading.style, table.get(), converter);
        const Layout layout = lys::legend::layOut(reading.input, measure);
        EXPECT_EQ(layout.caption, model.caption.rect());
        EXPECT_EQ(layout.bar, model.bar.rect());
        EXPECT_EQ(layout.labels, model.labelArea.rect());
        EXPECT_EQ(layout.sizeHint, model.hint);
        EXPECT_EQ(layout.minimumSizeHint, model.minimum);
        EXPECT_EQ(layout.extensionLength, model.extension);
        EXPECT_EQ(layout.thickness, model.thickness);
        compareBoxes(given, model, reading.input, layout);
        const auto expected = model.labels();
        const auto labels = lys::legend::placeLabels(reading.input, layout, measure);
        ASSERT_EQ(labels.size(), expected.size());
        for (std::size_t i = 0; i < labels.size(); ++i) {
            EXPECT_EQ(labels[i].value, expected[i].value);
            EXPECT_EQ(labels[i].text, expected[i].text);
            EXPECT_EQ(labels[i].x, expected[i].x);
            EXPECT_EQ(labels[i].baseline, expected[i].baseline);
            EXPECT_EQ(labels[i].drawn, expected[i].drawn) << i;
        }
        if (HasFailure()) {
            break;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Resolutions, LegendModel, testing::Values(72, 96, 144, 192));
