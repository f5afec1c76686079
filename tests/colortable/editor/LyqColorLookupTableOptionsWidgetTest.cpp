#include <colortable/ColortableIdentifiers.h>
#include <colortable/editor/LyqColorLookupTableOptionsWidget.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LyqLineEdit.h>
#include <lys_core/LyrApplicationObject.h>

#include <QCheckBox>
#include <QCoreApplication>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QUndoStack>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <limits>
#include <string>
#include <vector>

namespace {

using Range = LyrValuePair<float>;

constexpr float FLOAT_MAX = std::numeric_limits<float>::max();

class TableOptions : private ToolkitApplication, public testing::Test {
protected:
    TableOptions() {
        QLocale::setDefault(QLocale::c());
        panel.setTable(table.get());
        panel.setDataRange({2.0f, 10.0f});
        panel.show();
        settle();
        history().clear();
    }
    ~TableOptions() override {
        history().clear();
        LyqApplication::instance().displayUnits().setInchSystem(false);
    }

    static QUndoStack& history() { return LyqApplication::instance().undoStack(); }
    static void settle() {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }
    template <class T>
    T& control(const char* name) {
        T* found = panel.findChild<T*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }
    LyqComboBox& quantity() { return control<LyqComboBox>("mQuantityComboBox"); }
    LyqLineEdit& lower() { return control<LyqLineEdit>("mMaximumRangeLowerLineEdit"); }
    LyqLineEdit& upper() { return control<LyqLineEdit>("mMaximumRangeUpperLineEdit"); }
    QPushButton& fit() { return control<QPushButton>("mFitPushButton"); }
    QString message() { return control<QLabel>("mMessageLabel").text(); }

    void enter(LyqLineEdit& line, const char* text) {
        line.selectAll();
        line.insert(QString::fromUtf8(text));
        Q_EMIT line.textEdited(line.text());
        Q_EMIT line.editingFinished();
        settle();
    }
    Range limits() const { return lyrGetValue(table.get(), Lyr::MaximumRange, Range{0, 0}); }
    std::vector<float> positions() const {
        LyrValueArrayOPCache<float> cache;
        cache.load(table.get(), Lyr::PositionList);
        return cache.items();
    }
    void setPositions(const std::vector<float>& items) {
        LyrValueArrayOPCache<float> cache;
        cache.items() = items;
        ASSERT_TRUE(cache.store(table.get(), Lyr::PositionList));
    }

    LyrObjectRefPtr table{"LyrColorLookupTable", Lyr::DocumentScope};
    LyqColorLookupTableOptionsWidget panel;
};

}  // namespace

TEST_F(TableOptions, show_what_the_table_has) {
    EXPECT_EQ(quantity().currentText(), "Length");
    EXPECT_FALSE(control<QCheckBox>("mFiniteBelowCheckBox").isChecked());
    EXPECT_FALSE(control<QCheckBox>("mFiniteAboveCheckBox").isChecked());
    EXPECT_EQ(lower().text(), "");
    EXPECT_EQ(upper().text(), "");
    EXPECT_EQ(control<QLabel>("mDataRangeLabel").text(), "Data from 2 mm to 10 mm");
    lyrSetValue(table.get(), Lyr::Quantity, Lyr::Number);
    lyrSetValue(table.get(), Lyr::FiniteMode, LyrValuePair<Lyrenum>{0, 1});
    lyrSetValue(table.get(), Lyr::MaximumRange, Range{-1.5f, FLOAT_MAX});
    settle();
    EXPECT_EQ(quantity().currentText(), "Number");
    EXPECT_TRUE(control<QCheckBox>("mFiniteAboveCheckBox").isChecked());
    EXPECT_EQ(lower().text(), "-1.5");
    EXPECT_EQ(upper().text(), "");
    EXPECT_EQ(history().count(), 0);
}

TEST_F(TableOptions, the_quantity_is_one_step_that_undo_takes_back) {
    const int angle = quantity().findText("Angle");
    ASSERT_GE(angle, 0);
    quantity().setCurrentIndex(angle);
    Q_EMIT quantity().activated(angle);
    EXPECT_EQ(lyrGetValue<Lyrenum>(table.get(), Lyr::Quantity, -1), Lyr::Angle);
    ASSERT_EQ(history().count(), 1);
    EXPECT_EQ(history().text(0), "Change quantity");
    Q_EMIT quantity().activated(angle);
    EXPECT_EQ(history().count(), 1) << "it is chosen already";
    ASSERT_TRUE(LyqApplication::instance().undo());
    settle();
    EXPECT_EQ(lyrGetValue<Lyrenum>(table.get(), Lyr::Quantity, -1), Lyr::Length);
    EXPECT_EQ(quantity().currentText(), "Length");
    ASSERT_TRUE(LyqApplication::instance().redo());
    EXPECT_EQ(lyrGetValue<Lyrenum>(table.get(), Lyr::Quantity, -1), Lyr::Angle);
}

TEST_F(TableOptions, each_end_is_made_black_by_a_step_of_its_own) {
    const auto mode = [&] { return lyrGetValue(table.get(), Lyr::FiniteMode, LyrValuePair<Lyrenum>{-1, -1}); };
    control<QCheckBox>("mFiniteBelowCheckBox").click();
    EXPECT_EQ(mode(), (LyrValuePair<Lyrenum>{1, 0}));
    control<QCheckBox>("mFiniteAboveCheckBox").click();
    EXPECT_EQ(mode(), (LyrValuePair<Lyrenum>{1, 1}));
    EXPECT_EQ(history().count(), 2);
    LyqApplication::instance().undo();
    EXPECT_EQ(mode(), (LyrValuePair<Lyrenum>{1, 0}));
    LyqApplication::instance().undo();
    settle();
    EXPECT_EQ(mode(), (LyrValuePair<Lyrenum>{0, 0}));
    EXPECT_FALSE(control<QCheckBox>("mFiniteBelowCheckBox").isChecked());
}

TEST_F(TableOptions, limits_are_typed_in_any_unit_and_emptied_to_none) {
    QLocale::setDefault(QLocale(QLocale::German));
    enter(lower(), "-1,5 mm");
    enter(upper(), "2 in");
    QLocale::setDefault(QLocale::c());
    EXPECT_EQ(limits(), (Range{-1.5f, 50.8f}));
    EXPECT_EQ(history().count(), 2);
    EXPECT_EQ(history().text(1), "Change maximum range");
    EXPECT_EQ(message(), "");
    enter(lower(), "");
    EXPECT_EQ(limits(), (Range{-FLOAT_MAX, 50.8f}));
    LyqApplication::instance().undo();
    LyqApplication::instance().undo();
    settle();
    EXPECT_EQ(limits(), (Range{-1.5f, FLOAT_MAX}));
    EXPECT_EQ(upper().text(), "");
}

TEST_F(TableOptions, what_is_no_limit_is_refused_with_a_reason) {
    lyrSetValue(table.get(), Lyr::MaximumRange, Range{1.0f, 5.0f});
    settle();
    for (const char* wrong : {"abc", "nan", "inf", "1e39", "3 kg", "5", "6 mm"}) {
        enter(lower(), wrong);
        EXPECT_EQ(limits(), (Range{1.0f, 5.0f})) << wrong;
        EXPECT_EQ(lower().text(), "1 mm") << wrong;
        EXPECT_TRUE(message().contains(wrong)) << message().toStdString();
    }
    EXPECT_EQ(history().count(), 0);
    enter(lower(), "2");
    EXPECT_EQ(message(), "");
    EXPECT_EQ(limits(), (Range{2.0f, 5.0f}));
}

TEST_F(TableOptions, have_room_for_a_message_about_any_text) {
    panel.resize(panel.sizeHint());
    settle();
    enter(upper(), std::string(5000, 'x').c_str());
    const auto& label = control<QLabel>("mMessageLabel");
    EXPECT_FALSE(message().isEmpty());
    EXPECT_LE(label.heightForWidth(label.width()), label.height());
}

TEST_F(TableOptions, a_limit_that_is_left_as_it_reads_is_not_rounded) {
    lyrSetValue(table.get(), Lyr::MaximumRange, Range{1.0f / 3.0f, 5.0f});
    settle();
    EXPECT_EQ(lower().text(), "0.333333 mm");
    Q_EMIT lower().editingFinished();
    EXPECT_EQ(limits().first, 1.0f / 3.0f);
    EXPECT_EQ(history().count(), 0);
}

TEST_F(TableOptions, a_text_being_typed_is_left_alone_until_the_limit_changes) {
    lower().insert("12");
    panel.update();
    settle();
    EXPECT_EQ(lower().text(), "12");
    lyrSetValue(table.get(), Lyr::MaximumRange, Range{7.0f, FLOAT_MAX});
    settle();
    EXPECT_EQ(lower().text(), "7 mm");
}

TEST_F(TableOptions, follow_the_display_unit) {
    lyrSetValue(table.get(), Lyr::MaximumRange, Range{25.4f, FLOAT_MAX});
    LyqApplication::instance().displayUnits().setInchSystem(true);
    settle();
    EXPECT_EQ(lower().text(), "1 in");
    EXPECT_EQ(control<QLabel>("mDataRangeLabel").text(), "Data from 0.0787402 in to 0.393701 in");
}

TEST_F(TableOptions, fitting_moves_the_boundaries_linearly_onto_the_data) {
    setPositions({-1.0f, -1.0f, 0.0f, 0.5f, 3.0f});
    fit().click();
    // [-1, 3] onto [2, 10]: twice the distance from -1, beyond 2.
    EXPECT_EQ(positions(), (std::vector<float>{2.0f, 2.0f, 4.0f, 5.0f, 10.0f}));
    ASSERT_EQ(history().count(), 1);
    EXPECT_EQ(history().text(0), "Fit to data");
    EXPECT_EQ(message(), "");
    LyqApplication::instance().undo();
    EXPECT_EQ(positions(), (std::vector<float>{-1.0f, -1.0f, 0.0f, 0.5f, 3.0f}));
}

TEST_F(TableOptions, fitting_twice_makes_one_step) {
    fit().click();
    fit().click();
    EXPECT_EQ(history().count(), 1);
}

TEST_F(TableOptions, fitting_reaches_the_ends_of_the_data_exactly) {
    setPositions({0.1f, 0.3f, 0.7f});
    panel.setDataRange({-FLOAT_MAX, FLOAT_MAX});
    settle();
    fit().click();
    EXPECT_EQ(positions().front(), -FLOAT_MAX);
    EXPECT_EQ(positions().back(), FLOAT_MAX);
    panel.setDataRange({0.1f, 0.7f});
    settle();
    fit().click();
    EXPECT_EQ(positions().front(), 0.1f);
    EXPECT_EQ(positions().back(), 0.7f);
}

TEST_F(TableOptions, fitting_stays_inside_the_maximum_range) {
    lyrSetValue(table.get(), Lyr::MaximumRange, Range{4.0f, 8.0f});
    fit().click();
    EXPECT_EQ(positions(), (std::vector<float>{4.0f, 8.0f}));
    EXPECT_NE(message(), "");
    lyrSetValue(table.get(), Lyr::MaximumRange, Range{50.0f, 80.0f});
    fit().click();
    EXPECT_EQ(positions(), (std::vector<float>{4.0f, 8.0f})) << "nothing of the data lies in there";
    EXPECT_NE(message(), "");
    EXPECT_EQ(history().count(), 1);
}

TEST_F(TableOptions, cannot_be_fitted_without_a_range_of_data_or_table) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    for (const Range& none : {Range{1.0f, 1.0f}, Range{2.0f, 1.0f}, Range{nan, 1.0f}, Range{0.0f, infinity}}) {
        panel.setDataRange(none);
        settle();
        EXPECT_FALSE(fit().isEnabled());
        panel.fitToData();
    }
    panel.setDataRange({2.0f, 10.0f});
    for (const std::vector<float>& flat : {std::vector<float>{}, {1.0f}, {1.0f, 1.0f}, {0.0f, infinity}}) {
        setPositions(flat);
        panel.fitToData();
        EXPECT_EQ(positions(), flat);
        EXPECT_NE(message(), "");
    }
    EXPECT_EQ(history().count(), 0);
}

TEST_F(TableOptions, without_a_table_nothing_can_be_changed) {
    panel.setTable(nullptr);
    settle();
    EXPECT_EQ(panel.getTable(), nullptr);
    for (const char* name : {"mQuantityComboBox", "mFiniteBelowCheckBox", "mFiniteAboveCheckBox",
                             "mMaximumRangeLowerLineEdit", "mMaximumRangeUpperLineEdit", "mFitPushButton"}) {
        EXPECT_FALSE(control<QWidget>(name).isEnabled()) << name;
    }
    Q_EMIT quantity().activated(2);
    panel.fitToData();
    enter(lower(), "3");
    EXPECT_EQ(history().count(), 0);
    panel.setTable(table.get());
    settle();
    EXPECT_TRUE(fit().isEnabled());
}
