#include "Picture.h"
#include "ProgramRun.h"
#include "TableText.h"
#include "VolumeFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using volume_file::valueAt;

ProgramRun mapVolume(const std::string& table, const std::string& input, const std::string& output,
                     const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments = {"map", "--table", table, "-i", input, "-o", output};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return ProgramRun::of(arguments);
}

/// What a picture shows for a value under the default rainbow between two positions.
Picture::Pixel rainbowPixel(float value, float low, float high) {
    plain::Table table = plain::rainbowTable();
    table.positions = {low, high};
    plain::Color color;
    EXPECT_EQ(plain::one(table, value, &color), plain::Outcome::Colored);
    Picture::Pixel pixel;
    for (std::size_t c = 0; c < 4; ++c)
        pixel[c] = std::uint8_t(color.c[c] * 255.0f);
    return pixel;
}

TEST(MapVolume, a_slice_across_z_has_x_to_the_right_and_y_downwards) {
    TestFolder folder;
    const std::string volume = folder.write("v.nrrd", volume_file::counting());
    const ProgramRun run = mapVolume("Rainbow", volume, folder / "out.png", {"--slice", "z:1", "--range", "90,130"});
    ASSERT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(run.out + run.error, "");
    const Picture picture = Picture::decode(readBytes(folder / "out.png"));
    ASSERT_EQ(picture.width, 4u);
    ASSERT_EQ(picture.height, 3u);
    EXPECT_EQ(picture.bitDepth, 8);
    EXPECT_EQ(picture.colorType, 6);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(picture.at(unsigned(x), unsigned(y)), rainbowPixel(valueAt(x, y, 1), 90, 130)) << x << ' ' << y;
    EXPECT_THAT(folder.names(), ElementsAre("out.png", "v.nrrd"));
}

TEST(MapVolume, slices_across_x_and_y_have_z_downwards) {
    TestFolder folder;
    const std::string volume = folder.write("v.nrrd", volume_file::counting());
    ASSERT_EQ(mapVolume("Rainbow", volume, folder / "x.png", {"--slice", "x:3", "--range", "0,130"}).status, 0);
    ASSERT_EQ(mapVolume("Rainbow", volume, folder / "y.png", {"--slice", "y:0", "--range", "0,130"}).status, 0);
    const Picture x = Picture::decode(readBytes(folder / "x.png"));
    const Picture y = Picture::decode(readBytes(folder / "y.png"));
    ASSERT_EQ(std::vector<unsigned>({x.width, x.height, y.width, y.height}), std::vector<unsigned>({3, 2, 4, 2}));
    for (int z = 0; z < 2; ++z) {
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(x.at(unsigned(i), unsigned(z)), rainbowPixel(valueAt(3, i, z), 0, 130));
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(y.at(unsigned(i), unsigned(z)), rainbowPixel(valueAt(i, 0, z), 0, 130));
    }
}

TEST(MapVolume, the_middle_slice_across_z_is_taken_when_none_is_named) {
    TestFolder folder;
    const std::string volume = folder.write("v.nrrd", volume_file::counting());
    ASSERT_EQ(mapVolume("Rainbow", volume, folder / "a.png", {"--range", "0,130"}).status, 0);
    ASSERT_EQ(mapVolume("Rainbow", volume, folder / "b.png", {"--range", "0,130", "--slice", "z:1"}).status, 0);
    EXPECT_EQ(readBytes(folder / "a.png"), readBytes(folder / "b.png"));
}

TEST(MapVolume, the_automatic_range_is_that_of_the_whole_volume) {
    TestFolder folder;
    const std::string volume = folder.write("v.nrrd", volume_file::counting());
    ASSERT_EQ(mapVolume("Rainbow", volume, folder / "out.png", {"--slice", "z:0", "--range", "auto"}).status, 0);
    const Picture picture = Picture::decode(readBytes(folder / "out.png"));
    // The smallest value is 0, the largest 3 + 20 + 100.
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(picture.at(unsigned(x), unsigned(y)), rainbowPixel(valueAt(x, y, 0), 0, 123)) << x << ' ' << y;
}

TEST(MapVolume, values_are_taken_as_they_are_without_a_range) {
    TestFolder folder;
    const std::string volume = folder.write("v.nrrd", volume_file::counting());
    ASSERT_EQ(mapVolume("Rainbow", volume, folder / "out.png", {"--slice", "z:0"}).status, 0);
    const Picture picture = Picture::decode(readBytes(folder / "out.png"));
    EXPECT_EQ(picture.at(0, 0), (Picture::Pixel{0, 255, 0, 255}));    // 0, the middle of the rainbow
    EXPECT_EQ(picture.at(1, 0), (Picture::Pixel{255, 0, 0, 255}));    // 1, its end
    EXPECT_EQ(picture.at(2, 0), (Picture::Pixel{255, 0, 153, 255}));  // 2, above: int(0.6 · 255) = 153
}

TEST(MapVolume, channels_are_truncated_clamped_and_not_premultiplied) {
    TestFolder folder;
    const float nan = std::nanf("");
    const std::string table = folder.write(
        "t.json",
        table_text::table({0, 1, 2}, {table_text::constant(-1, 2, nan, 0.5f), table_text::constant(0.999f, 0.5f, 1, 0),
                                      table_text::constant(INFINITY, -INFINITY, 1.0f / 255, 0.9999999f),
                                      table_text::constant(0.0039f, 254.0f / 255, 0.25f, 1)}));
    const std::string volume = folder.write("v.nrrd", volume_file::header("4 1 1") + bytesOf({-1, 0.5f, 1.5f, 3}));
    const ProgramRun run = mapVolume(table, volume, folder / "out.png");
    ASSERT_EQ(run.status, 0) << run.error;
    const Picture picture = Picture::decode(readBytes(folder / "out.png"));
    EXPECT_EQ(picture.at(0, 0), (Picture::Pixel{0, 255, 0, 127}));
    EXPECT_EQ(picture.at(1, 0), (Picture::Pixel{254, 127, 255, 0}));
    EXPECT_EQ(picture.at(2, 0), (Picture::Pixel{255, 0, 1, 254}));
    EXPECT_EQ(picture.at(3, 0), (Picture::Pixel{0, 254, 63, 255}));
}

TEST(MapVolume, all_slices_become_numbered_pictures) {
    TestFolder folder;
    const std::string volume = folder.write("v.nrrd", volume_file::counting());
    folder.write("out-0001.png", "old");
    ASSERT_EQ(mapVolume("Rainbow", volume, folder / "out-%04d.png", {"--all", "--range", "auto"}).status, 0);
    EXPECT_THAT(folder.names(), ElementsAre("out-0000.png", "out-0001.png", "v.nrrd"));
    for (unsigned z = 0; z < 2; ++z) {
        const Picture picture = Picture::decode(readBytes(folder / ("out-000" + std::to_string(z) + ".png")));
        ASSERT_EQ(picture.pixels.size(), 12u);
        EXPECT_EQ(picture.at(3, 2), rainbowPixel(valueAt(3, 2, int(z)), 0, 123));
    }
}

TEST(MapVolume, markers_for_the_slices_number_take_every_plain_form) {
    TestFolder folder;
    const std::string volume = folder.write("v.nrrd", volume_file::counting());
    for (const char* name : {"a%d.png", "100%%b%02d.png", "c%3d.png"})
        EXPECT_EQ(mapVolume("Rainbow", volume, folder / name, {"--all"}).status, 0) << name;
    EXPECT_THAT(folder.names(),
                ElementsAre("100%b00.png", "100%b01.png", "a0.png", "a1.png", "c  0.png", "c  1.png", "v.nrrd"));
}

TEST(MapVolume, names_without_exactly_one_marker_are_refused) {
    TestFolder folder;
    const std::string volume = folder.write("v.nrrd", volume_file::counting());
    for (const char* name : {"out.png", "%d-%d.png", "%s.png", "%.png", "%05.png", "%%.png", "%x%d.png", "%-4d.png",
                             "%4$d.png", "%ld.png", "%999999999999d.png", "%d%n.png"}) {
        const ProgramRun run = mapVolume("Rainbow", volume, folder / name, {"--all"});
        EXPECT_EQ(run.status, 2) << name;
        EXPECT_THAT(run.error, HasSubstr("marker")) << name;
    }
    EXPECT_EQ(mapVolume("Rainbow", volume, folder / "out-%04d.png").status, 2) << "a marker without --all";
    EXPECT_THAT(folder.names(), ElementsAre("v.nrrd"));
}

TEST(MapVolume, a_whole_volume_becomes_one_file_of_colours_in_its_place_in_space) {
    TestFolder folder;
    const std::string volume = folder.write("v.nrrd", volume_file::counting());
    ASSERT_EQ(mapVolume("Rainbow", volume, folder / "out.nrrd", {"--all", "--range", "auto"}).status, 0);
    const std::string bytes = readBytes(folder / "out.nrrd");
    const std::size_t end = bytes.find("\n\n");
    ASSERT_NE(end, std::string::npos);
    const std::string header = bytes.substr(0, end + 1);
    EXPECT_THAT(header, testing::StartsWith("NRRD0004\n"));
    for (const char* line : {"\ntype: float\n", "\ndimension: 4\n", "\nsizes: 4 4 3 2\n",
                             "\nkinds: RGBA-color domain domain domain\n", "\nencoding: raw\n", "\nendian: little\n",
                             "\nspace dimension: 3\n", "\nspace directions: none (0.5,0,0) (0,1,0) (0,0,2)\n"})
        EXPECT_THAT(header, HasSubstr(line));
    const std::vector<float> colors = floatsOf(bytes.substr(end + 2));
    ASSERT_EQ(colors.size(), 4u * 24u);
    plain::Table table = plain::rainbowTable();
    table.positions = {0, 123};
    for (int i = 0; i < 24; ++i) {
        plain::Color expected;
        plain::one(table, valueAt(i % 4, i / 4 % 3, i / 12), &expected);
        EXPECT_TRUE(plain::sameColor(&colors[std::size_t(i) * 4], expected)) << i;
    }
}

TEST(MapVolume, one_slice_becomes_a_flat_file_of_colours) {
    TestFolder folder;
    const std::string volume = folder.write("v.nrrd", volume_file::counting());
    ASSERT_EQ(mapVolume("Rainbow", volume, folder / "out.nrrd", {"--slice", "y:2"}).status, 0);
    const std::string bytes = readBytes(folder / "out.nrrd");
    EXPECT_THAT(bytes, HasSubstr("\ndimension: 3\n"));
    EXPECT_THAT(bytes, HasSubstr("\nsizes: 4 4 2\n"));
    EXPECT_THAT(bytes, HasSubstr("\nspace directions: none (0.5,0) (0,2)\n"));
    EXPECT_EQ(bytes.size() - bytes.find("\n\n") - 2, 4u * 4u * 2u * sizeof(float));
}

TEST(MapVolume, slices_that_are_not_there_are_refused) {
    TestFolder folder;
    const std::string volume = folder.write("v.nrrd", volume_file::counting());
    for (const char* slice : {"z:2", "x:4", "y:3", "z:9223372036854775807", "z:9223372036854775808", "z:-1", "z:", "z",
                              "w:0", ":0", "", "z:1.5", "z:1x", "Z:0", "z:+1", "1"}) {
        const ProgramRun run = mapVolume("Rainbow", volume, folder / "out.png", {"--slice", slice});
        EXPECT_EQ(run.status, 2) << slice;
        EXPECT_THAT(run.error, HasSubstr("slice")) << slice;
    }
    EXPECT_EQ(mapVolume("Rainbow", volume, folder / "out-%d.png", {"--slice", "z:0", "--all"}).status, 2);
    EXPECT_THAT(folder.names(), ElementsAre("v.nrrd"));
}

TEST(MapVolume, outputs_of_another_kind_are_refused) {
    TestFolder folder;
    const std::string volume = folder.write("v.nrrd", volume_file::counting());
    for (const std::string& output : {folder / "out.jpg", folder / "out", std::string("-"), folder / "out.f32"})
        EXPECT_EQ(mapVolume("Rainbow", volume, output).status, 2) << output;
    EXPECT_THAT(folder.names(), ElementsAre("v.nrrd"));
}

TEST(MapVolume, a_volume_without_different_values_has_no_automatic_range) {
    TestFolder folder;
    const std::string flat = folder.write("flat.nrrd", volume_file::header("2 1 1") + bytesOf({5, 5}));
    const std::string empty =
        folder.write("nan.nrrd", volume_file::header("2 1 1") + bytesOf({std::nanf(""), INFINITY}));
    for (const std::string& volume : {flat, empty}) {
        const ProgramRun run = mapVolume("Rainbow", volume, folder / "out.png", {"--range", "auto"});
        EXPECT_EQ(run.status, 2);
        EXPECT_THAT(run.error, HasSubstr("--range"));
    }
    EXPECT_EQ(mapVolume("Rainbow", empty, folder / "out.png").status, 0) << "values that are not finite have colours";
}

TEST(MapVolume, unusable_volumes_are_refused_with_their_name) {
    TestFolder folder;
    folder.write("cut.nrrd", volume_file::counting().substr(0, volume_file::counting().size() - 1));
    folder.write("zero.nrrd", volume_file::header("4 0 2"));
    folder.write("huge.nrrd", volume_file::header("100000 100000 100000") + std::string(64, 'x'));
    folder.write("noise.bin", std::string(1000, 'x'));
    folder.write("empty.nii", "");
    std::filesystem::create_directory(folder / "empty-folder");
    const std::vector<std::string> before = folder.names();
    for (const char* name :
         {"cut.nrrd", "zero.nrrd", "huge.nrrd", "noise.bin", "empty.nii", "empty-folder", "missing.nrrd"}) {
        const ProgramRun run = mapVolume("Rainbow", folder / name, folder / "out.png");
        EXPECT_EQ(run.status, 2) << name;
        EXPECT_EQ(run.out, "") << name;
        EXPECT_THAT(run.error, HasSubstr(name));
        EXPECT_LT(run.peakMemory, 400000000) << name;
    }
    EXPECT_EQ(mapVolume("Rainbow", "builtin:nothing", folder / "out.png").status, 2);
    EXPECT_EQ(folder.names(), before);
}

TEST(MapVolume, a_voxel_without_a_colour_leaves_no_picture) {
    TestFolder folder;
    const std::string table = folder.write(
        "t.json",
        table_text::table({119.5f, 120.5f}, {table_text::constant(1, 0, 0, 1), table_text::section("Custom", {}),
                                             table_text::constant(0, 0, 1, 1)}));
    const std::string volume = folder.write("v.nrrd", volume_file::counting());
    folder.write("out-0.png", "old");
    // The value 120 is in the last slice only.
    EXPECT_EQ(mapVolume(table, volume, folder / "out-%d.png", {"--all"}).status, 1);
    EXPECT_EQ(mapVolume(table, volume, folder / "out.nrrd", {"--all"}).status, 1);
    EXPECT_EQ(mapVolume(table, volume, folder / "out.png", {"--slice", "z:1"}).status, 1);
    EXPECT_THAT(folder.names(), ElementsAre("out-0.png", "t.json", "v.nrrd"));
    EXPECT_EQ(readBytes(folder / "out-0.png"), "old");
    EXPECT_EQ(mapVolume(table, volume, folder / "out.png", {"--slice", "z:0"}).status, 0);
}

TEST(MapVolume, one_picture_that_cannot_be_written_takes_the_others_back) {
    TestFolder folder;
    const std::string volume = folder.write("v.nrrd", volume_file::header("1 1 4") + bytesOf({0, 0, 0, 0}));
    folder.write("out-0.png", "old");
    ASSERT_EQ(symlink("/dev/full", (folder / "out-2.png").c_str()), 0);
    EXPECT_EQ(mapVolume("Rainbow", volume, folder / "out-%d.png", {"--all"}).status, 1);
    EXPECT_THAT(folder.names(), ElementsAre("out-0.png", "out-2.png", "v.nrrd"));
    EXPECT_EQ(readBytes(folder / "out-0.png"), "old");

    std::filesystem::remove(folder / "out-2.png");
    std::filesystem::create_directory(folder / "out-3.png");
    EXPECT_EQ(mapVolume("Rainbow", volume, folder / "out-%d.png", {"--all"}).status, 1);
    EXPECT_THAT(folder.names(), ElementsAre("out-0.png", "out-3.png", "v.nrrd"));
    EXPECT_EQ(readBytes(folder / "out-0.png"), "old");
}

TEST(MapVolume, more_slices_than_files_may_be_open_are_no_difficulty) {
    TestFolder folder;
    const std::string volume =
        folder.write("v.nrrd", volume_file::header("1 1 1500") + bytesOf(std::vector<float>(1500, 0)));
    const ProgramRun run = mapVolume("Rainbow", volume, folder / "%d.png", {"--all"});
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(folder.names().size(), 1501u);
}

TEST(MapVolume, the_first_frame_is_taken_with_a_message) {
    TestFolder folder;
    const std::string frames = folder.write(
        "frames.nrrd", volume_file::header("1 1 1 2", "kinds: domain domain domain time\n", 4) + bytesOf({1, -1}));
    const ProgramRun run = mapVolume("Rainbow", frames, folder / "out.png");
    ASSERT_EQ(run.status, 0) << run.error;
    EXPECT_THAT(run.error, HasSubstr("frames.nrrd"));
    EXPECT_EQ(Picture::decode(readBytes(folder / "out.png")).at(0, 0), (Picture::Pixel{255, 0, 0, 255}));
}

TEST(MapVolume, the_built_in_casting_shows_material_and_air) {
    TestFolder folder;
    const ProgramRun run =
        mapVolume("Rainbow", "builtin:casting@64", folder / "out.png", {"--slice", "z:16", "--range", "auto"});
    ASSERT_EQ(run.status, 0) << run.error;
    const Picture picture = Picture::decode(readBytes(folder / "out.png"));
    ASSERT_EQ(picture.width, 64u);
    ASSERT_EQ(picture.height, 64u);
    // At 16.5 mm the block reaches from 4 to 60 mm; a pore of 3 mm radius lies around (12.2, 37.4, 16.1), solid
    // material at (31, 31).
    EXPECT_EQ(picture.at(1, 1), (Picture::Pixel{0, 0, 255, 255}));
    EXPECT_EQ(picture.at(12, 37), (Picture::Pixel{0, 0, 255, 255}));
    EXPECT_EQ(picture.at(31, 31), (Picture::Pixel{255, 0, 0, 255}));
}

}  // namespace
