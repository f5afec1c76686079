#include "RunProgram.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QSet>
#include <QTemporaryDir>

TEST(Screenshot, writes_a_picture_of_the_window_with_the_volume_in_color_and_ends) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("window.png");
    const EndedProgram ended = runWorkbench({"builtin:casting@48", "--screenshot", file, "--size", "900x700"});
    EXPECT_EQ(ended.status, 0) << ended.errors.toStdString();
    EXPECT_FALSE(ended.errors.contains("workbench:")) << ended.errors.toStdString();
    const QImage picture(file);
    EXPECT_EQ(picture.size(), QSize(900, 700));
    int red = 0, blue = 0, green = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor color = picture.pixelColor(x, y);
            red += color == QColor(255, 0, 0) ? 1 : 0;                                     // material in the slices
            blue += color == QColor(0, 0, 255) ? 1 : 0;                                    // air in the slices
            green += color.green() > 60 && color.red() < 40 && color.blue() < 40 ? 1 : 0;  // the surface between them
        }
    }
    EXPECT_GT(red, 10000);
    EXPECT_GT(blue, 10000);
    EXPECT_GT(green, 2000);
}

TEST(Screenshot, a_volume_that_cannot_be_read_is_a_message_and_status_2) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("window.png");
    const EndedProgram ended = runWorkbench({"/there/is/no/volume.nrrd", "--screenshot", file});
    EXPECT_EQ(ended.status, 2);
    EXPECT_TRUE(ended.errors.contains("volume.nrrd"));
    EXPECT_FALSE(QFile::exists(file));
}

TEST(Screenshot, a_picture_that_cannot_be_written_is_a_message_and_status_1) {
    const EndedProgram ended = runWorkbench({"builtin:casting@16", "--screenshot", "/there/is/no/folder/window.png"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_TRUE(ended.errors.contains("/there/is/no/folder/window.png"));
}

TEST(Screenshot, wrong_usage_is_status_2_and_says_why) {
    EXPECT_EQ(runWorkbench({"--nonsense"}).status, 2);
    const EndedProgram size = runWorkbench({"--size", "12"});
    EXPECT_EQ(size.status, 2);
    EXPECT_TRUE(size.errors.contains("--size"));
    EXPECT_EQ(runWorkbench({"--help"}).status, 0);
}

TEST(Screenshot, a_value_that_is_empty_is_wrong_usage) {
    for (const char* option : {"--analysis", "--preset", "--report", "--screenshot", "--size", "--threshold"}) {
        const EndedProgram ended = runWorkbench(
            {"builtin:casting@16", "--analysis", "defect-volume", "--report", "/there/is/no/r.csv", option, ""});
        EXPECT_EQ(ended.status, 2) << option;
        EXPECT_TRUE(ended.errors.contains(option)) << ended.errors.toStdString();
    }
    EXPECT_EQ(runWorkbench({""}, false).status, 2);
}

TEST(Screenshot, without_a_display_the_picture_is_drawn_under_a_virtual_one) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("a window.png");
    const EndedProgram ended = runWorkbench({"builtin:casting@16", "--screenshot", file, "--size", "900x700"}, false);
    EXPECT_EQ(ended.status, 0) << ended.errors.toStdString();
    EXPECT_EQ(QImage(file).size(), QSize(900, 700));
    EXPECT_EQ(runWorkbench({"/there/is/no/volume.nrrd", "--screenshot", file}, false).status, 2);
}

TEST(Screenshot, without_a_display_it_says_how_to_have_one) {
    const EndedProgram ended = runWorkbench({}, false);
    EXPECT_EQ(ended.status, 2);
    EXPECT_TRUE(ended.errors.contains("xvfb-run"));
}
