#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrUnitIdentifiers.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqSpinBox.h>
#include <lys_core/LyrApplicationObject.h>

#include <QLineEdit>
#include <QLocale>
#include <QSignalBlocker>
#include <QToolTip>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr double FLOAT_MAX = std::numeric_limits<float>::max();

class SpinBox : private ToolkitApplication, public testing::Test {
protected:
    SpinBox() {
        QLocale::setDefault(QLocale::c());
        QObject::connect(&box, &LyqSpinBox::valueChanged, [this](double value) { told.push_back(value); });
        QObject::connect(&box, &LyqSpinBox::refused, [this](const QString& reason) { refusals.append(reason); });
        box.setRange(-1000.0, 1000.0);
    }
    ~SpinBox() override {
        QLocale::setDefault(QLocale::c());
        LyqApplication::instance().displayUnits().setInchSystem(false);
    }

    QLineEdit& line() { return *box.findChild<QLineEdit*>(); }
    QString text() { return line().text(); }

    void key(int code, const QString& typed = {}, QEvent::Type type = QEvent::KeyPress) {
        QKeyEvent event(type, code, Qt::NoModifier, typed);
        QCoreApplication::sendEvent(&box, &event);
    }
    /** Types over what is there, without Return. */
    void type(const QString& typed) {
        box.selectAll();
        key(Qt::Key_Delete);
        for (const QChar c : typed) {
            key(0, QString(c));
        }
    }
    void enter(const QString& typed) {
        type(typed);
        key(Qt::Key_Return, QStringLiteral("\r"));
    }

    LyqSpinBox box{nullptr, "mBox"};
    std::vector<double> told;
    QStringList refusals;
};

}  // namespace

TEST_F(SpinBox, a_value_that_the_user_did_not_touch_comes_back_as_it_was_set) {
    box.setPrecision(2);
    for (const double value : {1.0 / 3.0, 0.001, -7.123456789, 69.9999988079071, 1e-30, 999.99999999}) {
        box.setValue(value);
        EXPECT_EQ(box.value(), value);
    }
    EXPECT_EQ(text(), "1000");
    box.setValue(1.0 / 3.0);
    EXPECT_EQ(text(), "0.33");
    key(Qt::Key_Return, QStringLiteral("\r"));
    enter("0.33");
    EXPECT_EQ(box.value(), 1.0 / 3.0) << "what was typed is what was shown";
}

TEST_F(SpinBox, keeps_its_value_through_another_unit) {
    box.setQuantity(Lyr::Length);
    box.setPrecision(3);
    box.setValue(0.1);
    EXPECT_EQ(text(), "0.1 mm");
    told.clear();
    LyqApplication::instance().displayUnits().setInchSystem(true);
    EXPECT_EQ(text(), "0.004 in");
    EXPECT_EQ(box.value(), 0.1);
    EXPECT_TRUE(told.empty()) << "the value is the same";
    LyqApplication::instance().displayUnits().setInchSystem(false);
    EXPECT_EQ(text(), "0.1 mm");
    EXPECT_EQ(box.value(), 0.1);
}

TEST_F(SpinBox, reads_numbers_with_and_without_unit_in_the_users_locale_and_in_c) {
    box.setQuantity(Lyr::Length);
    box.setPrecision(5);
    QLocale::setDefault(QLocale(QLocale::German));
    enter("1,5 mm");
    EXPECT_EQ(box.value(), 1.5);
    EXPECT_EQ(text(), "1,5 mm");
    enter("2.5");
    EXPECT_EQ(box.value(), 2.5);
    enter("0.06 in");
    EXPECT_DOUBLE_EQ(box.value(), 1.524);
    EXPECT_EQ(text(), "1,524 mm");
    enter("3 cm");
    EXPECT_EQ(box.value(), 30.0);
    EXPECT_TRUE(refusals.isEmpty());
    EXPECT_EQ(told, (std::vector<double>{1.5, 2.5, 1.524, 30.0}));
}

TEST_F(SpinBox, takes_a_number_when_it_is_complete) {
    box.setValue(12.0);
    told.clear();
    type("50");
    EXPECT_EQ(box.value(), 12.0);
    EXPECT_EQ(text(), "50");
    box.setValue(12.0);
    EXPECT_EQ(text(), "50") << "the value is there already: the text is left alone";
    key(Qt::Key_Return, QStringLiteral("\r"));
    EXPECT_EQ(told, (std::vector<double>{50.0}));
}

TEST_F(SpinBox, takes_a_number_when_the_box_is_left) {
    type("33");
    QFocusEvent leave(QEvent::FocusOut, Qt::TabFocusReason);
    QCoreApplication::sendEvent(&box, &leave);
    EXPECT_EQ(told, (std::vector<double>{33.0}));
}

TEST_F(SpinBox, escape_drops_what_is_being_typed) {
    box.setValue(12.0);
    told.clear();
    type("50");
    key(Qt::Key_Escape);
    EXPECT_EQ(text(), "12");
    key(Qt::Key_Return, QStringLiteral("\r"));
    EXPECT_EQ(box.value(), 12.0);
    EXPECT_TRUE(told.empty());
}

TEST_F(SpinBox, refuses_what_is_no_number_with_a_reason_and_shows_the_old_one) {
    box.setQuantity(Lyr::Length);
    box.setValue(12.0);
    told.clear();
    for (const char* wrong : {"abc", "", "nan", "inf", "-inf", "1e999", "1 kg", "1,5,5", "2000", "-1000.1", "1e300"}) {
        refusals.clear();
        enter(wrong);
        EXPECT_EQ(box.value(), 12.0) << wrong;
        EXPECT_EQ(text(), "12 mm") << wrong;
        ASSERT_EQ(refusals.size(), 1) << wrong;
        EXPECT_TRUE(refusals.first().contains(QString(wrong).trimmed())) << wrong;
    }
    EXPECT_TRUE(told.empty());
    enter("2000");
    EXPECT_TRUE(refusals.last().contains("-1000 mm") && refusals.last().contains("1000 mm")) << "the limits are told";
}

TEST_F(SpinBox, rounds_what_was_typed_to_its_precision_in_the_unit_shown) {
    box.setPrecision(0);
    enter("12.7");
    EXPECT_EQ(box.value(), 13.0);
    box.setPrecision(5);
    box.setQuantity(Lyr::Angle);
    box.setRange(0.0, 1.5707963267948966);
    enter("90");
    EXPECT_DOUBLE_EQ(box.value(), 1.5707963267948966) << "90 degrees lie inside, 1.57080 radians would not";
    enter("15.000004");
    EXPECT_DOUBLE_EQ(box.value(), 0.2617993877991494);
}

TEST_F(SpinBox, brings_set_values_between_its_limits) {
    box.setRange(1.0, 100.0);
    box.setValue(250.0);
    EXPECT_EQ(box.value(), 100.0);
    box.setValue(-std::numeric_limits<double>::infinity());
    EXPECT_EQ(box.value(), 1.0);
    box.setValue(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(box.value(), 1.0);
    box.setValue(50.0);
    told.clear();
    box.setMaximum(20.0);
    EXPECT_EQ(box.value(), 20.0);
    EXPECT_EQ(told, (std::vector<double>{20.0}));
    box.setMaximum(200.0);
    EXPECT_EQ(box.value(), 20.0) << "wider limits bring nothing back";
    EXPECT_EQ(box.minimum(), 1.0);
    EXPECT_EQ(box.maximum(), 200.0);
}

TEST_F(SpinBox, holds_every_float_and_nothing_beyond) {
    box.setPrecision(5);
    box.setQuantity(Lyr::Length);
    box.setRange(-3.4028235e38, 3.4028235e38);
    for (const double value : {FLOAT_MAX, -FLOAT_MAX, 1.0e30, 1.17549435e-38, 0.0}) {
        box.setValue(value);
        EXPECT_EQ(box.value(), value);
        EXPECT_TRUE(std::isfinite(static_cast<float>(box.value())));
    }
    box.setValue(3.4028235e38);
    EXPECT_EQ(box.value(), FLOAT_MAX);
    enter("1e39");
    EXPECT_EQ(refusals.size(), 1);
    EXPECT_LT(box.sizeHint().width(), 40 * box.fontMetrics().horizontalAdvance('0'))
        << "its width is not that of its limits";
}

TEST_F(SpinBox, steps_in_the_unit_shown_from_what_is_typed) {
    box.setPrecision(0);
    box.setValue(69.9999988);
    box.stepBy(1);
    EXPECT_EQ(box.value(), 71.0);
    type("20");
    key(Qt::Key_Down);
    EXPECT_EQ(box.value(), 19.0);
    box.setRange(0.0, 20.0);
    box.stepBy(5);
    EXPECT_EQ(box.value(), 20.0);
}

TEST_F(SpinBox, shows_a_unit_of_its_own_whatever_the_user_chose) {
    box.setQuantity(Lyr::Angle);
    LyrDisplayUnits& units = LyqApplication::instance().displayUnits();
    const Lyrenum degree("Degree", true);
    units.setDisplayUnit(Lyr::Angle, Lyr::Radian);
    box.setRange(0.0, 2.0);
    box.setValue(0.5);
    EXPECT_EQ(text(), "0.5 rad");
    box.setUnit(degree);
    EXPECT_EQ(box.getUnit(), degree);
    EXPECT_EQ(text(), QString::fromUtf8("28.65 \u00b0"));
    EXPECT_EQ(box.value(), 0.5);
    box.setUnit(-1);
    EXPECT_EQ(text(), "0.5 rad");
    units.setDisplayUnit(Lyr::Angle, degree);
}

TEST_F(SpinBox, is_silent_while_its_signals_are_blocked) {
    {
        const QSignalBlocker silent(&box);
        box.setValue(42.0);
    }
    EXPECT_TRUE(told.empty());
    EXPECT_EQ(box.value(), 42.0);
    EXPECT_EQ(text(), "42");
}

TEST_F(SpinBox, a_wheel_over_a_box_without_focus_changes_nothing) {
    box.setValue(5.0);
    QWheelEvent wheel(QPointF(2, 2), QPointF(2, 2), QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&box, &wheel);
    EXPECT_EQ(box.value(), 5.0);
}

TEST_F(SpinBox, tells_limits_value_and_decimals_as_properties_in_the_internal_unit) {
    box.setQuantity(Lyr::Length);
    box.setUnit(Lyr::Inch);
    box.setRange(-25.4, 254.0);
    box.setDecimals(5);
    box.setValue(12.7);
    EXPECT_EQ(box.property("minimum").toDouble(), -25.4);
    EXPECT_EQ(box.property("maximum").toDouble(), 254.0);
    EXPECT_EQ(box.property("value").toDouble(), 12.7);
    EXPECT_EQ(box.property("decimals").toInt(), 5);
}

TEST_F(SpinBox, a_limit_typed_as_it_reads_is_the_exact_limit) {
    box.setPrecision(2);
    box.setRange(1.0 / 3.0 + 0.01, 2.0 / 3.0);
    enter("0.67");
    EXPECT_EQ(box.value(), 2.0 / 3.0);
    enter("0.34");
    EXPECT_EQ(box.value(), 1.0 / 3.0 + 0.01);
    enter("0.5");
    enter("0.6666");
    EXPECT_EQ(box.value(), 2.0 / 3.0);
    EXPECT_TRUE(refusals.isEmpty());
    enter("0.68");
    EXPECT_EQ(refusals.size(), 1);
    EXPECT_EQ(box.value(), 2.0 / 3.0);
}

TEST_F(SpinBox, the_reason_of_a_refusal_is_still_shown_after_the_focus_moved_on) {
    QWidget window;
    LyqSpinBox left(&window);
    QLineEdit right(&window);
    right.move(0, 100);
    window.resize(200, 200);
    window.show();
    window.activateWindow();
    left.setFocus();
    QCoreApplication::processEvents();
    left.selectAll();
    QKeyEvent letter(QEvent::KeyPress, 0, Qt::NoModifier, QStringLiteral("x"));
    QCoreApplication::sendEvent(&left, &letter);
    right.setFocus();
    QCoreApplication::processEvents();
    EXPECT_TRUE(right.hasFocus());
    EXPECT_TRUE(QToolTip::isVisible());
    EXPECT_TRUE(QToolTip::text().startsWith(QStringLiteral("\"x\" is no number"))) << QToolTip::text().toStdString();
    QToolTip::hideText();
}
