#include "LegendView.h"

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace legends;

namespace {

class DriverPlacement : private ToolkitApplication, public testing::Test {
protected:
    DriverPlacement() { view.shown = {legend.entry()}; }

    void set(Lyrenum position, Lyrenum alignment, float size) {
        lyrSetValue(legend.settings.get(), Lyr::Position, position);
        lyrSetValue(legend.settings.get(), Lyr::Alignment, alignment);
        lyrSetValue(legend.settings.get(), Lyr::Size, size);
    }

    LegendView view;
    Legend legend;
};

/** A view and its resolution. */
struct Screen {
    float x, y, width, height, dotsPerInch;
};

/** Where a legend with these hints belongs, in plain steps. */
QRect expected(const Screen& screen, Lyrenum position, Lyrenum alignment, float size, QSize hint, QSize smallest) {
    const float margin = static_cast<float>(10.0 * static_cast<double>(screen.dotsPerInch) / 96.0);
    const float left = screen.x + margin;
    const float top = screen.y + margin;
    const float right = screen.x + screen.width - margin;
    const float bottom = screen.y + screen.height - margin;
    const float share = std::min(1.0f, std::max(0.01f, size));
    double x = 0;
    double y = 0;
    if (position == Lyr::Bottom || position == Lyr::Top) {
        hint.setWidth(std::max(2, static_cast<int>(share * (right - left))));
        y = position == Lyr::Bottom ? bottom - static_cast<float>(hint.height()) : top;
        if (alignment == Lyr::Top || alignment == Lyr::Right) {
            x = right - static_cast<float>(hint.width());
        } else if (alignment == Lyr::Bottom || alignment == Lyr::Left) {
            x = left;
        } else {
            x = (static_cast<double>(left) + static_cast<double>(right)) / 2 - hint.width() / 2.0;
        }
    } else {
        hint.setHeight(std::max(2, static_cast<int>(share * (bottom - top))));
        x = position == Lyr::Right ? right - static_cast<float>(hint.width()) : left;
        if (alignment == Lyr::Top) {
            y = top;
        } else if (alignment == Lyr::Bottom) {
            y = bottom - static_cast<float>(hint.height());
        } else {
            y = (static_cast<double>(top) + static_cast<double>(bottom)) / 2 - hint.height() / 2.0;
        }
    }
    return {QPoint(static_cast<int>(std::trunc(x)), static_cast<int>(std::trunc(y))),
            QSize(std::max(hint.width(), smallest.width()), std::max(hint.height(), smallest.height()))};
}

}  // namespace

TEST_F(DriverPlacement, is_exact_to_the_pixel_wherever_the_legend_stands) {
    const Screen screens[] = {{0, 0, 800, 600, 96},  {0, 0, 801, 601, 101}, {13, 7, 640, 479, 110},
                              {0, 0, 300, 200, 192}, {-5, -9, 250, 90, 72}, {0, 0, 24, 23, 96},
                              {0, 0, 1, 1, 96},      {0, 0, 0, 0, 128},     {0, 0, 3840, 2160, 163}};
    int placed = 0;
    for (const Screen& screen : screens) {
        view.cameraNode->transform().setViewport({screen.x, screen.y}, {screen.width, screen.height});
        lyrSetValue(view.camera(), Lyr::DotsPerInch, LyrVector2<float>{screen.dotsPerInch, 1.0f});
        for (const Lyrenum position : {Lyr::Left, Lyr::Right, Lyr::Top, Lyr::Bottom, Lyr::Center}) {
            for (const Lyrenum alignment : {Lyr::Left, Lyr::Right, Lyr::Top, Lyr::Bottom, Lyr::Center}) {
                for (const float size : {-1.0f, 0.0f, 0.01f, 0.33f, 0.7f, 1.0f, 3.0f}) {
                    set(position, alignment, size);
                    view.settle();
                    const LyqColorLookupTableAnnotation& annotation = legend.annotation();
                    ASSERT_EQ(annotation.frameGeometry(), expected(screen, position, alignment, size,
                                                                   annotation.sizeHint(), annotation.minimumSizeHint()))
                        << int(position) << ' ' << int(alignment) << ' ' << size << ' ' << screen.width;
                    ++placed;
                }
            }
        }
    }
    EXPECT_EQ(placed, 9 * 25 * 7);
}

TEST_F(DriverPlacement, takes_a_size_that_is_no_number_for_a_missing_one) {
    set(Lyr::Left, Lyr::Top, std::numeric_limits<float>::quiet_NaN());
    view.settle();
    EXPECT_EQ(legend.annotation().frameGeometry().height(), 406);
    for (const auto& [size, height] : {std::pair(std::numeric_limits<float>::infinity(), 580),
                                       std::pair(-std::numeric_limits<float>::infinity(), 5)}) {
        set(Lyr::Left, Lyr::Top, size);
        view.settle();
        EXPECT_EQ(legend.annotation().frameGeometry().height(),
                  std::max(height, legend.annotation().minimumSizeHint().height()));
    }
}

TEST_F(DriverPlacement, falls_back_to_the_left_centre_and_seven_tenths_without_settings) {
    lyrSetValue(legend.held.get(), Lyr::ColorLookupTableRenderSettings, LyrObjectLink());
    view.settle();
    const QRect frame = legend.annotation().frameGeometry();
    EXPECT_EQ(frame.topLeft(), QPoint(10, 97));
    EXPECT_EQ(frame.height(), 406);
}

TEST_F(DriverPlacement, takes_a_resolution_that_is_no_number_for_the_default) {
    set(Lyr::Left, Lyr::Top, 0.5f);
    for (const float dotsPerInch : {0.0f, -96.0f, std::numeric_limits<float>::quiet_NaN()}) {
        lyrSetValue(view.camera(), Lyr::DotsPerInch, LyrVector2<float>{dotsPerInch, 96.0f});
        view.settle();
        EXPECT_EQ(legend.annotation().frameGeometry().topLeft(), QPoint(10, 10)) << dotsPerInch;
    }
}
