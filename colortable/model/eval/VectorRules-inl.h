// Third stage: the analytic rules. Lanes whose place is NaN belong to other rules and get no colour. Included once for each
// instruction set.
#if defined(LYS_EVAL_VECTOR_RULES_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef LYS_EVAL_VECTOR_RULES_INL
#undef LYS_EVAL_VECTOR_RULES_INL
#else
#define LYS_EVAL_VECTOR_RULES_INL
#endif

#include <colortable/model/eval/SineSeries_p.h>
#include <colortable/model/eval/VectorBase-inl.h>

#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_SSE4
HWY_BEFORE_NAMESPACE();
namespace lys::eval {
namespace HWY_NAMESPACE {

struct Rgb {
    FloatVector red;
    FloatVector green;
    FloatVector blue;
};

using HalfTag = hn::Half<FloatTag>;
using DoubleTag = hn::Rebind<double, HalfTag>;

/// Sine of 0 <= x < 2 pi, right for x <= pi and not positive beyond. Fused steps are allowed here, see sineSeries.
template <class V>
HWY_INLINE V sineSum(V argument) {
    const DoubleTag d;
    const V x = hn::Min(argument, hn::Sub(hn::Set(d, piInDouble), argument));
    const V square = hn::Mul(x, x);
    V sum = hn::MulAdd(hn::Set(d, sineSeries[6]), square, hn::Set(d, sineSeries[5]));
    sum = hn::MulAdd(sum, square, hn::Set(d, sineSeries[4]));
    sum = hn::MulAdd(sum, square, hn::Set(d, sineSeries[3]));
    sum = hn::MulAdd(sum, square, hn::Set(d, sineSeries[2]));
    sum = hn::MulAdd(sum, square, hn::Set(d, sineSeries[1]));
    sum = hn::MulAdd(sum, square, hn::Set(d, sineSeries[0]));
    return hn::MulAdd(hn::Mul(x, square), sum, x);
}

/// Sine in double precision, stored as float, clamped: a sine never exceeds 1, so only what is not positive becomes 0.
HWY_INLINE FloatVector clampedSine(FloatVector argument) {
    const HalfTag half;
    const DoubleTag d;
    const auto lower = sineSum(hn::PromoteTo(d, hn::LowerHalf(half, argument)));
    const auto upper = sineSum(hn::PromoteTo(d, hn::UpperHalf(half, argument)));
    const auto sine = hn::Combine(floats, hn::DemoteTo(half, upper), hn::DemoteTo(half, lower));
    return hn::IfThenElseZero(hn::Gt(sine, hn::Zero(floats)), sine);
}

/// Red is left of its clamp only beyond the middle and blue only before it: one sine serves both.
HWY_INLINE Rgb rainbowColor(FloatVector place) {
    const auto middle = hn::Set(floats, 0.5f);
    const auto pi = hn::Set(floats, 3.1415927f);
    const auto inRed = hn::Gt(place, middle);
    const auto inBlue = hn::Lt(place, middle);
    const auto shifted = hn::IfThenElse(inRed, hn::Sub(place, middle), hn::Add(place, middle));
    const auto side = clampedSine(hn::Mul(shifted, pi));
    return {hn::IfThenElseZero(inRed, side), clampedSine(hn::Mul(place, pi)), hn::IfThenElseZero(inBlue, side)};
}

/// The position inside a piece of 1 / factor, held to 1: then 1 - s needs no clamp either.
HWY_INLINE FloatVector pieceFraction(FloatVector place, FloatVector bound, float factor) {
    const auto one = hn::Set(floats, 1.0f);
    const auto s = hn::Mul(hn::Sub(place, bound), hn::Set(floats, factor));
    return hn::IfThenElse(hn::Lt(s, one), s, one);
}

HWY_INLINE Rgb hueColor(FloatVector place) {
    const auto one = hn::Set(floats, 1.0f);
    const float bounds[5] = {0.16666667f, 0.33333334f, 0.5f, 0.6666667f, 0.8333333f};
    const auto in1 = hn::Ge(place, hn::Set(floats, bounds[0]));
    const auto in2 = hn::Ge(place, hn::Set(floats, bounds[1]));
    const auto in3 = hn::Ge(place, hn::Set(floats, bounds[2]));
    const auto in4 = hn::Ge(place, hn::Set(floats, bounds[3]));
    const auto in5 = hn::Ge(place, hn::Set(floats, bounds[4]));
    auto bound = hn::IfThenElseZero(in1, hn::Set(floats, bounds[0]));
    bound = hn::IfThenElse(in2, hn::Set(floats, bounds[1]), bound);
    bound = hn::IfThenElse(in3, hn::Set(floats, bounds[2]), bound);
    bound = hn::IfThenElse(in4, hn::Set(floats, bounds[3]), bound);
    bound = hn::IfThenElse(in5, hn::Set(floats, bounds[4]), bound);
    const auto up = pieceFraction(place, bound, 6.0f);
    const auto down = hn::Sub(one, up);
    const auto red = hn::IfThenElse(in5, one, hn::IfThenElse(in4, up, hn::IfThenElse(in1, down, one)));
    const auto green = hn::IfThenElse(in3, down, hn::IfThenElse(in1, one, up));
    const auto blue = hn::IfThenElse(in5, down, hn::IfThenElse(in3, one, up));
    const auto redLow = hn::And(in2, hn::Not(in4));  // the pieces without red
    const auto here = hn::Eq(place, place);
    return {hn::IfThenElseZero(hn::AndNot(redLow, here), red), hn::IfThenElseZero(hn::AndNot(in4, here), green),
            hn::IfThenElseZero(hn::And(in2, here), blue)};
}

HWY_INLINE Rgb thirdsColor(FloatVector place) {
    const auto one = hn::Set(floats, 1.0f);
    const auto third = hn::Set(floats, 0.33333334f);
    const auto twoThirds = hn::Set(floats, 0.6666667f);
    const auto in1 = hn::Ge(place, third);
    const auto in2 = hn::Ge(place, twoThirds);
    const auto here = hn::Eq(place, place);
    const auto bound = hn::IfThenElse(in2, twoThirds, hn::IfThenElseZero(in1, third));
    const auto up = pieceFraction(place, bound, 3.0f);
    const auto down = hn::Sub(one, up);
    return {hn::IfThenElseZero(in2, up), hn::IfThenElseZero(hn::AndNot(in2, here), hn::IfThenElse(in1, down, up)),
            hn::IfThenElseZero(in1, hn::IfThenElse(in2, down, up))};
}

HWY_INLINE Rgb both(const Rgb& a, const Rgb& b) {
    return {hn::Or(a.red, b.red), hn::Or(a.green, b.green), hn::Or(a.blue, b.blue)};
}

/// A lane has one rule, the other rules leave it 0: their colours are joined bit by bit.
template <int32_t handled>
HWY_INLINE void colorAll(int groups, BlockStages* stages) {
    for (int i = (groups - 1) * lanes; i >= 0; i -= lanes) {
        Rgb color = {hn::Zero(floats), hn::Zero(floats), hn::Zero(floats)};
        if constexpr ((handled & rainbowKind) != 0)
            color = rainbowColor(hn::Load(floats, stages->sinePlace + i));
        if constexpr ((handled & hueKind) != 0)
            color = both(color, hueColor(hn::Load(floats, stages->huePlace + i)));
        if constexpr ((handled & thirdsKind) != 0)
            color = both(color, thirdsColor(hn::Load(floats, stages->thirdsPlace + i)));
        hn::Store(color.red, floats, stages->red + i);
        hn::Store(color.green, floats, stages->green + i);
        hn::Store(color.blue, floats, stages->blue + i);
    }
}

/// Red, green and blue of the analytic rules that occur in the block.
HWY_INLINE void analyticColors(int32_t kinds, int groups, BlockStages* stages) {
    switch (kinds & (rainbowKind | hueKind | thirdsKind)) {
        case rainbowKind:
            return colorAll<rainbowKind>(groups, stages);
        case hueKind:
            return colorAll<hueKind>(groups, stages);
        case thirdsKind:
            return colorAll<thirdsKind>(groups, stages);
        case hueKind | thirdsKind:
            return colorAll<hueKind | thirdsKind>(groups, stages);
        default:
            return colorAll<rainbowKind | hueKind | thirdsKind>(groups, stages);
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace lys::eval
HWY_AFTER_NAMESPACE();
#endif
#endif
