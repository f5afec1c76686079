// What the editor writes when cells, colours and rows are edited.

#include <QColorDialog>
#include <QInputDialog>
#include <QToolTip>

#include "EditorFixture.h"

namespace {

constexpr const char* STEP_NAME = "Change colorbar settings";

class Editing : public EditorFixture {
protected:
    std::vector<float> positions() { return positionsOf(table.get()); }
    LyrObject* section(std::size_t index) { return sectionOf(table.get(), index); }

    void doubleClick(int row, double part) {
        const QRect rect = cell(row, DETAIL);
        QTest::mouseDClick(rows.viewport(), Qt::LeftButton, {},
                           QPoint(rect.left() + static_cast<int>(rect.width() * part), rect.center().y()));
        settle();
    }
    /** Answers the colour dialog that opens next; notes the colour it starts with. */
    void answerColor(const QColor& color, bool accept = true) {
        whenModal<QColorDialog>([this, color, accept](QColorDialog& dialog) {
            offered = dialog.currentColor();
            ++colorDialogs;
            alphaOffered = dialog.testOption(QColorDialog::ShowAlphaChannel);
            EXPECT_EQ(dialog.parentWidget(), &editor);
            dialog.setCurrentColor(color);
            accept ? dialog.accept() : dialog.reject();
        });
    }
    void answerOpacity(double value, bool accept = true) {
        whenModal<QInputDialog>([this, value, accept](QInputDialog& dialog) {
            caption = dialog.windowTitle();
            label = dialog.labelText();
            opacity = dialog.doubleValue();
            EXPECT_EQ(dialog.doubleMinimum(), 0.0);
            EXPECT_EQ(dialog.doubleMaximum(), 1.0);
            EXPECT_EQ(dialog.doubleDecimals(), 2);
            dialog.setDoubleValue(value);
            accept ? dialog.accept() : dialog.reject();
        });
    }
    Points points(std::size_t index, Lyrenum channel) { return pointsOf(section(index), channel); }
    void expectPoints(std::size_t index, const Points& red, const Points& green, const Points& blue,
                      const Points& alpha) {
        EXPECT_EQ(points(index, Lyr::PointListRed), red);
        EXPECT_EQ(points(index, Lyr::PointListGreen), green);
        EXPECT_EQ(points(index, Lyr::PointListBlue), blue);
        EXPECT_EQ(points(index, Lyr::PointListAlpha), alpha);
    }

    QColor offered;
    int colorDialogs = 0;
    bool alphaOffered = false;
    QString caption;
    QString label;
    double opacity = -1.0;
    StepsSince steps;
};

}  // namespace

TEST_F(Editing, a_typed_bound_moves_the_position_it_stands_for) {
    type(1, TO, "5");
    EXPECT_EQ(positions(), (std::vector<float>{-1, 5}));
    type(0, FROM, "6");
    EXPECT_EQ(positions(), (std::vector<float>{-1, 6}));
    type(1, FROM, "2");
    EXPECT_EQ(positions(), (std::vector<float>{2, 6}));
    type(2, TO, "3");
    EXPECT_EQ(positions(), (std::vector<float>{3, 6}));
    EXPECT_EQ(column(FROM), (QStringList{"6", "3", "-inf"}));
    EXPECT_EQ(steps.names(), (QStringList{STEP_NAME, STEP_NAME, STEP_NAME, STEP_NAME}));
}

TEST_F(Editing, a_bound_beyond_its_neighbour_becomes_the_neighbour) {
    show(makeTable({0, 10, 20}, {Lyr::Constant, Lyr::Constant, Lyr::Constant, Lyr::Constant}));
    type(2, TO, "25");
    EXPECT_EQ(positions(), (std::vector<float>{0, 20, 20}));
    type(2, TO, "-5");
    EXPECT_EQ(positions(), (std::vector<float>{0, 0, 20}));
}

TEST_F(Editing, a_bound_outside_the_largest_range_becomes_its_limit) {
    lyrSetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>{-4.0f, 8.0f});
    type(1, FROM, "-9");
    type(1, TO, "9");
    EXPECT_EQ(positions(), (std::vector<float>{-4, 8}));
    type(1, TO, "1e39");
    EXPECT_EQ(positions(), (std::vector<float>{-4, 8}));
}

TEST_F(Editing, the_largest_range_comes_before_the_neighbours) {
    show(makeTable({20, 30, 40}, {Lyr::Constant, Lyr::Constant, Lyr::Constant, Lyr::Constant}));
    lyrSetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>{0.0f, 10.0f});
    settle();
    type(2, TO, "25");
    EXPECT_EQ(positions(), (std::vector<float>{20, 20, 40}));
}

TEST_F(Editing, a_list_that_was_not_ascending_is_put_right) {
    show(makeTable({5, 3, 4, 9}, {Lyr::Constant, Lyr::Constant, Lyr::Constant, Lyr::Constant, Lyr::Constant}));
    type(1, TO, "7");
    EXPECT_EQ(positions(), (std::vector<float>{5, 5, 5, 7}));
}

TEST_F(Editing, open_ends_cannot_be_typed_over) {
    type(0, TO, "5");
    type(2, FROM, "-5");
    EXPECT_EQ(positions(), (std::vector<float>{-1, 1}));
    EXPECT_EQ(rows.text(0, TO), QStringLiteral("+inf"));
    EXPECT_EQ(rows.text(2, FROM), QStringLiteral("-inf"));
    EXPECT_EQ(steps.names(), QStringList());
}

TEST_F(Editing, what_is_no_number_is_refused_and_the_old_text_comes_back) {
    for (const char* text : {"abc", "", "nan", "inf", "-inf", "1e39", "-1e39", "1e999", "1 2", "5 kg"}) {
        QToolTip::hideText();
        type(1, TO, QString::fromUtf8(text));
        EXPECT_EQ(rows.text(1, TO), QStringLiteral("1")) << text;
        EXPECT_TRUE(QToolTip::isVisible()) << text << ": why is shown";
        EXPECT_TRUE(QToolTip::text().contains(QString::fromUtf8(text))) << QToolTip::text().toStdString();
    }
    QToolTip::hideText();
    EXPECT_EQ(positions(), (std::vector<float>{-1, 1}));
    EXPECT_EQ(steps.names(), QStringList());
}

TEST_F(Editing, numbers_are_read_in_the_users_locale_with_units) {
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    type(1, TO, "1,5 mm");
    EXPECT_EQ(positions()[1], 1.5f);
    EXPECT_EQ(rows.text(1, TO), QStringLiteral("1,5"));
    type(1, TO, "2.5");
    EXPECT_EQ(positions()[1], 2.5f);
    type(1, TO, "0.5 in");
    EXPECT_EQ(positions()[1], 12.7f);
    LyqApplication::instance().displayUnits().setDisplayUnit(Lyr::Length, Lyr::Inch);
    settle();
    EXPECT_EQ(rows.text(1, TO), QStringLiteral("0,5"));
    type(1, TO, "2");
    EXPECT_EQ(positions()[1], 50.8f);
}

TEST_F(Editing, a_value_that_is_only_looked_at_keeps_all_its_digits) {
    setPositions(table.get(), {-1.0f, 1.0f / 3.0f});
    settle();
    auto* line = openEditor<QLineEdit>(1, TO);
    QTest::keyClick(line, Qt::Key_Return);
    settle();
    type(1, TO, rows.text(1, TO));
    // Also when the change is announced by somebody else.
    editor.tableValueChangedSlot(1, TO);
    EXPECT_EQ(positions()[1], 1.0f / 3.0f);
    EXPECT_EQ(steps.names(), QStringList());
}

TEST_F(Editing, an_edit_is_undone_and_redone_as_one_step) {
    type(1, TO, "5");
    ASSERT_TRUE(LyqApplication::instance().undo());
    settle();
    EXPECT_EQ(positions(), (std::vector<float>{-1, 1}));
    EXPECT_EQ(rows.text(1, TO), QStringLiteral("1"));
    ASSERT_TRUE(LyqApplication::instance().redo());
    settle();
    EXPECT_EQ(rows.text(1, TO), QStringLiteral("5"));
}

TEST_F(Editing, a_new_type_brings_its_points) {
    choose(1, 0);
    EXPECT_EQ(typeOf(section(1)), Lyr::Constant);
    expectPoints(1, {{0, 0}}, {{0, 0}}, {{0, 1}}, {{0, 1}});
    choose(1, 1);
    EXPECT_EQ(typeOf(section(1)), Lyr::Gradient);
    expectPoints(1, {{0, 0}, {0, 1}}, {{0, 0}, {0, 0}}, {{0, 1}, {0, 0}}, {{0, 1}, {0, 1}});
    const Lyrenum schemes[] = {Lyr::Rainbow, Lyr::InvertedRainbow, Lyr::HueCycle};
    for (int i = 0; i < 3; ++i) {
        choose(1, 2 + i);
        EXPECT_EQ(typeOf(section(1)), schemes[i]);
        expectPoints(1, {{0, 0}}, {{0, 0}}, {{0, 0}}, {{0, 1}});
    }
    EXPECT_EQ(steps.names(), (QStringList{STEP_NAME, STEP_NAME, STEP_NAME, STEP_NAME, STEP_NAME}));
}

TEST_F(Editing, the_same_type_again_changes_nothing) {
    setPoints(section(1), Lyr::PointListAlpha, {{0, 0.25f}});
    choose(1, 2);
    EXPECT_EQ(points(1, Lyr::PointListAlpha), (Points{{0, 0.25f}}));
    EXPECT_EQ(steps.names(), QStringList());
}

TEST_F(Editing, the_section_decides_what_a_new_type_is_not_the_entry_shown) {
    lyrSetValue(section(0), Lyr::Type, Lyr::Rainbow);
    settle();
    ASSERT_EQ(combo(2)->currentItem(), 1);
    choose(2, 1);
    EXPECT_EQ(typeOf(section(0)), Lyr::Constant);
    expectPoints(0, {{0, 0}}, {{0, 0}}, {{0, 1}}, {{0, 1}});
}

TEST_F(Editing, a_continuing_border_keeps_its_points) {
    choose(0, 0);
    choose(2, 0);
    EXPECT_EQ(typeOf(section(0)), Lyr::Continue);
    EXPECT_EQ(typeOf(section(2)), Lyr::Continue);
    expectPoints(0, {{0, 0.6f}}, {{0, 0}}, {{0, 1}}, {{0, 1}});
    choose(2, 1);
    EXPECT_EQ(typeOf(section(0)), Lyr::Constant);
    expectPoints(0, {{0, 0}}, {{0, 0}}, {{0, 1}}, {{0, 1}});
}

TEST_F(Editing, a_type_and_its_points_are_one_step) {
    choose(1, 1);
    ASSERT_TRUE(LyqApplication::instance().undo());
    settle();
    EXPECT_EQ(typeOf(section(1)), Lyr::Rainbow);
    expectPoints(1, {}, {}, {}, {});
    EXPECT_EQ(combo(1)->currentItem(), 2);
}

TEST_F(Editing, a_constant_colour_is_chosen_by_double_click) {
    answerColor(QColor(10, 20, 30, 40));
    doubleClick(2, 0.9);
    // 0.6f * 255 truncated is 153.
    EXPECT_EQ(offered, QColor(153, 0, 255, 255));
    EXPECT_TRUE(alphaOffered);
    const float unit = 0.003921569f;
    expectPoints(0, {{0, 10 * unit}}, {{0, 20 * unit}}, {{0, 30 * unit}}, {{0, 40 * unit}});
    EXPECT_EQ(typeOf(section(0)), Lyr::Constant);
    EXPECT_EQ(steps.names(), QStringList{STEP_NAME});
}

TEST_F(Editing, every_byte_of_a_colour_survives_the_dialog) {
    for (int i = 0; i < 256; i += 17) {
        answerColor(QColor(i, 255 - i, i, 255));
        doubleClick(2, 0.5);
        answerColor(Qt::black, false);
        doubleClick(2, 0.5);
        EXPECT_EQ(offered, QColor(i, 255 - i, i, 255));
    }
}

TEST_F(Editing, a_cancelled_colour_changes_nothing) {
    for (int row = 0; row < 3; row += 2) {
        answerColor(Qt::green, false);
        doubleClick(row, 0.5);
    }
    lyrSetValue(section(1), Lyr::Type, Lyrenum(Lyr::Gradient));
    settle();
    answerColor(Qt::green, false);
    doubleClick(1, 0.5);
    EXPECT_EQ(colorDialogs, 3);
    expectPoints(1, {}, {}, {}, {});
    expectPoints(0, {{0, 0.6f}}, {{0, 0}}, {{0, 1}}, {{0, 1}});
    EXPECT_EQ(steps.names(), QStringList());
}

TEST_F(Editing, the_half_of_a_gradient_that_is_clicked_is_the_end_that_is_edited) {
    choose(1, 1);
    const QRect rect = cell(1, DETAIL);
    const int half = rect.width() / 2;
    const float unit = 0.003921569f;
    const auto clickAt = [&](int x, int red) {
        answerColor(QColor(red, 0, 0, 255));
        QTest::mouseDClick(rows.viewport(), Qt::LeftButton, {}, QPoint(rect.left() + x, rect.center().y()));
        settle();
    };
    clickAt(half - 1, 51);
    EXPECT_EQ(offered, QColor(0, 0, 255));
    EXPECT_EQ(points(1, Lyr::PointListRed), (Points{{0, 51 * unit}, {0, 1}}));
    clickAt(half, 102);
    EXPECT_EQ(offered, QColor(255, 0, 0));
    EXPECT_EQ(points(1, Lyr::PointListRed), (Points{{0, 51 * unit}, {0, 102 * unit}}));
}

TEST_F(Editing, points_that_a_gradient_lacks_are_added_at_their_numbers) {
    lyrSetValue(section(1), Lyr::Type, Lyrenum(Lyr::Gradient));
    setPoints(section(1), Lyr::PointListGreen, {{0.5f, 1}});
    settle();
    answerColor(QColor(255, 0, 0, 0));
    doubleClick(1, 0.75);
    EXPECT_EQ(offered, QColor(0, 0, 0, 255));
    expectPoints(1, {{0, 0}, {1, 255 * 0.003921569f}}, {{0.5f, 1}, {1, 0}}, {{0, 0}, {1, 0}}, {{0, 1}, {1, 0}});
}

TEST_F(Editing, a_continuing_section_becomes_constant_with_the_colour_chosen) {
    lyrSetValue(section(2), Lyr::Type, Lyr::Continue);
    settle();
    answerColor(Qt::green, false);
    doubleClick(0, 0.5);
    EXPECT_EQ(typeOf(section(2)), Lyr::Continue);
    answerColor(QColor(0, 255, 0));
    doubleClick(0, 0.5);
    EXPECT_EQ(typeOf(section(2)), Lyr::Constant);
    EXPECT_EQ(points(2, Lyr::PointListGreen), (Points{{0, 255 * 0.003921569f}}));
    EXPECT_EQ(steps.names(), QStringList{STEP_NAME});
}

TEST_F(Editing, a_scheme_gets_another_opacity) {
    for (const Lyrenum scheme : {Lyr::Rainbow, Lyr::InvertedRainbow, Lyr::HueCycle}) {
        lyrSetValue(section(1), Lyr::Type, scheme);
        setPoints(section(1), Lyr::PointListAlpha, {});
        settle();
        answerOpacity(0.25);
        doubleClick(1, 0.5);
        EXPECT_EQ(caption, QStringLiteral("Set transparency"));
        EXPECT_EQ(label, QStringLiteral("Alpha value"));
        EXPECT_EQ(opacity, 1.0);
        EXPECT_EQ(points(1, Lyr::PointListAlpha), (Points{{0, 0.25f}}));
    }
    setPoints(section(1), Lyr::PointListAlpha, {{0.5f, 0.333f}, {1, 1}});
    answerOpacity(0.7, false);
    doubleClick(1, 0.5);
    EXPECT_EQ(opacity, 0.33);
    EXPECT_EQ(points(1, Lyr::PointListAlpha), (Points{{0.5f, 0.333f}, {1, 1}}));
    answerOpacity(0.5);
    doubleClick(1, 0.5);
    EXPECT_EQ(points(1, Lyr::PointListAlpha), (Points{{0.5f, 0.5f}, {1, 1}}));
    EXPECT_EQ(steps.names().size(), 4);
}

TEST_F(Editing, other_types_and_columns_open_nothing) {
    lyrSetValue(section(1), Lyr::Type, Lyr::Custom);
    doubleClick(1, 0.5);
    for (int column = 0; column < 3; ++column) {
        editor.tableDoubleClickedSlot(2, column, Qt::LeftButton, QPoint());
    }
    editor.tableDoubleClickedSlot(-1, DETAIL, Qt::LeftButton, QPoint());
    editor.tableDoubleClickedSlot(3, DETAIL, Qt::LeftButton, QPoint());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_EQ(steps.names(), QStringList());
}

TEST_F(Editing, colours_are_chosen_by_keyboard_too) {
    choose(1, 1);
    rows.setCurrentCell(1, DETAIL);
    answerColor(QColor(255, 255, 0));
    QTest::keyClick(&rows, Qt::Key_Return);
    EXPECT_EQ(offered, QColor(0, 0, 255));
    answerColor(QColor(255, 255, 0));
    QTest::keyClick(&rows, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(offered, QColor(255, 0, 0));
}

TEST_F(Editing, a_table_taken_away_under_an_open_dialog_is_left_alone) {
    const LyrObjectPtr before(section(0));
    whenModal<QColorDialog>([this](QColorDialog& dialog) {
        editor.setLogicObject(nullptr);
        dialog.setCurrentColor(Qt::green);
        dialog.accept();
    });
    doubleClick(2, 0.5);
    EXPECT_EQ(pointsOf(before.get(), Lyr::PointListRed), (Points{{0, 0.6f}}));
    EXPECT_EQ(steps.names(), QStringList());
    EXPECT_FALSE(editor.isEnabled());
}

TEST_F(Editing, an_editor_deleted_under_an_open_dialog_takes_it_along) {
    auto* other = new LyqColorLookupTableEditor;
    other->setLogicObject(table.get());
    other->show();
    settle();
    whenModal<QColorDialog>([other](QColorDialog&) { delete other; });
    other->tableDoubleClickedSlot(2, DETAIL, Qt::LeftButton, QPoint());
    EXPECT_EQ(pointsOf(section(0), Lyr::PointListRed), (Points{{0, 0.6f}}));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(Editing, one_selected_inner_section_can_be_split_in_the_middle) {
    LyrObject* old = section(1);
    setPoints(old, Lyr::PointListAlpha, {{0, 0.5f}});
    settle();
    selectRows({1});
    menuOn(1, [](QAction& split, QAction& merge, QMenu&) {
        EXPECT_EQ(split.text(), QStringLiteral("split"));
        EXPECT_EQ(merge.text(), QStringLiteral("merge"));
        EXPECT_TRUE(split.isEnabled());
        EXPECT_FALSE(merge.isEnabled());
    });
    split(1);
    EXPECT_EQ(positions(), (std::vector<float>{-1, 0, 1}));
    EXPECT_EQ(rows.numRows(), 4);
    EXPECT_EQ(column(FROM), (QStringList{"1", "0", "-1", "-inf"}));
    EXPECT_EQ(section(2), old);
    EXPECT_EQ(typeOf(section(1)), Lyr::Rainbow);
    EXPECT_EQ(points(1, Lyr::PointListAlpha), (Points{{0, 0.5f}}));
    EXPECT_EQ(steps.names(), QStringList{STEP_NAME});
    ASSERT_TRUE(LyqApplication::instance().undo());
    settle();
    EXPECT_EQ(rows.numRows(), 3);
    EXPECT_EQ(section(1), old);
}

TEST_F(Editing, a_menu_whose_rows_became_other_sections_does_nothing) {
    show(makeTable({0, 1, 2, 3}, {Lyr::Constant, Lyr::Gradient, Lyr::Rainbow, Lyr::HueCycle, Lyr::Constant}));
    const LyrObjectRefPtr other = makeTable({5, 6, 7}, {Lyr::Constant, Lyr::Gradient, Lyr::Rainbow, Lyr::Constant});
    selectRows({1});
    menuOn(1, [&](QAction& entry, QAction&, QMenu& menu) {
        editor.setLogicObject(other.get());
        clickEntry(menu, entry);
    });
    EXPECT_EQ(positionsOf(other.get()), (std::vector<float>{5, 6, 7})) << "another table";
    EXPECT_EQ(positions(), (std::vector<float>{0, 1, 2, 3}));
    show(table);
    selectRows({1, 2});
    menuOn(1, [&](QAction&, QAction& entry, QMenu& menu) {
        LyrValueArrayOPCache<LyrObjectLink> links;
        links.load(table.get(), Lyr::SectionList);
        std::swap(links.items()[1], links.items()[2]);
        links.store(table.get(), Lyr::SectionList);
        clickEntry(menu, entry);
    });
    EXPECT_EQ(positions(), (std::vector<float>{0, 1, 2, 3})) << "other sections";
    EXPECT_EQ(steps.names(), QStringList());
}

TEST_F(Editing, the_row_of_the_menu_is_split_and_border_rows_never) {
    show(makeTable({0, 2, 4}, {Lyr::Constant, Lyr::Constant, Lyr::HueCycle, Lyr::Constant}));
    selectRows({1});
    split(2);
    EXPECT_EQ(positions(), (std::vector<float>{0, 1, 2, 4}));
    selectRows({1});
    split(0);
    split(4);
    EXPECT_EQ(positions(), (std::vector<float>{0, 1, 2, 4}));
    EXPECT_EQ(steps.names(), QStringList{STEP_NAME});
}

TEST_F(Editing, the_halves_of_a_huge_section_meet_at_a_finite_number) {
    show(makeTable({2e38f, 3e38f}, {Lyr::Constant, Lyr::Constant, Lyr::Constant}));
    selectRows({1});
    split(1);
    EXPECT_EQ(positions(), (std::vector<float>{2e38f, 2.5e38f, 3e38f}));
}

TEST_F(Editing, selected_sections_are_merged_into_the_lowest) {
    show(makeTable({0, 1, 2, 3, 4},
                   {Lyr::Constant, Lyr::Gradient, Lyr::Rainbow, Lyr::HueCycle, Lyr::InvertedRainbow, Lyr::Constant}));
    const auto before = sectionsOf(table.get());
    selectRows({2, 3});
    menuOn(2, [](QAction& split, QAction& merge, QMenu&) {
        EXPECT_FALSE(split.isEnabled());
        EXPECT_TRUE(merge.isEnabled());
    });
    merge(2);
    // Rows 2 and 3 of six are sections 3 and 2.
    EXPECT_EQ(positions(), (std::vector<float>{0, 1, 3, 4}));
    EXPECT_EQ(sectionsOf(table.get()),
              (std::vector<LyrObject*>{before[0], before[1], before[2], before[4], before[5]}));
    EXPECT_EQ(steps.names(), QStringList{STEP_NAME});
    ASSERT_TRUE(LyqApplication::instance().undo());
    EXPECT_EQ(sectionsOf(table.get()), before);
    EXPECT_EQ(positions(), (std::vector<float>{0, 1, 2, 3, 4}));
}

TEST_F(Editing, border_rows_are_left_out_of_a_merge) {
    show(makeTable({0, 1, 2, 3}, {Lyr::Constant, Lyr::Gradient, Lyr::Rainbow, Lyr::HueCycle, Lyr::Constant}));
    selectRows({0, 1, 2, 3, 4});
    merge(2);
    EXPECT_EQ(positions(), (std::vector<float>{0, 3}));
    EXPECT_EQ(column(TYPE), (QStringList{"Constant", "Gradient", "Constant"}));
    selectRows({0, 1, 2});
    menuOn(1, [](QAction& split, QAction& merge, QMenu&) {
        EXPECT_TRUE(split.isEnabled());
        EXPECT_FALSE(merge.isEnabled());
    });
}

TEST_F(Editing, a_selection_with_a_gap_or_none_offers_nothing) {
    show(makeTable({0, 1, 2, 3}, {Lyr::Constant, Lyr::Gradient, Lyr::Rainbow, Lyr::HueCycle, Lyr::Constant}));
    for (const std::vector<int>& selected : {std::vector<int>{1, 3}, {0, 1, 3}, {}, {0}, {4}, {0, 4}}) {
        selectRows(selected);
        menuOn(2, [](QAction& split, QAction& merge, QMenu&) {
            EXPECT_FALSE(split.isEnabled());
            EXPECT_FALSE(merge.isEnabled());
        });
    }
}

TEST_F(Editing, a_menu_off_the_rows_does_not_open) {
    QContextMenuEvent event(QContextMenuEvent::Mouse, rows.viewport()->rect().bottomRight(), QPoint());
    QCoreApplication::sendEvent(rows.viewport(), &event);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(Editing, the_menu_opens_by_key_on_the_current_row) {
    selectRows({1});
    bool seen = false;
    QTimer::singleShot(0, &editor, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_TRUE(menu);
        seen = true;
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Return);
        menu->close();  // if the keys did nothing
    });
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QCoreApplication::sendEvent(rows.viewport(), &event);
    EXPECT_TRUE(seen);
    EXPECT_EQ(positions(), (std::vector<float>{-1, 0, 1}));
}

TEST_F(Editing, inconsistent_tables_are_not_edited) {
    setPositions(table.get(), {-1, 0, 1});
    rows.setText(1, TO, QStringLiteral("5"));
    editor.tableValueChangedSlot(1, TO);
    combo(1)->setCurrentItem(0);
    editor.tableValueChangedSlot(1, TYPE);
    EXPECT_EQ(positions(), (std::vector<float>{-1, 0, 1}));
    EXPECT_EQ(typeOf(section(1)), Lyr::Rainbow);
    for (const int row : {-1, 3, 100}) {
        editor.tableValueChangedSlot(row, TO);
        editor.tableValueChangedSlot(row, TYPE);
    }
    EXPECT_EQ(steps.names(), QStringList());
}

TEST_F(Editing, a_cell_being_edited_survives_changes_from_elsewhere) {
    auto* line = openEditor<QLineEdit>(1, TO);
    line->selectAll();
    QTest::keyClicks(line, QStringLiteral("4"));
    setPositions(table.get(), {-3, 2});
    settle();
    EXPECT_TRUE(rows.isEditing(1, TO));
    EXPECT_EQ(line->text(), QStringLiteral("4"));
    EXPECT_EQ(rows.text(1, FROM), QStringLiteral("-3"));
    QTest::keyClick(line, Qt::Key_Escape);
    settle();
    EXPECT_EQ(rows.text(1, TO), QStringLiteral("2"));
    line = openEditor<QLineEdit>(1, TO);
    line->selectAll();
    QTest::keyClicks(line, QStringLiteral("7"));
    setPositions(table.get(), {-3, 3});
    settle();
    QTest::keyClick(line, Qt::Key_Return);
    settle();
    EXPECT_EQ(positions(), (std::vector<float>{-3, 7}));
}

TEST_F(Editing, a_cell_whose_row_became_another_section_is_not_edited_any_more) {
    selectRows({1});
    split(1);
    auto* line = openEditor<QLineEdit>(1, TO);
    QTest::keyClicks(line, QStringLiteral("4"));
    ASSERT_TRUE(LyqApplication::instance().undo());
    settle();
    EXPECT_FALSE(rows.isEditing());
    EXPECT_EQ(positions(), (std::vector<float>{-1, 1}));
    line = openEditor<QLineEdit>(1, TO);
    QTest::keyClicks(line, QStringLiteral("4"));
    editor.setLogicObject(nullptr);
    settle();
    EXPECT_FALSE(rows.isEditing());
    EXPECT_EQ(positions(), (std::vector<float>{-1, 1}));
}

TEST_F(Editing, a_write_that_is_refused_leaves_no_half) {
    ExpectedErrors locked(Lyr::Locked);
    selectRows({1});
    const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrObjectLink>> list(table.get(), Lyr::SectionList);
    const LyrObjectLink* links = list->lockArrayPtr();
    split(1);
    list->unlockArrayPtr(links);
    EXPECT_EQ(positions(), (std::vector<float>{-1, 1}));
    EXPECT_EQ(locked.count(), 1);
    EXPECT_EQ(steps.names(), QStringList());
    EXPECT_EQ(LyqApplication::instance().undoStack().count(), 0);
}
