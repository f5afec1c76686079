#include <lyr_volume/LyrVolumeReader.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <stdexcept>
#include <thread>

#include "lyr_volume/SampleFiles.h"

using samples::Bytes;
using samples::expectRamp;
using samples::expectRefused;
using samples::Folder;
using samples::ramp;
using samples::readVolume;

namespace {

std::string nrrdHeader(const std::string& sizes) {
    return "NRRD0004\ntype: uchar\ndimension: 3\nsizes: " + sizes + "\nencoding: raw\n\n";
}

}  // namespace

TEST(LyrVolumeReader, makes_the_built_in_casting_at_any_edge_length) {
    EXPECT_EQ(readVolume("builtin:casting").volume->size(), (LyrVolume::Size{128, 128, 128}));
    EXPECT_EQ(readVolume("builtin:casting@20").volume->size(), (LyrVolume::Size{20, 20, 20}));
    EXPECT_DOUBLE_EQ(readVolume("builtin:casting@20").volume->spacing()[0], 3.2);
}

TEST(LyrVolumeReader, refuses_other_built_in_names_and_impossible_edge_lengths) {
    expectRefused(readVolume("builtin:"), {"builtin:casting"});
    expectRefused(readVolume("builtin:cas"), {"no such"});
    expectRefused(readVolume("builtin:castings"), {"no such"});
    expectRefused(readVolume("builtin:casting@"), {"whole number"});
    expectRefused(readVolume("builtin:casting@12x"), {"whole number"});
    expectRefused(readVolume("builtin:casting@15"), {"16", "1024"});
    expectRefused(readVolume("builtin:casting@1025"), {"16", "1024"});
    expectRefused(readVolume("builtin:casting@-64"), {"16", "1024"});
    expectRefused(readVolume("builtin:casting@99999999999999999999"), {"whole number"});
}

TEST(LyrVolumeReader, refuses_what_is_missing_empty_unknown_or_no_file_with_its_name) {
    const Folder folder;
    expectRefused(readVolume(folder.path("nothing.nrrd")), {"nothing.nrrd", "cannot be opened"});
    expectRefused(readVolume(""), {"cannot be opened"});
    expectRefused(readVolume(folder.write("empty.nii", Bytes())), {"empty.nii", "empty"});
    expectRefused(readVolume(folder.write("text.txt", Bytes("Just a letter.\n"))),
                  {"text.txt", "no known format", "NRRD", "MetaImage", "NIfTI", "TIFF", "DICOM", "builtin:casting"});
    ASSERT_EQ(mkfifo(folder.path("pipe.nrrd").c_str(), 0600), 0);
    expectRefused(readVolume(folder.path("pipe.nrrd")), {"pipe.nrrd", "no ordinary file"});
}

TEST(LyrVolumeReader, leaves_the_former_volume_alone_when_it_fails_and_empties_the_report) {
    const Folder folder;
    std::shared_ptr<const LyrVolume> volume;
    LyrVolumeReader::Report report;
    ASSERT_TRUE(LyrVolumeReader::read("builtin:casting@16", volume, report));
    const auto former = volume;
    EXPECT_FALSE(LyrVolumeReader::read(folder.path("nothing"), volume, report));
    EXPECT_EQ(volume, former);
    EXPECT_FALSE(report.error.empty());
    EXPECT_TRUE(LyrVolumeReader::read("builtin:casting@17", volume, report));
    EXPECT_TRUE(report.error.empty());
    EXPECT_NE(volume, former);
}

TEST(LyrVolumeReader, tells_its_progress_and_stops_when_asked) {
    const Folder folder;
    const std::string path =
        folder.write("a.nrrd", Bytes(nrrdHeader("100 100 100")).append(ramp<std::uint8_t>(1000000)));
    std::shared_ptr<const LyrVolume> volume;
    LyrVolumeReader::Report report;
    double last = 0.0;
    int calls = 0;
    ASSERT_TRUE(LyrVolumeReader::read(path, volume, report, [&](double done) {
        EXPECT_GE(done, last);
        EXPECT_LE(done, 1.0);
        last = done;
        ++calls;
        return true;
    }));
    EXPECT_EQ(last, 1.0);
    EXPECT_GE(calls, 3);

    volume.reset();
    calls = 0;
    EXPECT_FALSE(LyrVolumeReader::read(path, volume, report, [&](double) { return ++calls < 2; }));
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(report.cancelled);
    EXPECT_FALSE(report.error.empty());
    EXPECT_FALSE(volume);
}

TEST(LyrVolumeReader, an_exception_of_the_progress_function_becomes_a_message) {
    std::shared_ptr<const LyrVolume> volume;
    LyrVolumeReader::Report report;
    const Folder folder;
    const std::string path = folder.write("a.nrrd", Bytes(nrrdHeader("4 3 2")).append(ramp<std::uint8_t>(24)));
    EXPECT_FALSE(
        LyrVolumeReader::read(path, volume, report, [](double) -> bool { throw std::runtime_error("broken"); }));
    EXPECT_NE(report.error.find("broken"), std::string::npos);
}

TEST(LyrVolumeReader, names_source_and_format_of_what_it_read) {
    const Folder folder;
    const std::string path = folder.write("a.nrrd", Bytes(nrrdHeader("4 3 2")).append(ramp<std::uint8_t>(24)));
    const auto outcome = readVolume(path);
    expectRamp(outcome, {4, 3, 2});
    EXPECT_EQ(outcome.volume->description().source, path);
    EXPECT_EQ(outcome.volume->description().format, "NRRD, uint8, raw");
    EXPECT_EQ(outcome.volume->valueRange().low, 0.0F);
    EXPECT_EQ(outcome.volume->valueRange().high, 23.0F);
}

TEST(LyrVolumeReader, reads_from_several_threads_at_once) {
    const Folder folder;
    const std::string path = folder.write("a.nrrd", Bytes(nrrdHeader("4 3 2")).append(ramp<std::uint8_t>(24)));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int k = 0; k < 20; ++k) {
                expectRamp(readVolume(path), {4, 3, 2});
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}
