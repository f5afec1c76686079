#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "ModelTools.h"
#include "PlainTable.h"

using namespace model;

namespace {

constexpr float INF = std::numeric_limits<float>::infinity();

plain::Types types() {
    return {204800085,          204800165,
            int(Lyr::Rainbow),  int(Lyr::InvertedRainbow),
            int(Lyr::Continue), int(Lyr::BlackGreenBlueRed),
            int(Lyr::HueCycle)};
}

std::uint32_t bitsOf(float v) {
    std::uint32_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    return bits;
}

float floatOf(std::uint32_t bits) {
    float v;
    std::memcpy(&v, &bits, sizeof v);
    return v;
}

/** Makes tables and values. */
class Dice {
public:
    explicit Dice(unsigned seed) : mEngine(seed) {}

    unsigned below(unsigned n) { return static_cast<unsigned>(mEngine() % n); }
    bool oneIn(unsigned n) { return below(n) == 0; }
    std::uint32_t bits() { return static_cast<std::uint32_t>(mEngine()); }
    float unit() { return static_cast<float>(below(1u << 24)) / static_cast<float>(1u << 24); }
    float anyFloat() { return floatOf(bits()); }

    plain::Table table(unsigned boundaries, bool mayFail) {
        plain::Table result;
        result.positions = positions(boundaries);
        for (unsigned i = 0; i <= boundaries; ++i) {
            result.sections.push_back(section(mayFail));
        }
        for (plain::Section* outer : {&result.sections.front(), &result.sections.back()}) {
            outer->type = oneIn(3) ? types().proceed : outer->type;
        }
        const int modes[] = {0, 0, 0, 1, 1, 2};
        result.below = modes[below(6)];
        result.above = modes[below(6)];
        if (mayFail && oneIn(15)) {
            result.sections.pop_back();
        } else if (mayFail && oneIn(15)) {
            result.sections.push_back(section(false));
        }
        return result;
    }

    /** Puts the boundaries out of order, now and then with one that is not a number. */
    void disorder(plain::Table& table) {
        std::shuffle(table.positions.begin(), table.positions.end(), mEngine);
        if (oneIn(3)) {
            table.positions[below(static_cast<unsigned>(table.positions.size()))] = NAN;
        }
        table.ascending = false;
    }

    std::vector<float> values(const std::vector<float>& positions, std::size_t count) {
        std::vector<float> result = {
            0.0f, -0.0f, FLT_MAX,           -FLT_MAX,        INF, -INF, FLT_MIN, FLT_TRUE_MIN, -FLT_TRUE_MIN,
            NAN,  -NAN,  positions.front(), positions.back()};
        while (result.size() < count) {
            result.push_back(value(positions));
        }
        std::shuffle(result.begin(), result.end(), mEngine);
        return result;
    }

private:
    float value(const std::vector<float>& positions) {
        const std::size_t at = below(static_cast<unsigned>(positions.size()));
        const std::size_t next = std::min(at + 1, positions.size() - 1);
        switch (below(8)) {
            case 0:
                return positions[at];
            case 1:
                return std::nextafter(positions[at], INF);
            case 2:
                return std::nextafter(positions[at], -INF);
            case 3:
                return anyFloat();
            case 4:
                return positions.front() + (positions.back() - positions.front()) * (unit() * 1.5f - 0.25f);
            default:
                return positions[at] + (positions[next] - positions[at]) * unit();
        }
    }

    std::vector<float> positions(unsigned count) {
        std::vector<float> result;
        const unsigned kind = below(7);
        for (unsigned i = 0; i < count; ++i) {
            result.push_back(position(kind, i, count));
        }
        if (oneIn(5)) {
            result.front() = -FLT_MAX;
        }
        if (oneIn(5)) {
            result.back() = FLT_MAX;
        }
        if (oneIn(5)) {
            const unsigned twin = below(count);
            std::fill(result.begin() + twin, result.begin() + std::min(count, twin + 1 + below(4)), result[twin]);
        }
        std::sort(result.begin(), result.end());
        if (oneIn(6)) {
            std::fill(result.begin(), result.begin() + std::min(count, 2u + below(3)), result.front());
        }
        return result;
    }

    float position(unsigned kind, unsigned i, unsigned count) {
        switch (kind) {
            case 0:  // even steps
                return static_cast<float>(i) * 0.5f - 1.0f;
            case 1:  // denormals of both signs
                return floatOf(below(1u << 20) | (oneIn(2) ? 0x80000000u : 0u));
            case 2: {  // any finite number
                const float v = anyFloat();
                return std::isfinite(v) ? v : 0.0f;
            }
            case 3:  // many orders of magnitude
                return std::ldexp(oneIn(2) ? 1.0f : -1.0f, static_cast<int>(below(276)) - 149);
            case 4:  // crowded, neighbours one step apart
                return floatOf(0x3F000000u + below(count * 2));
            default:
                return unit() * 20.0f - 10.0f;
        }
    }

    plain::Section section(bool mayFail) {
        const plain::Types t = types();
        const int usual[] = {t.constant,        t.gradient, t.gradient,          t.rainbow,
                             t.invertedRainbow, t.hueCycle, t.blackGreenBlueRed, t.constant};
        const int unusual[] = {t.proceed, t.proceed, int(Lyr::Custom), int(Lyr::InvertedHueCycle), 0, -1};
        plain::Section result;
        result.type = mayFail && oneIn(12) ? unusual[below(6)] : usual[below(8)];
        if (mayFail && oneIn(40)) {
            result.kind = oneIn(2) ? plain::Kind::Nothing : plain::Kind::Stranger;
        }
        for (auto& points : result.points) {
            const unsigned count = oneIn(3) ? 0 : oneIn(20) ? 200 : 1 + below(4);
            for (unsigned i = 0; i < count; ++i) {
                points.push_back(pointValue());
            }
        }
        return result;
    }

    float pointValue() {
        const float edges[] = {0.0f, -0.0f, 1.0f, -1.0f, FLT_MAX, -FLT_MAX, FLT_TRUE_MIN, INF, -INF, NAN, -NAN};
        if (oneIn(8)) {
            return edges[below(11)];
        }
        const float v = oneIn(8) ? anyFloat() : unit() * 1.4f - 0.2f;
        return std::isnan(v) ? 0.5f : v;
    }

    std::mt19937_64 mEngine;
};

/** The same table as an object of the library. */
Held<Table> build(const plain::Table& wanted, Dice& dice) {
    auto table = newTable();
    std::vector<LyrObject*> sections;
    for (const plain::Section& section : wanted.sections) {
        if (section.kind != plain::Kind::Section) {
            sections.push_back(section.kind == plain::Kind::Nothing ? nullptr : new LyrObject);
            continue;
        }
        auto* made = new Section;
        EXPECT_TRUE(setType(*made, section.type));
        const Lyrenum channels[] = {Lyr::PointListRed, Lyr::PointListGreen, Lyr::PointListBlue, Lyr::PointListAlpha};
        for (std::size_t c = 0; c < 4; ++c) {
            std::vector<Point> points;
            for (const float v : section.points[c]) {
                points.emplace_back(dice.unit(), v);
            }
            EXPECT_TRUE(setList(*made, channels[c], points));
        }
        sections.push_back(made);
    }
    EXPECT_TRUE(setList(*table, Lyr::PositionList, wanted.positions));
    EXPECT_TRUE(setSections(*table, sections));
    EXPECT_TRUE(setFiniteMode(*table, wanted.below, wanted.above));
    return table;
}

std::array<float, 4> channelsOf(const Color& color) {
    return {color.red, color.green, color.blue, color.alpha};
}

testing::AssertionResult holds(const Color& got, const plain::Result& want) {
    const auto channels = channelsOf(got);
    const auto wanted = want.written ? want.color : channelsOf(untouched);
    for (std::size_t c = 0; c < 4; ++c) {
        const bool bothNaN = want.anyNaN && std::isnan(channels[c]) && std::isnan(wanted[c]);
        if (bitsOf(channels[c]) != bitsOf(wanted[c]) && !bothNaN) {
            return testing::AssertionFailure() << "channel " << c << " is " << channels[c] << ", wanted " << wanted[c];
        }
    }
    return testing::AssertionSuccess();
}

void expectOneByOne(const Table& table, const plain::Table& wanted, const std::vector<float>& values, Errors& errors) {
    for (const float value : values) {
        const plain::Result want = plain::colorIn(types(), wanted, value, false);
        Color got = untouched;
        ASSERT_EQ(table.getColor(value, got), want.colored) << value;
        ASSERT_TRUE(holds(got, want)) << "at " << value;
        ASSERT_EQ(errors.take().size(), want.reported ? 1u : 0u) << value;
    }
}

/** Colours a part of the values, with a margin around the output that must stay as it is. */
void expectMany(const Table& table, const plain::Table& wanted, const float* values, std::size_t count,
                Errors& errors) {
    constexpr std::size_t MARGIN = 3;
    std::vector<Color> got(count + 2 * MARGIN, untouched);
    const bool done = table.getColors(static_cast<long long>(count), values, got.data() + MARGIN);
    bool failed = false;
    bool reported = false;
    for (std::size_t i = count; i-- > 0;) {
        plain::Result want;
        if (!failed) {
            want = plain::colorIn(types(), wanted, values[i], true);
            failed = !want.colored;
            reported = want.reported;
        }
        ASSERT_TRUE(holds(got[MARGIN + i], want)) << "entry " << i << " of " << count << " at " << values[i];
    }
    ASSERT_EQ(done, !failed);
    ASSERT_EQ(errors.take().size(), reported ? 1u : 0u);
    for (std::size_t i = 0; i < MARGIN; ++i) {
        ASSERT_TRUE(sameBits(got[i], untouched) && sameBits(got[MARGIN + count + i], untouched));
    }
}

void expectEqual(const plain::Table& wanted, Dice& dice, std::size_t valueCount = 1000) {
    Errors errors;
    const auto table = build(wanted, dice);
    const std::vector<float> values = dice.values(wanted.positions, valueCount);
    ASSERT_NO_FATAL_FAILURE(expectOneByOne(*table, wanted, values, errors));
    ASSERT_NO_FATAL_FAILURE(expectMany(*table, wanted, values.data(), values.size(), errors));
    // Parts of all lengths, at all alignments: in a table that fails, most values are reached only so.
    for (std::size_t from = 0; from < values.size();) {
        const std::size_t count = std::min<std::size_t>(1 + dice.below(dice.oneIn(4) ? 300 : 20), values.size() - from);
        ASSERT_NO_FATAL_FAILURE(expectMany(*table, wanted, values.data() + from, count, errors));
        from += count;
    }
}

class LyrColorLookupTableRandom : public testing::TestWithParam<unsigned> {};

}  // namespace

TEST_P(LyrColorLookupTableRandom, tables_equal_the_plain_model_bit_for_bit) {
    Dice dice(GetParam());
    for (int round = 0; round < 30; ++round) {
        SCOPED_TRACE(testing::Message() << "table " << round);
        const unsigned boundaries = round == 0 ? 3000 : round % 6 == 0 ? 40 + dice.below(400) : 2 + dice.below(24);
        ASSERT_NO_FATAL_FAILURE(expectEqual(dice.table(boundaries, round % 3 == 1), dice));
    }
}

TEST_P(LyrColorLookupTableRandom, tables_whose_boundaries_are_out_of_order_equal_the_plain_model) {
    Dice dice(GetParam() + 1000);
    for (int round = 0; round < 8; ++round) {
        SCOPED_TRACE(testing::Message() << "table " << round);
        plain::Table table = dice.table(2 + dice.below(round == 0 ? 300 : 12), round % 3 == 1);
        dice.disorder(table);
        ASSERT_NO_FATAL_FAILURE(expectEqual(table, dice));
    }
}

TEST_P(LyrColorLookupTableRandom, tables_equal_the_plain_model_over_long_arrays) {
    Dice dice(GetParam() + 2000);
    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE(testing::Message() << "table " << round);
        ASSERT_NO_FATAL_FAILURE(expectEqual(dice.table(2 + dice.below(40), false), dice, 30000));
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, LyrColorLookupTableRandom, testing::Range(1u, 11u));

TEST(LyrColorLookupTableRandomModel, rounds_as_single_precision_does) {
    // The comparison stands on this: a step formed in double and narrowed is the single-precision step.
    Dice dice(99);
    for (int i = 0; i < 300000; ++i) {
        volatile float a = dice.anyFloat();
        volatile float b = dice.oneIn(3) ? a * dice.unit() : dice.anyFloat();
        if (std::isnan(a) || std::isnan(b)) {
            continue;
        }
        const float sum = a + b, difference = a - b, product = a * b, quotient = a / b;
        const auto same = [](float x, float y) { return bitsOf(x) == bitsOf(y) || (std::isnan(x) && std::isnan(y)); };
        ASSERT_TRUE(same(plain::plus(a, b), sum) && same(plain::minus(a, b), difference)) << a << ' ' << b;
        ASSERT_TRUE(same(plain::times(a, b), product) && same(plain::over(a, b), quotient)) << a << ' ' << b;
    }
}
