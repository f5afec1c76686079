// Random sequences of what hands can do to the editor.
#include <colortable/editor/LyqColorLookupTableCreateSmoothDialog.h>
#include <colortable/editor/LyqColorLookupTableCreateSteppedDialog.h>
#include <colortable/editor/PixmapTableItem_p.h>
#include <colortable/legend/SectionImage.h>
#include <lys_core/LyqMessageBox.h>

#include <QCheckBox>
#include <QColorDialog>
#include <QInputDialog>
#include <QPushButton>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <utility>

#include "EditorFixture.h"

namespace {

constexpr float LARGEST = std::numeric_limits<float>::max();

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
    std::pair<int, int> finite;
    std::pair<float, float> largest;

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
        const auto ends = lyrGetValue(table, Lyr::FiniteMode, LyrValuePair<Lyrenum>{-1, -1});
        finite = {int(ends.first), int(ends.second)};
        const auto range = lyrGetValue(table, Lyr::MaximumRange, LyrValuePair<float>{0.0f, 0.0f});
        largest = {range.first, range.second};
    }
    bool operator==(const Content&) const = default;
};

class Gestures : public EditorFixture {
protected:
    int below(int count) { return std::uniform_int_distribution<int>(0, count - 1)(random); }
    double number() { return std::uniform_real_distribution<double>(-20.0, 20.0)(random); }
    /** One that is shown; the inner ones always are. */
    int anyRow() {
        const int row = below(rows.numRows());
        return rows.isRowHidden(row) ? 1 : row;
    }

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
            if (!rows.isRowHidden(i)) {
                selected.push_back(i);
            }
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

    /** What another panel does. */
    void changeOptions() {
        const LyqApplication::UserActionScope action(QStringLiteral("Elsewhere"));
        if (below(2)) {
            lyrSetValue(table.get(), Lyr::FiniteMode, LyrValuePair<Lyrenum>{below(2), below(2)});
        } else {
            // Wide enough for what create() builds.
            const LyrValuePair<float> ranges[] = {{-25.0f, 40.0f}, {-30.5f, 1e6f}, {-LARGEST, LARGEST}};
            lyrSetValue(table.get(), Lyr::MaximumRange, ranges[below(3)]);
        }
    }

    void gesture() {
        switch (below(13)) {
            case 12:
                return changeOptions();
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
        const bool lower = index < 0;
        if (lower || index >= static_cast<long long>(positions.size())) {
            const auto range = lyrGetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>{0.0f, 0.0f});
            const float limit = lower ? range.first : range.second;
            return std::abs(limit) < LARGEST ? QString::number(double(limit), 'g', 6)
                                             : QString::fromLatin1(lower ? "-inf" : "+inf");
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

    /** The upper half over white, the lower one over black, as the section colours its interval. */
    void expectSwatch(int row, const std::vector<LyrObject*>& sections, std::size_t index) {
        if (rows.isRowHidden(row)) {
            return;
        }
        const auto at = [&](std::size_t i) {
            return i < sections.size() ? static_cast<const LyrColorLookupTable::Section*>(sections[i]) : nullptr;
        };
        const QImage shown = static_cast<PixmapTableItem&>(*rows.item(row, DETAIL)).pixmap().toImage();
        const int width = shown.width();
        const int height = shown.height();
        ASSERT_EQ(width, 32);
        ASSERT_EQ(height, rows.rowHeight(row));
        for (const int x : {0, 13, 31}) {
            LyrRGBA<float> color(0.0f, 0.0f, 0.0f, 0.0f);
            at(index)->getColor({0.0f, 31.0f}, static_cast<float>(x), color, at(index - 1), at(index + 1));
            EXPECT_EQ(shown.pixel(x, 0), lys::legend::overWhite(color)) << row;
            EXPECT_EQ(shown.pixel(x, height - 1), lys::legend::overBlack(color)) << row;
        }
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
            expectSwatch(row, sections, static_cast<std::size_t>(index));
        }
        const auto finite = lyrGetValue(table.get(), Lyr::FiniteMode, LyrValuePair<Lyrenum>{0, 0});
        EXPECT_EQ(rows.isRowHidden(0), finite.second == Lyrenum(1));
        EXPECT_EQ(rows.isRowHidden(rows.numRows() - 1), finite.first == Lyrenum(1));
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
