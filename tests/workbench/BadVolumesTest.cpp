#include "OpenWorkbench.h"
#include "RunProgram.h"

#include <gtest/gtest.h>
#include <lys_core/LyqAnalysisExtension.h>
#include <lys_core/LyqExtensionRegistry.h>
#include <lys_core/LyqSession.h>
#include <workbench/AnalysisRunner.h>

#include <QApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <QTemporaryDir>

namespace {

struct Case {
    const char* name;
    const char* analysis;
    int status;        ///< of a run that writes a report
    const char* says;  ///< a part of the message; empty: it succeeds
    QStringList options;
};

void PrintTo(const Case& each, std::ostream* out) {
    *out << each.name << ' ' << each.analysis;
}

/** 8 voxels along each edge, but for one slice; a hollow of 2³ in the middle of the whole one. */
void writeVolume(const QString& name, const QString& path) {
    if (name == "constant") {
        writeBytes(path, 8, 8, 8, QByteArray(512, '\7'));
    } else if (name == "one slice") {
        QByteArray samples(64, '\310');
        samples[27] = samples[28] = '\1';
        writeBytes(path, 8, 8, 1, samples);
    } else if (name == "no samples") {
        writeBytes(path, 8, 8, 0, {});
    } else {
        QByteArray samples(512, '\310');
        for (const int hollow : {219, 220, 227, 228, 283, 284, 291, 292}) {
            samples[hollow] = '\1';
        }
        writeBytes(path, 8, 8, 8, samples);
    }
}

const Case CASES[] = {
    {"constant", "defect-volume", 1, "same value", {}},
    {"constant", "wall-thickness", 1, "same value", {}},
    {"one slice", "defect-volume", 0, "", {}},
    {"one slice", "wall-thickness", 0, "", {}},
    {"no samples", "defect-volume", 2, "volume.nrrd", {}},
    {"no samples", "wall-thickness", 2, "volume.nrrd", {}},
    {"all material", "wall-thickness", 1, "no air", {"--threshold", "0"}},
    {"no material", "defect-volume", 1, "no material", {"--threshold", "250"}},
    {"no material", "wall-thickness", 1, "no material", {"--threshold", "250"}},
};

}  // namespace

class BadVolume : public OpenWorkbench, public ::testing::WithParamInterface<Case> {};

TEST_P(BadVolume, is_a_message_or_an_empty_result_on_the_command_line_and_in_the_window) {
    const Case& expected = GetParam();
    const QTemporaryDir folder;
    const QString path = folder.filePath("volume.nrrd");
    const QString report = folder.filePath("report.json");
    writeVolume(expected.name, path);
    const EndedProgram ended =
        runWorkbench(QStringList{path, "--analysis", expected.analysis, "--report", report} + expected.options);
    EXPECT_EQ(ended.status, expected.status) << ended.errors.toStdString();
    EXPECT_TRUE(ended.errors.contains(expected.says)) << ended.errors.toStdString();
    EXPECT_EQ(QFileInfo::exists(report), expected.status == 0);

    QSignalSpy failed(window.get(), &workbench::MainWindow::volumeFailed);
    open(path);
    if (expected.status == 2) {
        ASSERT_EQ(failed.size(), 1);
        EXPECT_TRUE(failed[0][1].toString().contains(expected.says));
        EXPECT_FALSE(LyqSession::instance().document());
        return;
    }
    const std::size_t before = LyqSession::instance().layers().size();
    if (!expected.options.isEmpty()) {
        window->analyses().setThreshold(expected.options[1].toFloat());
    }
    QSignalSpy finished(&window->analyses(), &workbench::AnalysisRunner::finished);
    QString message;
    auto* analysis = LyqExtensionRegistry::instance().find<LyqAnalysisExtension>(expected.analysis);
    ASSERT_TRUE(analysis && window->analyses().start(*analysis, message)) << message.toStdString();
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_EQ(finished[0][0].toBool(), expected.status == 0);
    EXPECT_TRUE(finished[0][1].toString().contains(expected.says)) << finished[0][1].toString().toStdString();
    EXPECT_EQ(LyqSession::instance().layers().size(), before + (expected.status == 0 ? 1 : 0));
    auto* box = window->findChild<QMessageBox*>();
    EXPECT_EQ(box != nullptr, expected.status != 0);
    EXPECT_TRUE(!box || box->text() == finished[0][1].toString());
    settle();
}

INSTANTIATE_TEST_SUITE_P(, BadVolume, ::testing::ValuesIn(CASES));
