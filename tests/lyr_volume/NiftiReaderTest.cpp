// NIfTI files through LyrVolumeReader.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <limits>

#include "lyr_volume/SampleFiles.h"

using samples::Bytes;
using samples::expectEveryCutRefused;
using samples::expectRamp;
using samples::expectRefused;
using samples::Folder;
using samples::gzip;
using samples::ramp;
using samples::readVolume;

namespace {

struct First {
    bool bigEndian = false;
    std::vector<std::int16_t> dim{3, 4, 3, 2};
    std::int16_t datatype = 4;
    std::int16_t bits = 16;
    float slope = 0.0F;
    float intercept = 0.0F;
    std::uint8_t units = 2;
    float place = 352.0F;
    std::int16_t intent = 0;
    const char* magic = "n+1";
};

/** A header of version 1 with four bytes behind it that say "no extensions". */
Bytes firstHeader(const First& f) {
    Bytes bytes;
    bytes.zeros(352);
    bytes.set<std::int32_t>(0, 348, f.bigEndian);
    for (std::size_t i = 0; i < f.dim.size(); ++i) {
        bytes.set<std::int16_t>(40 + 2 * i, f.dim[i], f.bigEndian);
    }
    bytes.set<std::int16_t>(68, f.intent, f.bigEndian);
    bytes.set<std::int16_t>(70, f.datatype, f.bigEndian);
    bytes.set<std::int16_t>(72, f.bits, f.bigEndian);
    bytes.set<float>(80, 0.5F, f.bigEndian).set<float>(84, 0.25F, f.bigEndian).set<float>(88, 2.0F, f.bigEndian);
    bytes.set<float>(108, f.place, f.bigEndian);
    bytes.set<float>(112, f.slope, f.bigEndian).set<float>(116, f.intercept, f.bigEndian);
    bytes.set<std::uint8_t>(123, f.units);
    for (std::size_t i = 0; i < 3; ++i) {
        bytes.set<char>(344 + i, f.magic[i]);
    }
    return bytes;
}

}  // namespace

TEST(NiftiReader, reads_every_sample_type_in_both_byte_orders) {
    const Folder folder;
    const auto check = [&](std::int16_t datatype, const Bytes& little, const Bytes& big, double first) {
        First f;
        f.datatype = datatype;
        f.bits = static_cast<std::int16_t>(little.size() * 8 / 24);
        const auto outcome = readVolume(folder.write("a.nii", firstHeader(f).append(little)));
        expectRamp(outcome, {4, 3, 2}, first);
        EXPECT_EQ(outcome.warnings(), "");
        f.bigEndian = true;
        expectRamp(readVolume(folder.write("a.nii", firstHeader(f).append(big))), {4, 3, 2}, first);
    };
    check(2, ramp<std::uint8_t>(24, 9), ramp<std::uint8_t>(24, 9, true), 9);
    check(256, ramp<std::int8_t>(24, -9), ramp<std::int8_t>(24, -9, true), -9);
    check(4, ramp<std::int16_t>(24, -300), ramp<std::int16_t>(24, -300, true), -300);
    check(512, ramp<std::uint16_t>(24, 40000), ramp<std::uint16_t>(24, 40000, true), 40000);
    check(8, ramp<std::int32_t>(24, -70000), ramp<std::int32_t>(24, -70000, true), -70000);
    check(768, ramp<std::uint32_t>(24, 70000), ramp<std::uint32_t>(24, 70000, true), 70000);
    check(1024, ramp<std::int64_t>(24, -5), ramp<std::int64_t>(24, -5, true), -5);
    check(1280, ramp<std::uint64_t>(24, 5), ramp<std::uint64_t>(24, 5, true), 5);
    check(16, ramp<float>(24, 0.5F), ramp<float>(24, 0.5F, true), 0.5);
    check(64, ramp<double>(24, 0.5), ramp<double>(24, 0.5, true), 0.5);
}

TEST(NiftiReader, brings_spacing_to_mm_from_metres_and_microns) {
    const Folder folder;
    const auto spacing = [&](std::uint8_t units) {
        First f;
        f.units = units;
        const auto outcome = readVolume(folder.write("a.nii", firstHeader(f).append(ramp<std::int16_t>(24))));
        EXPECT_TRUE(outcome.read) << outcome.report.error;
        EXPECT_EQ(outcome.volume->unit(), "mm");
        return outcome.volume->spacing();
    };
    EXPECT_EQ(spacing(2), (LyrVolume::Vector{0.5, 0.25, 2.0}));
    EXPECT_EQ(spacing(0), (LyrVolume::Vector{0.5, 0.25, 2.0}));
    EXPECT_EQ(spacing(1), (LyrVolume::Vector{500.0, 250.0, 2000.0}));
    EXPECT_EQ(spacing(3), (LyrVolume::Vector{0.0005, 0.00025, 0.002}));
    EXPECT_EQ(spacing(2 | 8), (LyrVolume::Vector{0.5, 0.25, 2.0}));  // 8: seconds along the fourth axis
}

TEST(NiftiReader, takes_the_origin_from_the_stated_transform) {
    const Folder folder;
    Bytes header = firstHeader({});
    header.set<float>(268, 1.0F).set<float>(272, 2.0F).set<float>(276, 3.0F);
    header.set<float>(292, 4.0F).set<float>(308, 5.0F).set<float>(324, 6.0F);
    const auto origin = [&](std::int16_t qform, std::int16_t sform) {
        header.set<std::int16_t>(252, qform).set<std::int16_t>(254, sform);
        Bytes file = header;
        return readVolume(folder.write("a.nii", file.append(ramp<std::int16_t>(24)))).volume->origin();
    };
    EXPECT_EQ(origin(0, 0), (LyrVolume::Vector{0.0, 0.0, 0.0}));
    EXPECT_EQ(origin(1, 0), (LyrVolume::Vector{1.0, 2.0, 3.0}));
    EXPECT_EQ(origin(1, 1), (LyrVolume::Vector{4.0, 5.0, 6.0}));
}

TEST(NiftiReader, applies_slope_and_intercept_in_double_and_narrows_once) {
    const Folder folder;
    First f;
    f.slope = 0.5F;
    f.intercept = -1024.0F;
    expectRamp(readVolume(folder.write("a.nii", firstHeader(f).append(ramp<std::int16_t>(24)))), {4, 3, 2}, -1024.0,
               0.5);

    // A slope of 0 says that there is none, and so does one that is not finite, which is worth a warning.
    f.slope = 0.0F;
    expectRamp(readVolume(folder.write("b.nii", firstHeader(f).append(ramp<std::int16_t>(24)))), {4, 3, 2});
    f.slope = std::numeric_limits<float>::quiet_NaN();
    const auto unusable = readVolume(folder.write("c.nii", firstHeader(f).append(ramp<std::int16_t>(24))));
    expectRamp(unusable, {4, 3, 2});
    EXPECT_NE(unusable.warnings().find("slope"), std::string::npos);

    // 16777217 has no float; times 3 plus 1 it is 50331652, which has one. Narrowing first would give 50331649 or so.
    f.slope = 3.0F;
    f.intercept = 1.0F;
    f.datatype = 8;
    f.bits = 32;
    f.dim = {3, 1, 1, 1};
    const auto precise = readVolume(folder.write("d.nii", firstHeader(f).put<std::int32_t>(16777217)));
    ASSERT_TRUE(precise.read) << precise.report.error;
    EXPECT_EQ(precise.volume->at(0, 0, 0), 50331652.0F);
}

TEST(NiftiReader, reads_gzip_also_of_several_members) {
    const Folder folder;
    Bytes file = firstHeader({}).append(ramp<std::int16_t>(24));
    expectRamp(readVolume(folder.write("a.nii.gz", gzip(file))), {4, 3, 2});
    Bytes rest;
    for (std::size_t i = 370; i < file.size(); ++i) {
        rest.put(file[i]);
    }
    expectRamp(readVolume(folder.write("b.nii.gz", gzip(file.first(370)).append(gzip(rest)))), {4, 3, 2});
    // The content tells, not the name.
    expectRamp(readVolume(folder.write("c.bin", gzip(file))), {4, 3, 2});
    expectRamp(readVolume(folder.write("d.nii", gzip(file))), {4, 3, 2});
    expectRamp(readVolume(folder.write("e.nii.gz", file)), {4, 3, 2});
}

TEST(NiftiReader, of_four_axes_the_first_frame_is_taken) {
    const Folder folder;
    First f;
    f.dim = {4, 2, 2, 3, 2};
    const Bytes file = firstHeader(f).append(ramp<std::int16_t>(24));
    const auto outcome = readVolume(folder.write("a.nii", file));
    expectRamp(outcome, {2, 2, 3});
    EXPECT_NE(outcome.warnings().find("2 frames"), std::string::npos);
    expectRamp(readVolume(folder.write("a.nii.gz", gzip(file))), {2, 2, 3});
    // What is missing of the second frame shows that the file is cut off.
    expectEveryCutRefused(folder, "b.nii", file);
    expectEveryCutRefused(folder, "b.nii.gz", gzip(file));
}

TEST(NiftiReader, every_cut_is_refused) {
    const Folder folder;
    const Bytes file = firstHeader({}).append(ramp<std::int16_t>(24));
    expectEveryCutRefused(folder, "a.nii", file);
    expectEveryCutRefused(folder, "a.nii.gz", gzip(file));
}

TEST(NiftiReader, reads_header_and_image_in_two_files) {
    const Folder folder;
    First f;
    f.magic = "ni1";
    f.place = 0.0F;
    folder.write("a.hdr", firstHeader(f));
    expectRefused(readVolume(folder.path("a.hdr")), {"a.img"});
    folder.write("a.img", ramp<std::int16_t>(24));
    expectRamp(readVolume(folder.path("a.hdr")), {4, 3, 2});
    folder.write("a.img", ramp<std::int16_t>(23));
    expectRefused(readVolume(folder.path("a.hdr")), {"a.img", "48 bytes"});
    folder.write("b.hdr", firstHeader(f));
    folder.write("b.img.gz", gzip(ramp<std::int16_t>(24)));
    expectRamp(readVolume(folder.path("b.hdr")), {4, 3, 2});
}

TEST(NiftiReader, reads_version_2) {
    const Folder folder;
    for (const bool big : {false, true}) {
        Bytes bytes;
        bytes.zeros(544);
        bytes.set<std::int32_t>(0, 540, big);
        bytes.set<char>(4, 'n').set<char>(5, '+').set<char>(6, '2');
        bytes.set<std::int16_t>(12, 512, big).set<std::int16_t>(14, 16, big);
        const std::array<std::int64_t, 4> dim{3, 4, 3, 2};
        for (std::size_t i = 0; i < 4; ++i) {
            bytes.set<std::int64_t>(16 + 8 * i, dim[i], big);
        }
        bytes.set<double>(112, 0.1, big).set<double>(120, 0.2, big).set<double>(128, 0.3, big);
        bytes.set<std::int64_t>(168, 544, big);
        bytes.set<double>(176, 2.0, big).set<double>(184, 5.0, big);
        bytes.set<std::int32_t>(348, 1, big);
        bytes.set<double>(424, -7.0, big);
        bytes.set<std::int32_t>(500, 2, big);
        bytes.append(ramp<std::uint16_t>(24, 0, big));
        const auto outcome = readVolume(folder.write("a.nii", bytes));
        expectRamp(outcome, {4, 3, 2}, 5.0, 2.0);
        EXPECT_EQ(outcome.volume->spacing(), (LyrVolume::Vector{0.1, 0.2, 0.3}));
        EXPECT_EQ(outcome.volume->origin()[0], -7.0);
        expectEveryCutRefused(folder, "b.nii", bytes, 3);
    }
}

TEST(NiftiReader, refuses_headers_that_lie_or_make_no_sense) {
    const Folder folder;
    const auto refuse = [&](const First& f, std::initializer_list<const char*> words) {
        expectRefused(readVolume(folder.write("a.nii", firstHeader(f).append(ramp<std::int16_t>(24)))), words);
        expectRefused(readVolume(folder.write("a.nii.gz", gzip(firstHeader(f).append(ramp<std::int16_t>(24))))),
                      {"a.nii.gz"});
    };
    First f;
    f.dim = {3, 4, 3, 3};
    refuse(f, {"a.nii", "72 bytes", "48 are there"});
    f.dim = {3, 4, 0, 2};
    refuse(f, {"a.nii", "size of 0"});
    f.dim = {3, -4, -3, 2};
    refuse(f, {"a.nii", "size of -4"});
    f.dim = {0, 4, 3, 2};
    refuse(f, {"a.nii", "0 dimensions"});
    f.dim = {8, 4, 3, 2, 1, 1, 1, 1};
    refuse(f, {"a.nii", "8 dimensions"});
    f.dim = {3, 32767, 32767, 32767};
    refuse(f, {"a.nii", "memory"});
    f.dim = {7, 32767, 32767, 32767, 32767, 32767, 32767, 32767};
    refuse(f, {"a.nii"});
    f = {};
    f.datatype = 128;  // RGB
    refuse(f, {"a.nii", "128"});
    f.datatype = 32;  // complex
    refuse(f, {"a.nii", "32"});
    f = {};
    f.place = 100.0F;
    refuse(f, {"a.nii", "place of the data"});
    f.place = std::numeric_limits<float>::quiet_NaN();
    refuse(f, {"a.nii", "place of the data"});
    f.place = 1e12F;
    refuse(f, {"a.nii"});
    f = {};
    f.dim = {5, 2, 2, 2, 1, 3};
    f.intent = 1007;
    refuse(f, {"a.nii", "3 values for each sample"});
}

TEST(NiftiReader, opens_the_real_head_of_57_by_67_by_56_voxels) {
    const char* folder = std::getenv("LYR_SAMPLE_VOLUMES");
    const std::string path = std::string(folder != nullptr ? folder : "") + "/head-mri.nii.gz";
    if (folder == nullptr || !std::filesystem::exists(path)) {
        GTEST_SKIP() << "LYR_SAMPLE_VOLUMES names no folder with head-mri.nii.gz";
    }
    const auto outcome = readVolume(path);
    ASSERT_TRUE(outcome.read) << outcome.report.error;
    EXPECT_EQ(outcome.volume->size(), (LyrVolume::Size{57, 67, 56}));
    EXPECT_EQ(outcome.volume->spacing(), (LyrVolume::Vector{2.75, 2.75, 2.75}));
    EXPECT_EQ(outcome.volume->unit(), "mm");
    EXPECT_LT(outcome.volume->valueRange().low, outcome.volume->valueRange().high);
}
