#include "AnalysisTools.h"
#include "BlockVolume.h"

#include <analysis/AnalysisIdentifiers.h>
#include <analysis/LibraryInit.h>
#include <analysis/LyrDefectLayer.h>
#include <analysis/LyrThicknessLayer.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LyrColorLookupTableRenderSettings.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <gtest/gtest.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqAnalysisExtension.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqExtensionRegistry.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QUndoStack>

#include <cmath>

namespace {

/** The plug-in at work over a document. */
struct Analysed : ToolkitApplication {
    Analysed(const char* id, const std::shared_ptr<const LyrVolume>& volume) {
        LYQANALYSIS::LibraryInit::init();
        document = LyrObjectPtr(new LyrVolumeObject(volume, "block", "block"));
        auto* analysis = LyqExtensionRegistry::instance().find<LyqAnalysisExtension>(id);
        if (analysis && analysis->accepts(document.get())) {
            run = analysis->createRun(document.get(), message);
        }
        done = run && run->compute([](double) { return true; }, message);
        layers = done ? run->createLayers() : std::vector<LyrObjectPtr>();
    }
    ~Analysed() {
        layers.clear();
        run.reset();
        LYQANALYSIS::LibraryInit::cleanup();
    }
    template <class Layer>
    Layer& layer() const {
        return dynamic_cast<Layer&>(*layers.at(0));
    }

    LyrObjectPtr document;
    std::unique_ptr<LyqAnalysisRun> run;
    QString message;
    bool done = false;
    std::vector<LyrObjectPtr> layers;
};

std::vector<float> positions(const LyrColoredLayer& layer) {
    LyrValueArrayOPCache<float> list;
    list.load(layer.table(), Lyr::PositionList);
    return list.items();
}

QString caption(const LyrObject* settings) {
    return QString::fromUtf8(lyrGetValue<const char*>(settings, Lyr::Description, ""));
}

QVariant total(const LyqReport& report, const QString& id) {
    for (const LyqReport::Total& each : report.totals) {
        if (each.id == id) {
            return each.value;
        }
    }
    return {};
}

std::shared_ptr<const LyrVolume> volumeOf(LyrVolume::Size size, std::vector<float> samples) {
    LyrVolume::Description description;
    description.size = size;
    return LyrVolume::create(description, std::move(samples));
}

}  // namespace

TEST(DefectVolume, the_result_is_a_layer_with_a_table_of_volumes_over_those_that_there_are) {
    const Analysed made("defect-volume", hollowBlock());
    ASSERT_EQ(made.layers.size(), 1u) << made.message.toStdString();
    const auto& layer = made.layer<LyrDefectLayer>();
    EXPECT_EQ(lyrGetValue<Lyrenum>(layer.table(), Lyr::Quantity, -1), Lyr::Volume);
    const std::vector<float> range = positions(layer);
    ASSERT_EQ(range.size(), 2u);
    // 2 and 8 voxels of 8 mm³.
    EXPECT_NEAR(range[0], 16.0f, 0.5f);
    EXPECT_NEAR(range[1], 64.0f, 0.5f);
    EXPECT_EQ(LyqApplication::instance().undoStack().count(), 0);
}

TEST(DefectVolume, its_legend_has_settings_of_its_own_class_at_the_bottom_with_type_and_unit) {
    const Analysed made("defect-volume", hollowBlock());
    ASSERT_TRUE(made.done);
    const LyrObject* settings = made.layer<LyrDefectLayer>().renderSettings();
    EXPECT_STREQ(settings->getMetaClass().getClassName(), "LyrDefectDetectionColorLookupTableRenderSettings");
    EXPECT_EQ(lyrGetValue<Lyrenum>(settings, Lyr::Position, -1), Lyr::Bottom);
    EXPECT_EQ(caption(settings), "Defect volume [%l]");
    std::string text;
    ASSERT_TRUE(LyrObjectFile::write(*settings, text));
    EXPECT_NE(text.find("\"base\": \"LyrColorLookupTableRenderSettings\""), std::string::npos);
}

TEST(DefectVolume, settings_of_its_class_are_copied_with_what_was_changed) {
    const ToolkitApplication application;
    LYQANALYSIS::LibraryInit::init();
    {
        const LyrObjectRefPtr made("LyrDefectDetectionColorLookupTableRenderSettings", Lyr::TransientScope);
        ASSERT_TRUE(made);
        lyrSetValue<Lyrenum>(made.get(), Lyr::Position, Lyr::Top);
        const LyrObjectPtr copy(static_cast<LyrObject*>(made->getMetaClass().clone(made.get())));
        ASSERT_TRUE(copy);
        EXPECT_EQ(lyrGetValue<Lyrenum>(copy.get(), Lyr::Position, -1), Lyr::Top);
        EXPECT_EQ(caption(copy.get()), "Defect volume [%l]");
    }
    LYQANALYSIS::LibraryInit::cleanup();
}

TEST(DefectVolume, a_place_of_the_world_tells_its_defect_and_the_readout_its_volume) {
    const Analysed made("defect-volume", hollowBlock());
    ASSERT_TRUE(made.done);
    const auto& layer = made.layer<LyrDefectLayer>();
    // Voxel (7, 6, 6) covers 14 to 16 mm along x.
    const LyrDefect* defect = layer.defectAt({15.0f, 13.0f, 13.0f});
    ASSERT_TRUE(defect);
    // The middle of voxels 6 and 7 is their common face.
    EXPECT_EQ(layer.centerOf(*defect), LyrVector3<float>(14.0f, 14.0f, 14.0f));
    EXPECT_EQ(layer.defectAt({3.0f, 3.0f, 3.0f}), nullptr);
    EXPECT_EQ(layer.defectAt({-3.0f, 3.0f, 3.0f}), nullptr);
    LyqLayer::Readout readout;
    EXPECT_TRUE(layer.readout({15.0f, 13.0f, 13.0f}, readout));
    EXPECT_TRUE(readout.text.contains("mm"));
    EXPECT_FALSE(layer.readout({3.0f, 3.0f, 3.0f}, readout)) << "material has no defect volume";
}

TEST(DefectVolume, slices_show_defects_only_and_a_line_around_the_marked_one) {
    const Analysed made("defect-volume", hollowBlock());
    ASSERT_TRUE(made.done);
    auto& layer = made.layer<LyrDefectLayer>();
    std::vector<float> values(144);
    ASSERT_TRUE(layer.values()->slice(LyrVolume::Axis::Z, 6, values));
    const auto opaque = [&] {
        std::vector<std::uint8_t> pixels(4 * 144, 200);
        layer.finishSlice(2, 6, values, pixels);
        int seen = 0, line = 0;
        for (std::size_t i = 0; i < 144; ++i) {
            seen += pixels[4 * i + 3] > 0 ? 1 : 0;
            line += pixels[4 * i] == 255 && pixels[4 * i + 1] == 140 && pixels[4 * i + 2] == 0 ? 1 : 0;
        }
        return std::pair(seen, line);
    };
    EXPECT_EQ(opaque(), std::pair(4, 0));
    EXPECT_FALSE(layer.setMarkedDefect(3));
    // The larger one comes first: 2 × 2 voxels have 8 neighbours by a side.
    ASSERT_TRUE(layer.setMarkedDefect(1));
    EXPECT_EQ(opaque(), std::pair(12, 8));
    ASSERT_TRUE(layer.setMarkedDefect(2));
    EXPECT_EQ(opaque(), std::pair(4, 0)) << "the other one lies in another slice";
}

TEST(DefectVolume, marking_a_defect_is_told_and_is_nothing_to_undo) {
    const Analysed made("defect-volume", hollowBlock());
    ASSERT_TRUE(made.done);
    auto& layer = made.layer<LyrDefectLayer>();
    const LyrTimestamp before = LyrTimestamp::getCurrentTimestamp();
    ASSERT_TRUE(layer.setMarkedDefect(1));
    EXPECT_GT(layer.getModificationTimestamp(), before);
    EXPECT_GT(layer.getFinishTimestamp(), before);
    EXPECT_EQ(LyqApplication::instance().undoStack().count(), 0);
}

TEST(DefectVolume, the_scene_shows_the_surfaces_of_the_defects_each_with_its_volume) {
    const Analysed made("defect-volume", hollowBlock());
    ASSERT_TRUE(made.done);
    const auto& layer = made.layer<LyrDefectLayer>();
    const auto mesh = layer.mesh();
    ASSERT_TRUE(mesh);
    std::vector<float> values;
    layer.valuesOnMesh(*mesh, values);
    ASSERT_EQ(values.size(), mesh->positions.size() / 3);
    int small = 0, large = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const float x = mesh->positions[3 * i];
        // The small one covers 6 to 10 mm along x, the large one 12 to 16 mm; half a voxel is left to the surface.
        const bool isSmall = x > 4.9f && x < 11.0f;
        EXPECT_NEAR(values[i], isSmall ? 16.0f : 64.0f, 0.5f) << i;
        EXPECT_LT(x, 17.1f);
        (isSmall ? small : large) += 1;
    }
    EXPECT_GT(small, 8);
    EXPECT_GT(large, 8);
}

TEST(DefectVolume, its_report_lists_the_defects_the_largest_first_with_totals) {
    const Analysed made("defect-volume", hollowBlock());
    ASSERT_TRUE(made.done);
    const LyqReport report = made.run->report();
    ASSERT_EQ(report.rows.size(), 2);
    EXPECT_EQ(report.columns.size(), report.rows[0].size());
    EXPECT_EQ(report.rows[0][0].toInt(), 1);
    EXPECT_NEAR(report.rows[0][1].toDouble(), 64.0, 0.5);
    // Own axes of the volume: 10 mm and six and a half steps of 2 mm.
    EXPECT_DOUBLE_EQ(report.rows[0][2].toDouble(), 23.0);
    EXPECT_EQ(report.rowsLeftOut, 0);
    EXPECT_EQ(total(report, "defect_count").toInt(), 2);
    // 10 voxels of hollow in a part of 10³ voxels.
    EXPECT_NEAR(total(report, "porosity_percent").toDouble(), 1.0, 0.02);
}

TEST(DefectVolume, a_report_is_saved_by_its_ending_and_says_what_is_wrong_with_a_path) {
    const Analysed made("defect-volume", hollowBlock());
    ASSERT_TRUE(made.done);
    const QTemporaryDir folder;
    QString message;
    EXPECT_TRUE(made.run->saveReport(folder.filePath("r.csv"), message)) << message.toStdString();
    EXPECT_TRUE(QFile::exists(folder.filePath("r.csv")));
    EXPECT_FALSE(made.run->saveReport("/there/is/no/folder/r.csv", message));
    EXPECT_TRUE(message.contains("/there/is/no/folder")) << message.toStdString();
    EXPECT_FALSE(made.run->saveReport(folder.filePath("r.txt"), message));
    EXPECT_TRUE(message.contains(".json"));
}

TEST(DefectVolume, a_part_without_defects_is_a_result_too) {
    std::vector<float> samples(64, 0.0f);
    for (int i : {21, 22, 25, 26, 37, 38, 41, 42}) {
        samples[std::size_t(i)] = 1.0f;
    }
    const Analysed made("defect-volume", volumeOf({4, 4, 4}, samples));
    ASSERT_TRUE(made.done) << made.message.toStdString();
    EXPECT_EQ(positions(made.layer<LyrDefectLayer>()), (std::vector<float>{0.0f, 1.0f}));
    EXPECT_TRUE(made.layer<LyrDefectLayer>().mesh()->triangles.empty());
    EXPECT_TRUE(made.run->report().rows.isEmpty());
}

TEST(WallThickness, the_result_is_a_layer_with_a_table_of_lengths_and_a_legend_on_the_right) {
    // A plate of 3 voxels across x, 1 mm each, between air.
    std::vector<float> samples;
    for (int i = 0; i < 9 * 9 * 9; ++i) {
        samples.push_back(i % 9 >= 3 && i % 9 <= 5 ? 1.0f : 0.0f);
    }
    const Analysed made("wall-thickness", volumeOf({9, 9, 9}, samples));
    ASSERT_EQ(made.layers.size(), 1u) << made.message.toStdString();
    const auto& layer = made.layer<LyrThicknessLayer>();
    EXPECT_EQ(lyrGetValue<Lyrenum>(layer.table(), Lyr::Quantity, -1), Lyr::Length);
    EXPECT_NEAR(positions(layer).at(0), 3.0f, 0.6f);
    const LyrObject* settings = layer.renderSettings();
    EXPECT_STREQ(settings->getMetaClass().getClassName(), "LyrWallThicknessColorLookupTableRenderSettings");
    EXPECT_EQ(lyrGetValue<Lyrenum>(settings, Lyr::Position, -1), Lyr::Right);
    EXPECT_EQ(caption(settings), "Wall thickness [%l]");
    EXPECT_NEAR(total(made.run->report(), "mean_mm").toDouble(), 3.0, 0.6);
    // A place on the plate's face, nearer to the air: what counts is the material behind it.
    LyrRendering::SurfaceMesh mesh;
    mesh.positions = {2.7f, 4.5f, 4.5f, 0.2f, 4.5f, 4.5f};
    std::vector<float> values;
    layer.valuesOnMesh(mesh, values);
    ASSERT_EQ(values.size(), 2u);
    EXPECT_NEAR(values[0], 3.0f, 0.6f);
    EXPECT_TRUE(std::isnan(values[1]));
}

TEST(VolumeAnalyses, volumes_that_cannot_be_analysed_are_a_message) {
    const std::vector<std::shared_ptr<const LyrVolume>> volumes = {volumeOf({2, 2, 2}, std::vector<float>(8, 7.0f)),
                                                                   volumeOf({1, 1, 1}, {3.0f}),
                                                                   volumeOf({2, 1, 1}, {NAN, INFINITY})};
    for (const char* id : {"defect-volume", "wall-thickness"}) {
        for (const auto& volume : volumes) {
            const Analysed made(id, volume);
            EXPECT_FALSE(made.done) << id;
            EXPECT_FALSE(made.message.isEmpty()) << id;
        }
    }
}

TEST(VolumeAnalyses, one_slice_is_analysed_as_a_flat_figure) {
    // A plate of 16 × 16 with a hollow of 3 × 2.
    std::vector<float> samples;
    for (int i = 0; i < 400; ++i) {
        const int x = i % 20;
        const int y = i / 20;
        const bool hollow = x >= 8 && x < 11 && y >= 9 && y < 11;
        samples.push_back(x >= 2 && x < 18 && y >= 2 && y < 18 && !hollow ? 1.0f : 0.0f);
    }
    for (const char* id : {"defect-volume", "wall-thickness"}) {
        const Analysed made(id, volumeOf({20, 20, 1}, samples));
        EXPECT_TRUE(made.done) << id << ": " << made.message.toStdString();
        EXPECT_EQ(made.message, QString()) << id;
        const LyqReport report = made.run->report();
        if (QString::fromUtf8(id) == "defect-volume") {
            EXPECT_EQ(report.rows.size(), 1);
        }
    }
}

TEST(VolumeAnalyses, the_report_of_wall_thickness_has_bins_until_the_table_divides_the_values) {
    const Analysed made("wall-thickness", hollowBlock());
    ASSERT_TRUE(made.done) << made.message.toStdString();
    const QTemporaryDir folder;
    const QString file = folder.filePath("walls.json");
    const auto rowsOf = [&](const char* name) {
        QString message;
        EXPECT_TRUE(made.run->saveReport(file, message)) << message.toStdString();
        QFile saved(file);
        EXPECT_TRUE(saved.open(QIODevice::ReadOnly));
        return QJsonDocument::fromJson(saved.readAll()).object()[name].toArray();
    };
    EXPECT_EQ(rowsOf("bins").size(), 50);
    EXPECT_EQ(rowsOf("sections").size(), 0);
    // One boundary moved: the table is no more the rainbow from the least to the greatest thickness.
    const auto& layer = made.layer<LyrThicknessLayer>();
    const float least = positions(layer).front();
    LyrValueArrayOPCache<float> list;
    ASSERT_TRUE(list.load(layer.table(), Lyr::PositionList));
    list.items().front() = least - 1.0f;
    ASSERT_TRUE(list.store(layer.table(), Lyr::PositionList));
    const QJsonArray sections = rowsOf("sections");
    ASSERT_EQ(sections.size(), 3);
    EXPECT_EQ(float(sections[1].toObject()["from_mm"].toDouble()), least - 1.0f);
    EXPECT_NEAR(sections[1].toObject()["percent"].toDouble(), 100.0, 1e-9);
}

TEST(VolumeAnalyses, a_cancelled_one_fails_without_a_message) {
    const ToolkitApplication application;
    LYQANALYSIS::LibraryInit::init();
    const LyrObjectPtr document(new LyrVolumeObject(hollowBlock(), "block", "block"));
    for (const char* id : {"defect-volume", "wall-thickness"}) {
        auto* analysis = LyqExtensionRegistry::instance().find<LyqAnalysisExtension>(id);
        ASSERT_TRUE(analysis) << id;
        QString message;
        const auto run = analysis->createRun(document.get(), message);
        ASSERT_TRUE(run);
        EXPECT_FALSE(run->compute([](double) { return false; }, message));
        EXPECT_EQ(message, QString()) << id;
    }
    LYQANALYSIS::LibraryInit::cleanup();
}
