#include "OpenWorkbench.h"
#include "RunProgram.h"

#include <gtest/gtest.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_volume/LyrCasting.h>
#include <lys_core/LyqAnalysisExtension.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqExtensionRegistry.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqPresetDefaultHandler.h>
#include <lys_core/LyqPresetFolders.h>
#include <lys_core/LyqPresetRegistry.h>
#include <lys_core/LyqSession.h>
#include <lys_core/LyqSliceWidget.h>
#include <lys_core/LyrWorkspace.h>
#include <workbench/AnalysisRunner.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QTableView>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>

namespace {

LyqAnalysisExtension& analysis(const char* id) {
    auto* found = LyqExtensionRegistry::instance().find<LyqAnalysisExtension>(id);
    EXPECT_TRUE(found) << id;
    return *found;
}

/** The tolerance preset with an upper limit, as the user's "Own Limits": pass to 20, warn to 100, fail above. */
struct OwnLimits {
    OwnLimits() {
        const QDir data(folder.path());
        EXPECT_TRUE(data.mkpath("lys_colortable/presets"));
        QByteArray text =
            contentOf(QString::fromStdString(LyqPresetFolders::installed()) + "/tolerance-upper-limit.json");
        text.replace("\"PositionList\": [0.1, 0.2]", "\"PositionList\": [20, 100]");
        text.replace("Tolerance Upper Limit", "Own Limits");
        QFile file(data.filePath("lys_colortable/presets/own.json"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
        qputenv("XDG_DATA_HOME", folder.path().toUtf8());
    }
    ~OwnLimits() { qputenv("XDG_DATA_HOME", before); }
    static QString verdictOf(double volume) { return volume <= 20.0 ? "Pass" : volume <= 100.0 ? "Warn" : "Fail"; }
    QTemporaryDir folder;
    QByteArray before = qgetenv("XDG_DATA_HOME");
};

QVariant total(const LyqReport& report, const QString& id) {
    for (const LyqReport::Total& each : report.totals) {
        if (each.id == id) {
            return each.value;
        }
    }
    return {};
}

}  // namespace

TEST(AnalysisReport, a_name_that_says_no_kind_of_report_is_refused_before_anything_is_opened) {
    for (const char* name : {"r.txt", "r", "csv", "r.json.gz"}) {
        const EndedProgram ended =
            runWorkbench({"/there/is/no/volume.nrrd", "--analysis", "defect-volume", "--report", name}, false);
        EXPECT_EQ(ended.status, 2) << name;
        EXPECT_TRUE(ended.errors.contains("--report")) << ended.errors.toStdString();
        EXPECT_FALSE(ended.errors.contains("volume.nrrd")) << ended.errors.toStdString();
    }
}

TEST(AnalysisReport, numbers_alone_are_written_without_a_word) {
    const QTemporaryDir folder;
    const QString report = folder.filePath("r.csv");
    const EndedProgram ended = runWorkbench(
        {"builtin:casting@32", "--analysis", "defect-volume", "--threshold", "0.5", "--report", report}, false);
    EXPECT_EQ(ended.status, 0);
    EXPECT_FALSE(ended.errors.contains("views")) << ended.errors.toStdString();
    EXPECT_FALSE(contentOf(report).isEmpty());
    EXPECT_EQ(
        runWorkbench({"builtin:casting@32", "--analysis", "defect-volume", "--threshold", "1e-50", "--report", report},
                     false)
            .status,
        0);
}

TEST(AnalysisReport, every_pore_of_the_casting_is_in_the_report_with_its_volume_and_in_the_picture) {
    const QTemporaryDir folder;
    const QString report = folder.filePath("defects.json");
    const QString picture = folder.filePath("defects.png");
    const EndedProgram ended = runWorkbench({"builtin:casting@128", "--analysis", "defect-volume", "--report", report,
                                             "--screenshot", picture, "--size", "1000x760"});
    EXPECT_EQ(ended.status, 0) << ended.errors.toStdString();
    EXPECT_EQ(QImage(picture).size(), QSize(1000, 760));
    const QJsonArray defects = QJsonDocument::fromJson(contentOf(report)).object()["defects"].toArray();
    const LyrCasting::Truth truth = LyrCasting::truth(128);
    EXPECT_EQ(std::size_t(defects.size()), truth.pores.size());
    for (const LyrCasting::Pore& pore : truth.pores) {
        bool found = false;
        for (const auto& each : defects) {
            const QJsonObject defect = each.toObject();
            const double away = std::abs(defect["center_x_mm"].toDouble() - pore.center[0]) +
                                std::abs(defect["center_y_mm"].toDouble() - pore.center[1]) +
                                std::abs(defect["center_z_mm"].toDouble() - pore.center[2]);
            // Four voxels across or more: within 2 %.
            const bool isLarge = 2.0 * std::min({pore.radii[0], pore.radii[1], pore.radii[2]}) >= 4.0 * truth.spacing;
            if (away < 1.0) {
                found = true;
                EXPECT_TRUE(!isLarge || std::abs(defect["volume_mm3"].toDouble() - pore.volume) <= 0.02 * pore.volume)
                    << defect["volume_mm3"].toDouble() << " instead of " << pore.volume;
            }
        }
        EXPECT_TRUE(found) << pore.center[0] << " " << pore.center[1] << " " << pore.center[2];
    }
}

TEST(AnalysisReport, numbers_need_no_display) {
    const QTemporaryDir folder;
    const QString report = folder.filePath("walls.csv");
    const EndedProgram ended =
        runWorkbench({"builtin:casting@32", "--analysis", "wall-thickness", "--report", report}, false);
    EXPECT_EQ(ended.status, 0) << ended.errors.toStdString();
    EXPECT_TRUE(contentOf(report).startsWith("# analysis,wall-thickness\n"));
}

TEST(AnalysisReport, a_report_that_cannot_be_written_is_a_message_and_status_1) {
    const QTemporaryDir folder;
    const QString file = "/there/is/no/folder/r.csv";
    const EndedProgram ended = runWorkbench({"builtin:casting@32", "--analysis", "defect-volume", "--report", file,
                                             "--screenshot", folder.filePath("window.png")});
    EXPECT_EQ(ended.status, 1);
    EXPECT_TRUE(ended.errors.contains(file)) << ended.errors.toStdString();
    EXPECT_FALSE(QFile::exists(folder.filePath("window.png")));
}

TEST(AnalysisReport, an_unknown_analysis_and_a_report_without_one_are_status_2) {
    const QTemporaryDir folder;
    const EndedProgram unknown =
        runWorkbench({"builtin:casting@16", "--analysis", "nonsense", "--report", folder.filePath("r.csv")});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(unknown.errors.contains("defect-volume")) << unknown.errors.toStdString();
    const EndedProgram without = runWorkbench({"builtin:casting@16", "--report", folder.filePath("r.csv")});
    EXPECT_EQ(without.status, 2);
    EXPECT_TRUE(without.errors.contains("--analysis")) << without.errors.toStdString();
}

TEST(AnalysisReport, goes_by_a_threshold_that_is_given) {
    const QTemporaryDir folder;
    const QString report = folder.filePath("r.json");
    const EndedProgram ended =
        runWorkbench({"builtin:casting@32", "--analysis", "defect-volume", "--threshold", "0.25", "--report", report});
    ASSERT_EQ(ended.status, 0) << ended.errors.toStdString();
    const QJsonObject told = QJsonDocument::fromJson(contentOf(report)).object();
    EXPECT_EQ(told["threshold"].toDouble(), 0.25);
    EXPECT_EQ(told["threshold_by"].toString(), "user");
    for (const char* wrong : {"nan", "1,5", "x", "1e99"}) {
        const EndedProgram refused = runWorkbench(
            {"builtin:casting@16", "--analysis", "defect-volume", "--threshold", wrong, "--report", report});
        EXPECT_EQ(refused.status, 2) << wrong;
        EXPECT_TRUE(refused.errors.contains("--threshold")) << refused.errors.toStdString();
    }
}

TEST(AnalysisReport, an_unknown_preset_is_a_message_and_status_2_and_a_known_one_is_applied) {
    const QTemporaryDir folder;
    const QString report = folder.filePath("r.csv");
    const QStringList arguments = {"builtin:casting@16", "--analysis", "wall-thickness",
                                   "--report",           report,       "--preset"};
    const EndedProgram unknown = runWorkbench(arguments + QStringList{"no such preset"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(unknown.errors.contains("no such preset")) << unknown.errors.toStdString();
    EXPECT_TRUE(unknown.errors.contains("Reverse Rainbow")) << unknown.errors.toStdString();
    EXPECT_FALSE(QFile::exists(report));
    const EndedProgram known = runWorkbench(arguments + QStringList{"Reverse Rainbow"});
    EXPECT_EQ(known.status, 0) << known.errors.toStdString();
    EXPECT_TRUE(QFile::exists(report));
}

TEST(AnalysisReport, judges_each_defect_by_a_tolerance_table_and_says_nothing_without_one) {
    const OwnLimits limits;
    const QTemporaryDir folder;
    const QString report = folder.filePath("r.json");
    const QStringList arguments = {"builtin:casting@64", "--analysis", "defect-volume", "--report", report};
    ASSERT_EQ(runWorkbench(arguments).status, 0);
    const QJsonObject plain = QJsonDocument::fromJson(contentOf(report)).object();
    EXPECT_FALSE(plain.contains("pass_count"));
    EXPECT_FALSE(plain["defects"].toArray()[0].toObject().contains("verdict"));
    const EndedProgram ended = runWorkbench(arguments + QStringList{"--preset", "Own Limits"});
    ASSERT_EQ(ended.status, 0) << ended.errors.toStdString();
    const QJsonObject judged = QJsonDocument::fromJson(contentOf(report)).object();
    QMap<QString, int> counts;
    for (const auto& each : judged["defects"].toArray()) {
        const double volume = each.toObject()["volume_mm3"].toDouble();
        const QString verdict = OwnLimits::verdictOf(volume).toLower();
        EXPECT_EQ(each.toObject()["verdict"].toString(), verdict) << volume;
        ++counts[verdict];
    }
    EXPECT_EQ(judged["pass_count"].toInt(-1), counts["pass"]);
    EXPECT_EQ(judged["warn_count"].toInt(-1), counts["warn"]);
    EXPECT_EQ(judged["fail_count"].toInt(-1), counts["fail"]);
    EXPECT_EQ(counts.size(), 3) << "the casting's pores lie on both sides of either limit";
}

TEST(AnalysisReport, a_volume_that_cannot_be_analysed_is_a_message_and_status_1) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("constant.nrrd");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("NRRD0004\ntype: uint8\ndimension: 3\nsizes: 4 4 4\nencoding: raw\n\n" + QByteArray(64, '\7'));
    file.close();
    const EndedProgram ended =
        runWorkbench({path, "--analysis", "wall-thickness", "--report", folder.filePath("r.csv")});
    EXPECT_EQ(ended.status, 1);
    EXPECT_TRUE(ended.errors.contains("workbench:")) << ended.errors.toStdString();
    EXPECT_FALSE(QFile::exists(folder.filePath("r.csv")));
}

TEST_F(OpenWorkbench, an_analysis_shows_its_layer_and_tells_the_numbers_of_the_report) {
    ASSERT_TRUE(open("builtin:casting@64"));
    QString message;
    ASSERT_TRUE(window->analyses().start(analysis("defect-volume"), message)) << message.toStdString();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->isBusy(); }, 60000));
    LyqLayer* active = LyqSession::instance().activeLayer();
    ASSERT_TRUE(active);
    EXPECT_STREQ(active->getMetaClass().getClassName(), "LyrDefectLayer");
    ASSERT_EQ(LyqSession::instance().reports().size(), 1u);
    const LyqReport shown = LyqSession::instance().reports()[0];
    const QTemporaryDir folder;
    const QString file = folder.filePath("r.json");
    ASSERT_EQ(runWorkbench({"builtin:casting@64", "--analysis", "defect-volume", "--report", file}).status, 0);
    const QJsonObject report = QJsonDocument::fromJson(contentOf(file)).object();
    EXPECT_EQ(total(shown, "porosity_percent").toDouble(), report["porosity_percent"].toDouble());
    const QJsonArray defects = report["defects"].toArray();
    ASSERT_EQ(shown.rows.size(), defects.size());
    for (int row = 0; row < shown.rows.size(); ++row) {
        for (int column = 0; column < shown.columns.size(); ++column) {
            EXPECT_EQ(shown.rows[row][column].toDouble(), defects[row].toObject()[shown.columns[column].id].toDouble())
                << shown.columns[column].id.toStdString();
        }
    }
}

TEST_F(OpenWorkbench, the_list_of_defects_tells_verdicts_while_the_table_is_a_tolerance_table) {
    const OwnLimits limits;
    ASSERT_TRUE(open("builtin:casting@64"));
    QString message;
    ASSERT_TRUE(window->analyses().start(analysis("defect-volume"), message)) << message.toStdString();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->isBusy(); }, 60000));
    settle();
    auto* list = window->findChild<QTableView*>("defectList");
    ASSERT_TRUE(list);
    const QAbstractItemModel& model = *list->model();
    EXPECT_EQ(model.columnCount(), 7);
    const LyqLayer::Content table = LyqSession::instance().activeLayer()->contents()[0];
    auto* presets =
        dynamic_cast<LyqPresetDefaultHandler*>(LyqPresetRegistry::instance().findHandler(table.presetCategory));
    ASSERT_TRUE(presets);
    presets->setPresetFolder(Lyr::UserPreset, limits.folder.filePath("lys_colortable/presets").toStdString());
    presets->setApplicationObject(table.object);
    ASSERT_TRUE(presets->applyPreset("Own Limits", Lyr::UserPreset));
    settle();
    ASSERT_EQ(model.columnCount(), 8);
    for (int row = 0; row < model.rowCount(); ++row) {
        const double volume = model.index(row, 1).data(Qt::UserRole).toDouble();
        EXPECT_EQ(model.index(row, 7).data().toString(), OwnLimits::verdictOf(volume)) << volume;
    }
    ASSERT_TRUE(LyqApplication::instance().undo());
    settle();
    EXPECT_EQ(model.columnCount(), 7);
}

TEST_F(OpenWorkbench, two_analyses_at_once_are_refused_and_one_after_the_other_are_both_shown) {
    ASSERT_TRUE(open("builtin:casting@64"));
    const std::size_t before = LyqSession::instance().layers().size();
    QString message;
    ASSERT_TRUE(window->analyses().start(analysis("defect-volume"), message));
    EXPECT_FALSE(window->analyses().start(analysis("wall-thickness"), message));
    EXPECT_FALSE(message.isEmpty());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->isBusy(); }, 60000));
    ASSERT_TRUE(window->analyses().start(analysis("wall-thickness"), message));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->isBusy(); }, 60000));
    EXPECT_EQ(LyqSession::instance().layers().size(), before + 2);
}

TEST_F(OpenWorkbench, a_volume_closed_while_an_analysis_runs_ends_it_without_a_result) {
    ASSERT_TRUE(open("builtin:casting@128"));
    QString message;
    ASSERT_TRUE(window->analyses().start(analysis("wall-thickness"), message));
    window->closeVolume();
    EXPECT_FALSE(window->analyses().isRunning());
    QTest::qWait(100);
    EXPECT_TRUE(LyqSession::instance().layers().empty());
    EXPECT_TRUE(LyqSession::instance().reports().empty());
}

TEST_F(OpenWorkbench, a_cancelled_analysis_leaves_everything_as_it_was) {
    ASSERT_TRUE(open("builtin:casting@128"));
    const std::size_t before = LyqSession::instance().layers().size();
    QString message;
    ASSERT_TRUE(window->analyses().start(analysis("defect-volume"), message));
    QTest::qWait(40);
    window->analyses().cancel();
    EXPECT_FALSE(window->analyses().isRunning());
    QTest::qWait(100);
    EXPECT_EQ(LyqSession::instance().layers().size(), before);
    EXPECT_TRUE(LyqSession::instance().reports().empty());
}

TEST_F(OpenWorkbench, a_defect_of_the_list_is_shown_and_one_that_is_clicked_is_selected) {
    ASSERT_TRUE(open("builtin:casting@64"));
    QString message;
    ASSERT_TRUE(window->analyses().start(analysis("defect-volume"), message)) << message.toStdString();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->isBusy(); }, 60000));
    auto* list = window->findChild<QTableView*>("defectList");
    ASSERT_TRUE(list);
    EXPECT_TRUE(list->isVisible());
    std::vector<LyrCasting::Pore> pores = LyrCasting::truth(64).pores;
    ASSERT_EQ(std::size_t(list->model()->rowCount()), pores.size());
    std::sort(pores.begin(), pores.end(),
              [](const LyrCasting::Pore& a, const LyrCasting::Pore& b) { return a.volume > b.volume; });
    const LyrWorkspace* workspace = LyqApplication::instance().workspace();
    ASSERT_TRUE(workspace);
    LyqSliceWidget* view = window->views().sliceView(2);
    list->selectRow(0);
    settle();
    const LyrVector3<float> cross = workspace->getCrossPosition();
    EXPECT_NEAR(cross.x, pores[0].center[0], 0.5);
    EXPECT_NEAR(cross.y, pores[0].center[1], 0.5);
    EXPECT_NEAR(cross.z, pores[0].center[2], 0.5);
    const QImage marked = view->getImage();
    // Another one is clicked: it is selected, the first one loses its mark, and nothing moves.
    const auto& other = pores[1].center;
    Q_EMIT window->views().positionPicked({float(other[0]), float(other[1]), float(other[2])});
    settle();
    EXPECT_EQ(list->currentIndex().row(), 1);
    EXPECT_EQ(workspace->getCrossPosition(), cross);
    EXPECT_NE(view->getImage(), marked);
}
