#include <Heartbeat.h>
#include <Sanitizers.h>
#include "OpenWorkbench.h"
#include "RunProgram.h"

#include <gtest/gtest.h>
#include <lys_core/LyqAnalysisExtension.h>
#include <lys_core/LyqExtensionRegistry.h>
#include <lys_core/LyqSession.h>
#include <workbench/AnalysisRunner.h>

#include <QTableView>
#include <QTemporaryDir>

#include <iostream>
#include <random>

namespace {

/** Edge of the casting: small in every run, LYS_WINDOW_EDGE=256 for the size that people work with. */
int edge() {
    bool isNumber = false;
    const int given = qEnvironmentVariableIntValue("LYS_WINDOW_EDGE", &isNumber);
    return isNumber ? given : 96;
}

constexpr int VOLUME = 1;

/** Bytes of material with a fifth of air, everywhere alike: too little for the air to hang together. */
QByteArray noise(int edge) {
    QByteArray samples(static_cast<qsizetype>(edge) * edge * edge, '\0');
    std::mt19937 random(1);
    for (char& sample : samples) {
        sample = random() % 5 == 0 ? '\1' : '\310';
    }
    return samples;
}

long residentMegabytes() {
    QFile file("/proc/self/statm");
    const QList<QByteArray> pages = file.open(QIODevice::ReadOnly) ? file.readAll().split(' ') : QList<QByteArray>();
    constexpr long PAGES_IN_MEGABYTE = 256;
    return pages.size() > 1 ? pages[1].toLong() / PAGES_IN_MEGABYTE : 0;
}

/** The window's own thread works for less than 100 ms at a time. What it waits for is looser: software that draws has
 *  threads of its own, which on a busy machine wait for a processor like everybody else. */
constexpr double WORKING = 100.0 * SANITIZER_SLOWDOWN;
constexpr double BLOCKED = 1000.0 * SANITIZER_SLOWDOWN;

Heartbeat::Gap longestOf(const Heartbeat& heart) {
    const Heartbeat::Gap longest = heart.longest();
    std::cout << "  turns " << heart.gaps().size() << ", longest gap in ms: working " << longest.working << ", blocked "
              << longest.blocked << ", by the clock " << longest.clock << "\n";
    EXPECT_GT(heart.gaps().size(), 5u);
    return longest;
}

/** `run` starts with a window without a document. */
template <class Run>
void expectAnswers(const Run& run) {
    const Heartbeat::Gap longest = calmestOf3(WORKING, BLOCKED, run);
    EXPECT_LT(longest.working, WORKING);
    EXPECT_LT(longest.blocked, BLOCKED);
}

}  // namespace

/** Software OpenGL draws in threads of its own, as in the program. */
struct DrawnInThreads {
    DrawnInThreads() { qputenv("LP_NUM_THREADS", "2"); }
    ~DrawnInThreads() { qunsetenv("LP_NUM_THREADS"); }
};
class Answering : private DrawnInThreads, public OpenWorkbench {
protected:
    void analyse(const char* identifier) {
        auto* analysis = LyqExtensionRegistry::instance().find<LyqAnalysisExtension>(identifier);
        ASSERT_TRUE(analysis);
        const std::size_t before = LyqSession::instance().layers().size();
        QString message;
        ASSERT_TRUE(window->analyses().start(*analysis, message)) << message.toStdString();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !window->isBusy(); }, 300000));
        QTest::qWait(300);
        ASSERT_EQ(LyqSession::instance().layers().size(), before + 1);
    }
};
class AnsweringWindow : public Answering, public ::testing::WithParamInterface<const char*> {};

TEST_P(AnsweringWindow, takes_a_turn_within_100_ms_while_an_analysis_runs_and_its_result_comes) {
    expectAnswers([&](Heartbeat::Gap& longest) {
        ASSERT_TRUE(open(QString("builtin:casting@%1").arg(edge())));
        const Heartbeat heart;
        ASSERT_NO_FATAL_FAILURE(analyse(GetParam()));
        longest = longestOf(heart);
    });
}

TEST_F(Answering, noise_full_of_defects_is_analysed_listed_sorted_and_selected_while_the_window_answers) {
    bool isNumber = false;
    const int given = qEnvironmentVariableIntValue("LYS_WINDOW_NOISE_EDGE", &isNumber);
    const int length = isNumber ? given : 64;
    const QTemporaryDir folder;
    const QString path = folder.filePath("noise.nrrd");
    writeBytes(path, length, length, length, noise(length));
    expectAnswers([&](Heartbeat::Gap& longest) {
        ASSERT_TRUE(open(path, 300000));
        const long before = residentMegabytes();
        const Heartbeat heart;
        ASSERT_NO_FATAL_FAILURE(analyse("defect-volume"));
        auto* list = window->findChild<QTableView*>("defectList");
        ASSERT_TRUE(list);
        // Counted apart from this: 0.033 hollows of two voxels or more fall to each voxel, 0.028 of 64³ off the border.
        const int rows = list->model()->rowCount();
        EXPECT_GT(rows, 0.026 * length * length * length);
        list->sortByColumn(VOLUME, Qt::AscendingOrder);
        const auto cell = [&](int row) { return list->model()->index(row, VOLUME).data(Qt::UserRole).toDouble(); };
        EXPECT_TRUE(QTest::qWaitFor([&] { return cell(0) <= cell(1) && cell(0) < cell(rows - 1); }, 60000));
        list->selectRow(rows / 2);
        list->scrollTo(list->currentIndex());
        QTest::qWait(200);
        const long taken = residentMegabytes() - before;
        std::cout << rows << " defects in " << length << "^3, " << taken << " MB\n";
        longest = longestOf(heart);
    });
}

INSTANTIATE_TEST_SUITE_P(Analyses, AnsweringWindow, ::testing::Values("wall-thickness", "defect-volume"));
