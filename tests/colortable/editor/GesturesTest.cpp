// Random sequences of what hands can do to the editor.
#include <colortable/editor/LyqColorLookupTableCreateSmoothDialog.h>
#include <colortable/editor/LyqColorLookupTableCreateSteppedDialog.h>
#include <lys_core/LyqMessageBox.h>

#include <QCheckBox>
#include <QColorDialog>
#include <QInputDialog>
#include <QPushButton>

#include <algorithm>
#include <cmath>
#include <random>

#include "EditorFixture.h"

namespace {

/** How much of the long run ("200 of 200") is done; the environment may ask for more. */
int countFrom(const char* variable, int fallback) {
    const int count = qEnvironmentVariableIntValue(variable);
    return count > 0 ? count : fallback;
}

/** What undo has to bring back. */
struct Content {
    std::vector<float> positions;
    std::vector<LyrObject*> sections;
    std::vector<int> types;
    std::vector<Points> points;
    int autoLabel = 0;
    int autoScale = 0;

    explicit Content(const LyrObject* table) : positions(positionsOf(table)), sections(sectionsOf(table)) {
        for (const LyrObject* section : sections) {
            types.push_back(int(typeOf(section)));
            for (const Lyrenum channel :
                 {Lyr::PointListRed, Lyr::PointListGreen, Lyr::PointListBlue, Lyr::PointListAlpha}) {
                points.push_back(pointsOf(section, channel));
            }
        }
        autoLabel = lyrGetValue(table, Lyr::AutoLabel, Lyrenum(-1));
        autoScale = lyrGetValue(table, Lyr::AutoScale, Lyrenum(-1));
    }
    bool operator==(const Content&) const = default;
};

class Gestures : public EditorFixture {
protected:
    int below(int count) { return std::uniform_int_distribution<int>(0, count - 1)(random); }
    double number() { return std::uniform_real_distribution<double>(-20.0, 20.0)(random); }
    int anyRow() { return below(rows.numRows()); }

    QString anyText() {
        const QStringList odd{"", "abc", "nan", "inf", "1e39", "-1e-30", "3 in", "2,5", "1e5", "0", "-0", "5 kg"};
        return below(4) == 0 ? odd[below(static_cast<int>(odd.size()))] : QString::number(number());
    }

    void typeBound() { type(anyRow(), below(2), anyText()); }

    void leaveOpen() {
        auto* line = openEditor<QLineEdit>(anyRow(), below(2));
        QTest::keyClicks(line, anyText());
    }

    void chooseType() {
        const int row = anyRow();
        choose(row, below(combo(row)->count()));
    }

    void splitRow() {
        const int row = anyRow();
        selectRows({row});
        if (rows.numRows() < 20) {
            split(row);
        }
    }

    void mergeRows() {
        const int row = anyRow();
        std::vector<int> selected;
        for (int i = row; i < std::min(row + 1 + below(4), rows.numRows()); ++i) {
            selected.push_back(i);
        }
        selectRows(selected);
        merge(row);
    }

    void chooseColor() {
        const int row = anyRow();
        const Lyrenum type = typeOf(sectionsOf(table.get())[static_cast<std::size_t>(rows.numRows() - 1 - row)]);
        const bool accept = below(3) != 0;
        if (type == Lyr::Constant || type == Lyr::Gradient || type == Lyr::Continue) {
            const QColor color(below(256), below(256), below(256), below(256));
            whenModal<QColorDialog>([=](QColorDialog& dialog) {
                dialog.setCurrentColor(color);
                accept ? dialog.accept() : dialog.reject();
            });
        } else {
            const double alpha = std::abs(number()) / 20.0;
            whenModal<QInputDialog>([=](QInputDialog& dialog) {
                dialog.setDoubleValue(alpha);
                accept ? dialog.accept() : dialog.reject();
            });
        }
        rows.scrollTo(rows.model()->index(row, DETAIL));
        QPoint position = cell(row, DETAIL).center();
        position.rx() += below(2) ? 9 : -9;
        QTest::mouseDClick(rows.viewport(), Qt::LeftButton, {}, position);
    }

    void toggle() {
        QTest::mouseClick(find<QCheckBox>(below(2) ? "mAutoLabelCheckBox" : "mAutoScaleCheckBox"), Qt::LeftButton);
    }

    /** Sometimes with parameters that are refused. */
    void create() {
        const float from = static_cast<float>(number());
        const float length = below(4) ? static_cast<float>(below(9) + 1) : -1.0f;
        const Lyrenum scheme = below(2) ? Lyr::Rainbow : Lyr::HueCycle;
        if (length < 0) {
            whenModal<LyqMessageBox>([](LyqMessageBox& box) { box.accept(); });
        }
        if (below(2)) {
            editor.setCreateSmoothParams(from, from + length, scheme);
            whenModal<LyqColorLookupTableCreateSmoothDialog>([](auto& dialog) { dialog.applySlot(); });
            find<QPushButton>("mCreateSmoothPushButton")->click();
        } else {
            editor.setCreateSteppedParams(from, from + length, 1.0f, scheme);
            whenModal<LyqColorLookupTableCreateSteppedDialog>([](auto& dialog) { dialog.applySlot(); });
            find<QPushButton>("mCreateSteppedPushButton")->click();
        }
    }

    void changeUnit() { LyqApplication::instance().displayUnits().setInchSystem(below(2) == 1); }

    void gesture() {
        switch (below(12)) {
            case 0:
            case 1:
                return typeBound();
            case 2:
                return leaveOpen();
            case 3:
                return chooseType();
            case 4:
                return splitRow();
            case 5:
                return mergeRows();
            case 6:
                return chooseColor();
            case 7:
                return toggle();
            case 8:
                return create();
            case 9:
                return changeUnit();
            case 10:
                LyqApplication::instance().undo();
                return;
            default:
                LyqApplication::instance().redo();
                return;
        }
    }

    QString boundText(const std::vector<float>& positions, long long index) const {
        if (index < 0) {
            return QStringLiteral("-inf");
        }
        if (index >= static_cast<long long>(positions.size())) {
            return QStringLiteral("+inf");
        }
        const bool inches = LyqApplication::instance().displayUnits().getDisplayUnit(Lyr::Length) == Lyr::Inch;
        const double value = positions[static_cast<std::size_t>(index)];
        return QString::number(inches ? value * 10.0 / 254.0 : value, 'g', 6);
    }

    void expectTableValid() {
        const std::vector<float> positions = positionsOf(table.get());
        ASSERT_GE(positions.size(), 2u);
        ASSERT_EQ(sectionsOf(table.get()).size(), positions.size() + 1);
        EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end()));
        EXPECT_TRUE(std::all_of(positions.begin(), positions.end(), [](float value) { return std::isfinite(value); }));
    }

    void expectPanelShowsTable() {
        const std::vector<float> positions = positionsOf(table.get());
        const auto sections = sectionsOf(table.get());
        ASSERT_EQ(rows.numRows(), static_cast<int>(sections.size()));
        for (int row = 0; row < rows.numRows(); ++row) {
            const auto index = static_cast<long long>(sections.size()) - 1 - row;
            for (const int bound : {FROM, TO}) {
                if (!rows.isEditing(row, bound)) {
                    EXPECT_EQ(rows.text(row, bound), boundText(positions, bound == TO ? index : index - 1));
                }
            }
            const Lyrenum type = typeOf(sections[static_cast<std::size_t>(index)]);
            const QString name = type == Lyr::Continue          ? "Continue"
                                 : type == Lyr::Constant        ? "Constant"
                                 : type == Lyr::Gradient        ? "Gradient"
                                 : type == Lyr::Rainbow         ? "Rainbow"
                                 : type == Lyr::InvertedRainbow ? "Reverse Rainbow"
                                                                : "Hue cycle";
            EXPECT_EQ(rows.text(row, TYPE), name);
        }
        EXPECT_EQ(find<QCheckBox>("mAutoLabelCheckBox")->isChecked(),
                  lyrGetValue(table.get(), Lyr::AutoLabel, Lyrenum(-1)) == Lyrenum(1));
        EXPECT_EQ(find<QCheckBox>("mAutoScaleCheckBox")->isChecked(),
                  lyrGetValue(table.get(), Lyr::AutoScale, Lyrenum(-1)) == Lyrenum(1));
    }

    void runSequence(int length) {
        const Content first(table.get());
        for (int i = 0; i < length && !HasFailure(); ++i) {
            gesture();
            settle();
            expectTableValid();
            expectPanelShowsTable();
        }
        rows.cancelEdit();
        settle();
        const Content last(table.get());
        int undone = 0;
        while (LyqApplication::instance().undo()) {
            ++undone;
            expectTableValid();
        }
        settle();
        EXPECT_EQ(Content(table.get()), first);
        expectPanelShowsTable();
        for (int i = 0; i < undone; ++i) {
            EXPECT_TRUE(LyqApplication::instance().redo());
        }
        settle();
        EXPECT_EQ(Content(table.get()), last);
    }

    std::mt19937 random;
};

}  // namespace

TEST_F(Gestures, any_sequence_leaves_a_valid_table_shown_as_it_is_and_can_be_undone_and_redone) {
    ExpectedErrors refused(Lyr::InvalidParameters);
    const int sequences = countFrom("LYS_GESTURE_SEQUENCES", 12);
    const int length = countFrom("LYS_GESTURE_LENGTH", 60);
    for (int i = 0; i < sequences && !HasFailure(); ++i) {
        SCOPED_TRACE(testing::Message() << "sequence " << i);
        random.seed(static_cast<unsigned int>(i));
        LyqApplication::instance().displayUnits().setInchSystem(false);
        show(newTable());
        LyqApplication::instance().undoStack().clear();
        runSequence(length);
    }
}
