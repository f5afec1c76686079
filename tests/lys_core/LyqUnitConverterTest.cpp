#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrUnitIdentifiers.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqUnitConverter.h>
#include <lys_core/LyrApplicationObject.h>

#include <QLocale>

#include <Sanitizers.h>
#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <random>

namespace {

class UnitConverter : public testing::Test {
protected:
    void TearDown() override {
        QLocale::setDefault(QLocale::c());
        units.setInchSystem(false);
    }
    double read(const QString& text, bool expected = true) {
        bool ok = !expected;
        const double value = lengths.unitStringToInternal(text, &ok);
        EXPECT_EQ(ok, expected) << text.toStdString();
        return value;
    }

    LyrDisplayUnits& units = LyqApplication::instance().displayUnits();
    LyqUnitConverter lengths{Lyr::Length};
};

}  // namespace

TEST_F(UnitConverter, shows_six_significant_digits_without_trailing_zeros) {
    QLocale::setDefault(QLocale::c());
    EXPECT_EQ(lengths.internalToDisplayString(1.0), QStringLiteral("1"));
    EXPECT_EQ(lengths.internalToDisplayString(0.1f), QStringLiteral("0.1"));
    EXPECT_EQ(lengths.internalToDisplayString(1.0 / 3.0), QStringLiteral("0.333333"));
    EXPECT_EQ(lengths.internalToDisplayString(1234567.0), QStringLiteral("1.23457e+06"));
    EXPECT_EQ(lengths.internalToDisplayString(12345.0), QStringLiteral("12345"));
    EXPECT_EQ(lengths.internalToDisplayString(2.5, LyqUnitConverter::WithUnit), QStringLiteral("2.5 mm"));
    EXPECT_EQ(lengths.internalToDisplayString(1.0 / 3.0, LyqUnitConverter::NumberOnly, 2), QStringLiteral("0.33"));
}

TEST_F(UnitConverter, reads_numbers_in_the_users_locale_else_in_c_with_any_unit) {
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(read(QStringLiteral("1,5")), 1.5);
    EXPECT_EQ(read(QStringLiteral("1.5")), 1.5);
    EXPECT_EQ(read(QStringLiteral(" 1,5 mm ")), 1.5);
    EXPECT_EQ(read(QStringLiteral("1,5cm")), 15.0);
    EXPECT_NEAR(read(QStringLiteral("0.06 in")), 1.524, 1e-12);
    EXPECT_EQ(read(QStringLiteral("-2e3")), -2000.0);
    EXPECT_EQ(lengths.internalToDisplayString(1.5), QStringLiteral("1,5"));
    EXPECT_EQ(lengths.internalToDisplayString(12345.0), QStringLiteral("12345"));
}

TEST_F(UnitConverter, refuses_what_is_no_finite_number_of_the_quantity) {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    for (const char* text :
         {"", " ", "mm", "abc", "1,5", "1 kg", "1 deg", "nan", "inf", "-inf", "1e999", "1 2", "1 mm mm"}) {
        EXPECT_EQ(read(QString::fromLatin1(text), false), 0.0);
    }
}

TEST_F(UnitConverter, what_it_shows_can_be_typed_back) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> exponent(-20.0, 20.0);
    for (const QLocale& locale : {QLocale::c(), QLocale(QLocale::German), QLocale(QLocale::French),
                                  QLocale(QLocale::Turkish), QLocale(QLocale::Arabic, QLocale::Egypt),
                                  QLocale(QLocale::Persian), QLocale(QLocale::Hebrew), QLocale(QLocale::Swedish)}) {
        QLocale::setDefault(locale);
        for (int i = 0; i < 200; ++i) {
            const QString shown =
                lengths.internalToDisplayString((i % 2 ? 1.0 : -1.0) * std::pow(10.0, exponent(random)));
            bool ok = false;
            const double back = lengths.unitStringToInternal(shown, &ok);
            EXPECT_TRUE(ok) << shown.toStdString();
            EXPECT_EQ(lengths.internalToDisplayString(back), shown);
        }
    }
}

TEST_F(UnitConverter, numbers_of_a_locale_are_no_numbers_of_another) {
    QLocale::setDefault(QLocale(QLocale::German));
    for (const char* text : {"1.234,5", "1,2,3", "1.2.3", "--1", "1e"}) {
        read(QString::fromLatin1(text), false);
    }
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
    EXPECT_EQ(read(QStringLiteral("-1.5 mm")), -1.5);
    EXPECT_EQ(read(QStringLiteral(u"\u0661\u0662\u066B\u0665")), 12.5);
    read(QStringLiteral(u"\u0661,\u0665"), false);
}

TEST_F(UnitConverter, a_long_text_is_refused_at_once) {
    const std::clock_t begin = std::clock();
    read(QString(200000, QLatin1Char('m')), false);
    EXPECT_LT(std::clock() - begin, CLOCKS_PER_SEC * SANITIZER_SLOWDOWN);
    EXPECT_EQ(read(QStringLiteral("2") + QString(1000, QLatin1Char(' ')) + QStringLiteral("cm")), 20.0);
}

TEST_F(UnitConverter, follows_the_display_unit_and_tells_of_real_changes_only) {
    int told = 0;
    const QObject whileTesting;
    QObject::connect(&lengths, &LyqUnitConverter::displayUnitChanged, &whileTesting, [&] { ++told; });
    EXPECT_EQ(lengths.getDisplayUnitAbbr(), QStringLiteral("mm"));
    units.setDisplayUnit(Lyr::Length, Lyr::Inch);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(lengths.getDisplayUnitAbbr(), QStringLiteral("in"));
    EXPECT_EQ(lengths.internalToDisplay(25.4), 1.0);
    EXPECT_EQ(lengths.displayToInternal(2.0), 50.8);
    EXPECT_EQ(read(QStringLiteral("2")), 50.8);
    units.setDisplayUnit(Lyr::Length, Lyr::Inch);
    units.setDisplayUnit(Lyr::Area, Lyr::SquareInch);
    lengths.setQuantity(Lyr::Length);
    EXPECT_EQ(told, 1);
    lengths.setQuantity(Lyr::Area);
    EXPECT_EQ(told, 2);
    EXPECT_EQ(lengths.getDisplayUnit(), Lyr::SquareInch);
}

TEST_F(UnitConverter, angles_are_shown_in_degrees_and_plain_numbers_without_unit) {
    QLocale::setDefault(QLocale::c());
    LyqUnitConverter angles(Lyr::Angle);
    EXPECT_EQ(angles.internalToDisplayString(1.5707963267948966), QStringLiteral("90"));
    EXPECT_EQ(static_cast<float>(angles.unitStringToInternal(QStringLiteral("90"))), 1.5707964f);
    LyqUnitConverter numbers(Lyr::Number);
    EXPECT_EQ(numbers.getDisplayUnitAbbr(), QString());
    EXPECT_EQ(numbers.internalToDisplayString(42.0, LyqUnitConverter::WithUnit), QStringLiteral("42"));
    EXPECT_EQ(numbers.unitStringToInternal(QStringLiteral("42")), 42.0);
}

TEST_F(UnitConverter, a_unit_of_another_quantity_is_no_display_unit) {
    EXPECT_FALSE(units.setDisplayUnit(Lyr::Length, Lyr::SquareInch));
    EXPECT_FALSE(units.setDisplayUnit(Lyr::Number, Lyr::Inch));
    EXPECT_EQ(units.getDisplayUnit(Lyr::Length), Lyr::Millimeter);
    EXPECT_EQ(units.getDisplayUnit(Lyr::Number), Lyrenum(-1));
}

TEST_F(UnitConverter, listeners_of_the_application_hear_of_changed_units) {
    struct Ear : LyrIOC {
        int heard = 0;
        bool iocCallback(Message& message) override {
            heard += message.getInitialSender() == &LyqApplication::instance().object() &&
                     message.getPropertyID() == Lyr::DisplayUnitList;
            return LyrIOC::iocCallback(message);
        }
    } ear;
    const LyrObjectIOCPtr application(&ear, &LyqApplication::instance().object());
    units.setInchSystem(true);
    EXPECT_EQ(ear.heard, 1);
    units.setInchSystem(true);
    EXPECT_EQ(ear.heard, 1);
}
