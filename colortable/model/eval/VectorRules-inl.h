// Third stage: the analytic rules. Lanes that belong to other rules have a place without any colour. Included once for
// each instruction set.
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
using DoubleVector = hn::Vec<DoubleTag>;

constexpr DoubleTag doubles;
constexpr HalfTag halves;

/// Sines of -pi/2 <= x <= pi, `chains` of them side by side: one alone would wait for each of its steps. Fused steps
/// are allowed here, see sineSeries.
template <int chains>
HWY_INLINE void sineSums(DoubleVector (&x)[chains]) {
    DoubleVector square[chains];
    DoubleVector sum[chains];
    for (int i = 0; i < chains; ++i)
        x[i] = hn::Min(x[i], hn::Sub(hn::Set(doubles, piInDouble), x[i]));
    for (int i = 0; i < chains; ++i)
        square[i] = hn::Mul(x[i], x[i]);
    for (int i = 0; i < chains; ++i)
        sum[i] = hn::MulAdd(hn::Set(doubles, sineSeries[6]), square[i], hn::Set(doubles, sineSeries[5]));
    for (int k = 4; k >= 0; --k) {
        for (int i = 0; i < chains; ++i)
            sum[i] = hn::MulAdd(sum[i], square[i], hn::Set(doubles, sineSeries[k]));
    }
    for (int i = 0; i < chains; ++i)
        square[i] = hn::Mul(x[i], square[i]);
    for (int i = 0; i < chains; ++i)
        x[i] = hn::MulAdd(square[i], sum[i], x[i]);
}

/// Replaces arguments by their sines, taken in double precision and stored as float.
template <int vectors>
HWY_INLINE void replaceBySines(float* side, float* green) {
    constexpr int half = lanes / 2;
    DoubleVector x[4 * vectors];
    for (int i = 0; i < 2 * vectors; ++i) {
        x[2 * i] = hn::PromoteTo(doubles, hn::Load(halves, side + i * half));
        x[2 * i + 1] = hn::PromoteTo(doubles, hn::Load(halves, green + i * half));
    }
    sineSums(x);
    for (int i = 0; i < 2 * vectors; ++i) {
        hn::Store(hn::DemoteTo(halves, x[2 * i]), halves, side + i * half);
        hn::Store(hn::DemoteTo(halves, x[2 * i + 1]), halves, green + i * half);
    }
}

HWY_INLINE void takeSines(int groups, BlockStages* stages) {
#if HWY_TARGET == HWY_AVX3
    constexpr int atOnce = 2;  // more registers, more chains
#else
    constexpr int atOnce = 1;
#endif
    int g = 0;
    for (; g + atOnce <= groups; g += atOnce)
        replaceBySines<atOnce>(stages->side + g * lanes, stages->green + g * lanes);
    if (g < groups)
        replaceBySines<1>(stages->side + g * lanes, stages->green + g * lanes);
}

/// The clamped colour that the sines stand for; a sine never exceeds 1. As an integer a float orders as itself among
/// those that are not negative.
HWY_INLINE Rgb rainbowColor(const BlockStages& stages, int at) {
    const auto zero = hn::Zero(ints);
    const auto side = hn::Load(floats, stages.side + at);
    const auto red = hn::BitCast(ints, hn::Neg(side));
    const auto blue = hn::Max(hn::BitCast(ints, side), zero);
    const auto green = hn::Max(hn::BitCast(ints, hn::Load(floats, stages.green + at)), zero);
    const auto isRed = hn::Gt(red, hn::BitCast(ints, hn::Set(floats, greatestClampedRed)));
    return {hn::BitCast(floats, hn::IfThenElseZero(isRed, red)), hn::BitCast(floats, green), hn::BitCast(floats, blue)};
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
    const auto here = hn::Lt(place, hn::Set(floats, noPlace));
    return {hn::IfThenElseZero(hn::AndNot(redLow, here), red), hn::IfThenElseZero(hn::AndNot(in4, here), green),
            hn::IfThenElseZero(hn::And(in2, here), blue)};
}

HWY_INLINE Rgb thirdsColor(FloatVector place) {
    const auto one = hn::Set(floats, 1.0f);
    const auto third = hn::Set(floats, 0.33333334f);
    const auto twoThirds = hn::Set(floats, 0.6666667f);
    const auto in1 = hn::Ge(place, third);
    const auto in2 = hn::Ge(place, twoThirds);
    const auto here = hn::Lt(place, hn::Set(floats, noPlace));
    const auto bound = hn::IfThenElse(in2, twoThirds, hn::IfThenElseZero(in1, third));
    const auto up = pieceFraction(place, bound, 3.0f);
    const auto down = hn::Sub(one, up);
    return {hn::IfThenElseZero(hn::And(in2, here), up),
            hn::IfThenElseZero(hn::AndNot(in2, here), hn::IfThenElse(in1, down, up)),
            hn::IfThenElseZero(hn::And(in1, here), hn::IfThenElse(in2, down, up))};
}

HWY_INLINE Rgb both(const Rgb& a, const Rgb& b) {
    return {hn::Or(a.red, b.red), hn::Or(a.green, b.green), hn::Or(a.blue, b.blue)};
}

/// A lane has one rule, the other rules leave it 0: their colours are joined bit by bit.
template <int32_t handled>
HWY_INLINE void colorAll(int groups, BlockStages* stages) {
    for (int i = 0; i < groups * lanes; i += lanes) {
        Rgb color = {hn::Zero(floats), hn::Zero(floats), hn::Zero(floats)};
        if constexpr ((handled & rainbowKind) != 0)
            color = rainbowColor(*stages, i);
        if constexpr ((handled & hueKind) != 0)
            color = both(color, hueColor(hn::Load(floats, stages->huePlace + i)));
        if constexpr ((handled & thirdsKind) != 0)
            color = both(color, thirdsColor(hn::Load(floats, stages->thirdsPlace + i)));
        hn::Store(color.red, floats, stages->rgb[0] + i);
        hn::Store(color.green, floats, stages->rgb[1] + i);
        hn::Store(color.blue, floats, stages->rgb[2] + i);
    }
}

/// Colours of the analytic rules that occur in the block; those of rainbows alone stay sines, see rainbowColor.
HWY_INLINE void analyticColors(int32_t kinds, int groups, BlockStages* stages) {
    if ((kinds & rainbowKind) != 0)
        takeSines(groups, stages);
    switch (kinds & (rainbowKind | hueKind | thirdsKind)) {
        case 0:
        case rainbowKind:
            return;
        case hueKind:
            return colorAll<hueKind>(groups, stages);
        case thirdsKind:
            return colorAll<thirdsKind>(groups, stages);
        case hueKind | thirdsKind:
            return colorAll<hueKind | thirdsKind>(groups, stages);
        case rainbowKind | hueKind:
            return colorAll<rainbowKind | hueKind>(groups, stages);
        default:
            return colorAll<rainbowKind | hueKind | thirdsKind>(groups, stages);
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace lys::eval
HWY_AFTER_NAMESPACE();
#endif
#endif
