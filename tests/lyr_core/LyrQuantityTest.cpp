#include <lyr_core/LyrQuantity.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <lyr_core/LyrError.h>
#include <lyr_core/LyrI18n.h>
#include <lyr_core/LyrRegisteredEnum.h>
#include <lyr_core/LyrUnitIdentifiers.h>

namespace {

Lyrenum percent() {
    return Lyrenum("Percent", true);
}
Lyrenum degree() {
    return Lyrenum("Degree", true);
}

// Collects the codes that are reported and keeps them from everybody else.
class ErrorCodes : public LyrError::Listener {
public:
    bool errorEmitted(const LyrError::Message& message) override {
        codes.push_back(int(message.getCode()));
        return true;
    }
    std::vector<int> codes;
};

TEST(LyrQuantity, there_are_six_quantities) {
    const std::vector<Lyrenum> quantities = LyrQuantity::getQuantities();
    ASSERT_EQ(quantities.size(), 6U);
    EXPECT_EQ(int(quantities[0]), 204800208);   // Length
    EXPECT_EQ(int(quantities[3]), 0x0C350016);  // Angle
    for (const Lyrenum quantity : {Lyr::Length, Lyr::Area, Lyr::Volume, Lyr::Angle, percent(), Lyr::Number}) {
        EXPECT_TRUE(LyrQuantity::isQuantity(quantity)) << int(quantity);
        EXPECT_EQ(std::count(quantities.begin(), quantities.end(), quantity), 1) << int(quantity);
    }
}

TEST(LyrQuantity, units_and_other_identifiers_are_no_quantities) {
    EXPECT_FALSE(LyrQuantity::isQuantity(Lyrenum(-1)));
    EXPECT_FALSE(LyrQuantity::isQuantity(Lyrenum(0)));
    EXPECT_FALSE(LyrQuantity::isQuantity(Lyr::Millimeter));
    EXPECT_FALSE(LyrQuantity::isQuantity(Lyr::Left));
}

TEST(LyrQuantity, the_internal_units_are_millimetres_and_radians) {
    EXPECT_EQ(LyrQuantity::getUnit(Lyr::Length), Lyr::Millimeter);
    EXPECT_EQ(LyrQuantity::getUnit(Lyr::Area), Lyr::SquareMillimeter);
    EXPECT_EQ(LyrQuantity::getUnit(Lyr::Volume), Lyr::CubicMillimeter);
    EXPECT_EQ(LyrQuantity::getUnit(Lyr::Angle), Lyr::Radian);
    EXPECT_EQ(LyrQuantity::getUnit(percent()), percent());
}

TEST(LyrQuantity, plain_numbers_and_unknown_quantities_have_no_unit) {
    for (const Lyrenum quantity : {Lyr::Number, Lyrenum(-1), Lyrenum(0), Lyr::Left, Lyr::Millimeter}) {
        EXPECT_EQ(int(LyrQuantity::getUnit(quantity)), -1) << int(quantity);
        EXPECT_TRUE(LyrQuantity::getUnits(quantity).empty()) << int(quantity);
    }
}

TEST(LyrQuantity, the_units_of_a_quantity_begin_with_the_internal_one_and_occur_once) {
    std::set<int> seen;
    for (const Lyrenum quantity : LyrQuantity::getQuantities()) {
        const std::vector<Lyrenum> units = LyrQuantity::getUnits(quantity);
        EXPECT_EQ(units.empty() ? -1 : int(units.front()), int(LyrQuantity::getUnit(quantity)));
        for (const Lyrenum unit : units) {
            EXPECT_NE(int(unit), -1);
            EXPECT_TRUE(seen.insert(int(unit)).second) << unit.getName();
        }
    }
    EXPECT_EQ(seen.size(), 24U);  // 8 lengths, 6 areas, 7 volumes, 2 angles, percent
}

TEST(LyrQuantity, degrees_become_radians_that_round_to_the_right_float) {
    const auto radians = [](double degrees) {
        return static_cast<float>(LyrQuantity::unitToInternal(degrees, Lyr::Angle, degree()));
    };
    EXPECT_EQ(radians(90), 1.5707964F);
    EXPECT_EQ(radians(15), 0.2617994F);
    EXPECT_EQ(radians(0), 0);
    EXPECT_EQ(radians(-180), -3.1415927F);
    EXPECT_EQ(LyrQuantity::unitToInternal(90, Lyrenum(0x0C350016), degree()), 1.5707963267948966);
    EXPECT_DOUBLE_EQ(LyrQuantity::internalToUnit(1.5707963267948966, Lyr::Angle, degree()), 90);
}

TEST(LyrQuantity, the_degree_is_found_by_its_name_whoever_registers_it) {
    const int number = int(degree());
    EXPECT_NE(number, -1);
    const LyrRegisteredEnum registration("Degree", false, "some_plugin");
    EXPECT_EQ(int(Lyrenum("Degree", true)), number);
    EXPECT_EQ(LyrQuantity::unitToInternal(180, Lyr::Angle, Lyrenum("Degree", true)), 3.141592653589793);
}

struct Length {
    Lyrenum unit;
    double millimetres;
};

TEST(LyrQuantity, lengths_are_converted_to_millimetres) {
    const Length lengths[] = {{Lyr::Millimeter, 1},     {Lyr::Centimeter, 10},  {Lyr::Meter, 1000},
                              {Lyr::Micrometer, 0.001}, {Lyr::Nanometer, 1e-6}, {Lyr::Inch, 25.4},
                              {Lyr::Foot, 304.8},       {Lyr::Mil, 0.0254}};
    ASSERT_EQ(LyrQuantity::getUnits(Lyr::Length).size(), std::size(lengths));
    for (const Length& length : lengths) {
        EXPECT_EQ(LyrQuantity::unitToInternal(1, Lyr::Length, length.unit), length.millimetres);
        EXPECT_DOUBLE_EQ(LyrQuantity::internalToUnit(length.millimetres, Lyr::Length, length.unit), 1);
    }
    EXPECT_EQ(LyrQuantity::unitToInternal(3, Lyr::Length, Lyr::Micrometer), 0.003);
}

// An area or volume unit is the power of the length it is made of.
TEST(LyrQuantity, areas_and_volumes_are_converted_by_powers_of_the_length) {
    const struct {
        Lyrenum area;
        Lyrenum volume;
        double millimetres;
    } powers[] = {
        {Lyr::SquareMillimeter, Lyr::CubicMillimeter, 1}, {Lyr::SquareCentimeter, Lyr::CubicCentimeter, 10},
        {Lyr::SquareMeter, Lyr::CubicMeter, 1000},        {Lyr::SquareMicrometer, Lyr::CubicMicrometer, 0.001},
        {Lyr::SquareInch, Lyr::CubicInch, 25.4},          {Lyr::SquareFoot, Lyr::CubicFoot, 304.8}};
    for (const auto& power : powers) {
        const double area = power.millimetres * power.millimetres;
        EXPECT_DOUBLE_EQ(LyrQuantity::unitToInternal(1, Lyr::Area, power.area), area);
        EXPECT_DOUBLE_EQ(LyrQuantity::internalToUnit(area, Lyr::Area, power.area), 1);
        const double volume = area * power.millimetres;
        EXPECT_DOUBLE_EQ(LyrQuantity::unitToInternal(1, Lyr::Volume, power.volume), volume);
        EXPECT_DOUBLE_EQ(LyrQuantity::internalToUnit(volume, Lyr::Volume, power.volume), 1);
    }
    EXPECT_EQ(LyrQuantity::unitToInternal(1, Lyr::Volume, Lyr::Liter), 1e6);
}

TEST(LyrQuantity, percentages_are_not_scaled) {
    EXPECT_EQ(LyrQuantity::unitToInternal(12.5, percent(), percent()), 12.5);
    EXPECT_EQ(LyrQuantity::internalToUnit(12.5, percent(), percent()), 12.5);
}

TEST(LyrQuantity, special_values_pass_through_a_conversion) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(std::isnan(LyrQuantity::unitToInternal(std::nan(""), Lyr::Length, Lyr::Inch)));
    EXPECT_EQ(LyrQuantity::unitToInternal(-infinity, Lyr::Length, Lyr::Mil), -infinity);
    EXPECT_EQ(LyrQuantity::internalToUnit(infinity, Lyr::Length, Lyr::Mil), infinity);
    EXPECT_TRUE(std::signbit(LyrQuantity::unitToInternal(-0.0, Lyr::Length, Lyr::Inch)));
}

TEST(LyrQuantity, a_conversion_overflows_only_where_its_result_does) {
    const double largest = std::numeric_limits<double>::max();
    EXPECT_DOUBLE_EQ(LyrQuantity::unitToInternal(largest, Lyr::Length, Lyr::Mil), largest * 0.0254);
    EXPECT_EQ(LyrQuantity::unitToInternal(largest, Lyr::Length, Lyr::Inch), std::numeric_limits<double>::infinity());
}

TEST(LyrQuantity, no_unit_means_the_internal_one) {
    ErrorCodes errors;
    EXPECT_EQ(LyrQuantity::unitToInternal(5, Lyr::Length, Lyrenum(-1)), 5);
    EXPECT_EQ(LyrQuantity::internalToUnit(5, Lyr::Number, Lyrenum(-1)), 5);
    EXPECT_EQ(LyrQuantity::internalToUnit(5, Lyrenum(-1), Lyrenum(-1)), 5);
    EXPECT_TRUE(errors.codes.empty());
}

TEST(LyrQuantity, a_unit_of_another_quantity_is_reported_and_changes_nothing) {
    ErrorCodes errors;
    EXPECT_EQ(LyrQuantity::unitToInternal(5, Lyr::Length, degree()), 5);
    EXPECT_EQ(LyrQuantity::internalToUnit(5, Lyr::Angle, Lyr::Inch), 5);
    EXPECT_EQ(LyrQuantity::unitToInternal(5, Lyr::Number, Lyr::Inch), 5);
    EXPECT_EQ(LyrQuantity::unitToInternal(5, Lyrenum(-1), Lyr::Inch), 5);
    EXPECT_EQ(errors.codes, std::vector<int>(4, static_cast<int>(0xF3CB0004U)));
}

TEST(LyrQuantity, units_have_symbols) {
    EXPECT_EQ(LyrQuantity::getUnitSymbol(Lyr::Millimeter), "mm");
    EXPECT_EQ(LyrQuantity::getUnitSymbol(Lyr::Micrometer), "\xc2\xb5m");
    EXPECT_EQ(LyrQuantity::getUnitSymbol(Lyr::SquareMillimeter), "mm\xc2\xb2");
    EXPECT_EQ(LyrQuantity::getUnitSymbol(Lyr::CubicMillimeter), "mm\xc2\xb3");
    EXPECT_EQ(LyrQuantity::getUnitSymbol(degree()), "\xc2\xb0");
    EXPECT_EQ(LyrQuantity::getUnitSymbol(percent()), "%");
    EXPECT_TRUE(LyrQuantity::getUnitSymbol(Lyrenum(-1)).isNull());
    EXPECT_TRUE(LyrQuantity::getUnitSymbol(Lyr::Length).isNull());
}

TEST(LyrQuantity, every_unit_is_found_by_its_symbol_and_its_name) {
    for (const Lyrenum quantity : LyrQuantity::getQuantities()) {
        for (const Lyrenum unit : LyrQuantity::getUnits(quantity)) {
            EXPECT_EQ(LyrQuantity::findUnit(quantity, LyrQuantity::getUnitSymbol(unit)), unit);
            EXPECT_EQ(LyrQuantity::findUnit(quantity, LyrString(unit.getName())), unit);
        }
    }
}

TEST(LyrQuantity, spellings_that_are_easy_to_type_name_a_unit_of_the_quantity) {
    EXPECT_EQ(LyrQuantity::findUnit(Lyr::Length, "um"), Lyr::Micrometer);
    EXPECT_EQ(LyrQuantity::findUnit(Lyr::Length, "\xce\xbcm"), Lyr::Micrometer);
    EXPECT_EQ(LyrQuantity::findUnit(Lyr::Area, "mm2"), Lyr::SquareMillimeter);
    EXPECT_EQ(LyrQuantity::findUnit(Lyr::Volume, "cm^3"), Lyr::CubicCentimeter);
    EXPECT_EQ(LyrQuantity::findUnit(Lyr::Angle, "deg"), degree());
    EXPECT_EQ(int(LyrQuantity::findUnit(Lyr::Length, "mm2")), -1);
    EXPECT_EQ(int(LyrQuantity::findUnit(Lyr::Length, "MM")), -1);
    EXPECT_EQ(int(LyrQuantity::findUnit(Lyr::Length, "")), -1);
    EXPECT_EQ(int(LyrQuantity::findUnit(Lyr::Length, LyrString())), -1);
    EXPECT_EQ(int(LyrQuantity::findUnit(Lyrenum(-1), "mm")), -1);
}

class ContextEcho : public LyrI18n::Translator {
public:
    ContextEcho() { LyrI18n::setTranslator(this); }
    ~ContextEcho() override { LyrI18n::setTranslator(nullptr); }
    LyrString translate(const char* context, const char* key, const char*, Lyrenum) const override {
        return LyrString("%1:%2").arg({context, key});
    }
};

TEST(LyrQuantity, names_are_translated_in_the_context_of_quantities) {
    EXPECT_EQ(LyrQuantity::getUnitName(Lyr::Millimeter), "Millimeter");
    EXPECT_EQ(LyrQuantity::getQuantityName(Lyr::Length), "Length");
    const ContextEcho echo;
    EXPECT_EQ(LyrQuantity::getUnitName(degree()), "Quantity:Degree");
    EXPECT_EQ(LyrQuantity::getQuantityName(percent()), "Quantity:Percent");
    EXPECT_TRUE(LyrQuantity::getUnitName(Lyrenum(-1)).isNull());
    EXPECT_TRUE(LyrQuantity::getUnitName(Lyr::Length).isNull());
    EXPECT_TRUE(LyrQuantity::getQuantityName(Lyr::Inch).isNull());
}

}  // namespace
