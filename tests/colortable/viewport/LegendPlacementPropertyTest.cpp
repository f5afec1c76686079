#include <colortable/viewport/LegendPlacement.h>
#include <lyr_core/LyrHostIdentifiers.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>

// What holds for every place of a legend: in its view where it fits, at its side and end where it does not.

using namespace lys::viewport;

namespace {

struct Placed {
    Viewport view;
    float dotsPerInch = 96.0f;
    Wish wish;
    double margin = 10.0;
    QRect rect;

    bool isHorizontal() const { return wish.position == Lyr::Top || wish.position == Lyr::Bottom; }
    double freeWidth() const { return static_cast<double>(view.width) - 2 * margin; }
    double freeHeight() const { return static_cast<double>(view.height) - 2 * margin; }
    /** What the legend takes at least: 2 pixels along the bar, what it asks for across. */
    bool fits() const {
        const QSize across = isHorizontal() ? QSize(2, wish.hint.height()) : QSize(wish.hint.width(), 2);
        const QSize least = across.expandedTo(wish.minimumHint);
        return freeWidth() >= least.width() && freeHeight() >= least.height();
    }
};

Lyrenum anySide() {
    const Lyrenum sides[] = {Lyr::Left, Lyr::Right, Lyr::Top, Lyr::Bottom, Lyr::Center};
    return sides[*rc::gen::inRange<std::size_t>(0, std::size(sides))];
}

Placed anyPlace() {
    Placed placed;
    const int largest = *rc::gen::element(2, 40, 400, 4000);
    placed.view = {static_cast<float>(*rc::gen::inRange(0, 4000)) / 8.0f,
                   static_cast<float>(*rc::gen::inRange(0, 4000)) / 8.0f,
                   static_cast<float>(*rc::gen::inRange(1, largest * 8)) / 8.0f,
                   static_cast<float>(*rc::gen::inRange(1, largest * 8)) / 8.0f};
    placed.dotsPerInch = static_cast<float>(*rc::gen::inRange(20, 400));
    placed.margin = 10.0 * static_cast<double>(placed.dotsPerInch) / 96.0;
    const QSize minimum(*rc::gen::inRange(1, 80), *rc::gen::inRange(1, 80));
    placed.wish = {anySide(), anySide(), static_cast<float>(*rc::gen::inRange(-10, 130)) / 100.0f,
                   QSize(minimum.width() + *rc::gen::inRange(0, 100), minimum.height() + *rc::gen::inRange(0, 100)),
                   minimum};
    const Place place = placeLegend(placed.view, placed.dotsPerInch, placed.wish);
    placed.rect = QRect(place.position, place.size);
    return placed;
}

/** Sums in single precision of numbers up to 5000. */
constexpr double ROUNDING = 0.002;

}  // namespace

RC_GTEST_PROP(LegendPlacementProperty, a_legend_is_never_smaller_than_it_can_be, ()) {
    const Placed placed = anyPlace();
    RC_ASSERT(placed.rect.width() >= placed.wish.minimumHint.width());
    RC_ASSERT(placed.rect.height() >= placed.wish.minimumHint.height());
    const bool isAsThick = placed.isHorizontal() ? placed.rect.height() == placed.wish.hint.height()
                                                 : placed.rect.width() == placed.wish.hint.width();
    RC_ASSERT(isAsThick);
}

RC_GTEST_PROP(LegendPlacementProperty, a_legend_that_fits_stands_inside_of_the_margins, ()) {
    const Placed placed = anyPlace();
    if (!placed.fits()) {
        return;
    }
    const Viewport& view = placed.view;
    // Positions are truncated, so up to a pixel of the margin may be used at the left and on top.
    RC_ASSERT(placed.rect.left() > static_cast<double>(view.x) + placed.margin - 1 - ROUNDING);
    RC_ASSERT(placed.rect.top() > static_cast<double>(view.y) + placed.margin - 1 - ROUNDING);
    // A legend that its minimum enlarged grows away from where it was placed, perhaps over the margin.
    const double share = static_cast<double>(std::clamp(placed.wish.size, 0.01f, 1.0f));
    const double along = share * (placed.isHorizontal() ? placed.freeWidth() : placed.freeHeight());
    const int least = placed.isHorizontal() ? placed.wish.minimumHint.width() : placed.wish.minimumHint.height();
    if (along >= least + 1) {
        RC_ASSERT(placed.rect.left() + placed.rect.width() <=
                  static_cast<double>(view.x + view.width) - placed.margin + ROUNDING);
        RC_ASSERT(placed.rect.top() + placed.rect.height() <=
                  static_cast<double>(view.y + view.height) - placed.margin + ROUNDING);
    }
}

RC_GTEST_PROP(LegendPlacementProperty, a_legend_stands_at_its_side, ()) {
    const Placed placed = anyPlace();
    if (!placed.fits()) {
        return;
    }
    const Viewport& view = placed.view;
    const auto isNear = [](double a, double b) { return std::abs(a - b) <= 1 + ROUNDING; };
    const double right = static_cast<double>(view.x + view.width) - placed.margin;
    const double bottom = static_cast<double>(view.y + view.height) - placed.margin;
    const double left = static_cast<double>(view.x) + placed.margin;
    const double top = static_cast<double>(view.y) + placed.margin;
    if (placed.wish.position == Lyr::Bottom) {
        RC_ASSERT(isNear(placed.rect.top() + placed.wish.hint.height(), bottom));
    } else if (placed.wish.position == Lyr::Top) {
        RC_ASSERT(isNear(placed.rect.top(), top));
    } else if (placed.wish.position == Lyr::Right) {
        RC_ASSERT(isNear(placed.rect.left() + placed.wish.hint.width(), right));
    } else {
        RC_ASSERT(isNear(placed.rect.left(), left));
    }
}

RC_GTEST_PROP(LegendPlacementProperty, a_frame_in_the_view_is_drawn_inside_of_the_device, ()) {
    const int width = *rc::gen::inRange(1, 4000);
    const int height = *rc::gen::inRange(1, 4000);
    const Viewport view{static_cast<float>(*rc::gen::inRange(-500, 500)),
                        static_cast<float>(*rc::gen::inRange(-500, 500)), static_cast<float>(width),
                        static_cast<float>(height)};
    const int left = *rc::gen::inRange(0, width);
    const int top = *rc::gen::inRange(0, height);
    const QRect frame(static_cast<int>(view.x) + left, static_cast<int>(view.y) + top,
                      *rc::gen::inRange(1, width - left + 1), *rc::gen::inRange(1, height - top + 1));
    const auto corners = quadCorners(frame, view);
    for (const LyrVector3<float>& corner : corners) {
        RC_ASSERT(std::abs(corner.x) <= 1.00001f);
        RC_ASSERT(std::abs(corner.y) <= 1.00001f);
    }
    // Lower left, lower right, upper right, upper left; as wide and tall as the frame.
    RC_ASSERT(std::abs(double(corners[1].x - corners[0].x) - 2.0 * frame.width() / width) < 1e-5);
    RC_ASSERT(std::abs(double(corners[3].y - corners[0].y) - 2.0 * frame.height() / height) < 1e-5);
    RC_ASSERT(corners[2].x == corners[1].x);
    RC_ASSERT(corners[2].y == corners[3].y);
}

RC_GTEST_PROP(LegendPlacementProperty, a_texture_is_the_smallest_that_holds_a_length, ()) {
    const int length = *rc::gen::inRange(1, 1 << 30);
    const int texture = textureLength(length);
    RC_ASSERT(texture >= length);
    RC_ASSERT((texture & (texture - 1)) == 0);
    RC_ASSERT(texture / 2 < length);
}
