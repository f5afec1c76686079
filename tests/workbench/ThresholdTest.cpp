#include "OpenWorkbench.h"
#include "RunProgram.h"

#include <gtest/gtest.h>
#include <lys_core/LyqSession.h>
#include <lys_core/LyqSliceWidget.h>
#include <workbench/AnalysisRunner.h>
#include <workbench/ReadoutBar.h>

#include <QAction>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenuBar>
#include <QMessageBox>
#include <QTemporaryDir>

namespace {

/** The window's dialog that asks for a threshold. */
class Threshold : public OpenWorkbench {
protected:
    Threshold() { QLocale::setDefault(QLocale(QLocale::German)); }
    ~Threshold() override { QLocale::setDefault(QLocale::system()); }

    QInputDialog* ask() {
        for (QAction* action : window->findChildren<QAction*>()) {
            if (action->text().contains("Threshold")) {
                action->trigger();
            }
        }
        return window->findChild<QInputDialog*>("thresholdDialog");
    }
    /** Types into the dialog and confirms it; false if there is none. */
    bool answer(const QString& text) {
        QInputDialog* dialog = ask();
        auto* line = dialog ? dialog->findChild<QLineEdit*>() : nullptr;
        if (!line) {
            return false;
        }
        line->selectAll();
        line->del();
        QTest::keyClicks(line, text);
        QTest::keyClick(line, Qt::Key_Return);
        // It goes with the next turn of the event loop.
        return QTest::qWaitFor([&] { return !window->findChild<QInputDialog*>("thresholdDialog"); });
    }
};

}  // namespace

TEST_F(Threshold, is_typed_in_the_users_locale_and_shown_as_it_was_typed) {
    EXPECT_FALSE(window->analyses().threshold());
    ASSERT_TRUE(answer("1200,5"));
    EXPECT_EQ(window->analyses().threshold(), 1200.5f);
    QInputDialog* again = ask();
    ASSERT_TRUE(again);
    EXPECT_EQ(again->textValue(), "1200,5");
    again->reject();
    EXPECT_EQ(window->analyses().threshold(), 1200.5f) << "a dialog that is closed changes nothing";
}

TEST_F(Threshold, is_left_to_the_analysis_by_an_empty_line) {
    window->analyses().setThreshold(7.0f);
    ASSERT_TRUE(answer(""));
    EXPECT_FALSE(window->analyses().threshold());
}

TEST_F(Threshold, stays_as_it_was_with_a_message_for_what_is_no_number) {
    window->analyses().setThreshold(7.0f);
    for (const char* wrong : {"many", "1e999", "nan", "1.200.5"}) {
        ASSERT_TRUE(answer(wrong)) << wrong;
        auto* box = window->findChild<QMessageBox*>();
        ASSERT_TRUE(box) << wrong;
        EXPECT_TRUE(box->text().contains(wrong)) << box->text().toStdString();
        box->accept();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !window->findChild<QMessageBox*>(); }));
        EXPECT_EQ(window->analyses().threshold(), 7.0f) << wrong;
    }
}

TEST_F(OpenWorkbench, the_status_bar_tells_a_position_in_the_volumes_own_axes_and_the_value_there) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("counting.nrrd");
    QByteArray samples;
    for (char i = 0; i < 64; ++i) {
        samples.append(i);
    }
    writeBytes(path, 4, 4, 4, samples,
               "space dimension: 3\nspace directions: (2,0,0) (0,2,0) (0,0,2)\nspace origin: (10,20,30)\n");
    ASSERT_TRUE(open(path));
    const auto text = [&](const char* name) { return window->findChild<QLabel*>(name)->text(); };
    // The world begins at the corner of the first voxel: this is the middle of voxel (2, 1, 0), sample 2 + 4 · 1.
    Q_EMIT window->views().positionHovered({5.0f, 3.0f, 1.0f}, true);
    const QLocale user;
    const auto number = [&](double value) { return user.toString(value, 'f', 2); };
    EXPECT_EQ(text("readoutPosition"), QString("x %1  y %2  z %3 mm").arg(number(14.0), number(22.0), number(30.0)));
    EXPECT_TRUE(text("readoutValue").endsWith(" 6")) << text("readoutValue").toStdString();
    EXPECT_EQ(window->readout().text(), text("readoutPosition") + "  " + text("readoutValue"));
    Q_EMIT window->views().positionHovered({}, false);
    EXPECT_TRUE(text("readoutPosition").isEmpty());
    EXPECT_TRUE(text("readoutValue").isEmpty());
    // Where the pointer is: the middle of the slice across z through the middle of the volume.
    LyqSliceWidget* view = window->views().sliceView(2);
    movePointer(view, view->rect().center() + QPoint(2, 2));
    EXPECT_FALSE(text("readoutPosition").isEmpty());
}
