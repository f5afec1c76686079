// NRRD files through LyrVolumeReader.

#include <gtest/gtest.h>

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

/** A header of 4 × 3 × 2 samples with these lines added, ended by an empty line. */
std::string header(const std::string& type, const std::string& encoding, const std::string& more = {}) {
    return "NRRD0004\n# a remark\ntype: " + type + "\ndimension: 3\nsizes: 4 3 2\nencoding: " + encoding +
           "\nendian: little\n" + more + "\n";
}

}  // namespace

TEST(NrrdReader, reads_every_sample_type_in_both_byte_orders) {
    const Folder folder;
    const auto check = [&](const std::string& type, const Bytes& little, const Bytes& big, double first) {
        expectRamp(readVolume(folder.write("a.nrrd", Bytes(header(type, "raw")).append(little))), {4, 3, 2}, first);
        std::string text = header(type, "raw");
        text.replace(text.find("little"), 6, "big");
        expectRamp(readVolume(folder.write("a.nrrd", Bytes(text).append(big))), {4, 3, 2}, first);
    };
    check("uchar", ramp<std::uint8_t>(24, 230), ramp<std::uint8_t>(24, 230, true), 230);
    check("signed char", ramp<std::int8_t>(24, -12), ramp<std::int8_t>(24, -12, true), -12);
    check("unsigned short", ramp<std::uint16_t>(24, 65000), ramp<std::uint16_t>(24, 65000, true), 65000);
    check("short", ramp<std::int16_t>(24, -1010), ramp<std::int16_t>(24, -1010, true), -1010);
    check("uint32", ramp<std::uint32_t>(24, 16000000), ramp<std::uint32_t>(24, 16000000, true), 16000000);
    check("int", ramp<std::int32_t>(24, -500), ramp<std::int32_t>(24, -500, true), -500);
    check("uint64", ramp<std::uint64_t>(24, 7), ramp<std::uint64_t>(24, 7, true), 7);
    check("long long int", ramp<std::int64_t>(24, -7), ramp<std::int64_t>(24, -7, true), -7);
    check("float", ramp<float>(24, -1.5F), ramp<float>(24, -1.5F, true), -1.5);
    check("double", ramp<double>(24, 0.25), ramp<double>(24, 0.25, true), 0.25);
}

TEST(NrrdReader, reads_gzip_text_and_hex) {
    const Folder folder;
    const Bytes packed = gzip(ramp<std::int16_t>(24, -3));
    expectRamp(readVolume(folder.write("a.nrrd", Bytes(header("short", "gzip")).append(packed))), {4, 3, 2}, -3);

    std::string text = header("float", "ascii");
    std::string hex = header("uint8", "hex");
    for (int i = 0; i < 24; ++i) {
        text += std::to_string(i) + (i % 4 == 3 ? ".5\n" : ".5 ");
        hex += std::string(1, "0123456789abcdef"[i / 16]) + "0123456789ABCDEF"[i % 16] + (i % 5 == 0 ? "\n" : "");
    }
    expectRamp(readVolume(folder.write("t.nrrd", Bytes(text))), {4, 3, 2}, 0.5);
    expectRamp(readVolume(folder.write("h.nrrd", Bytes(hex))), {4, 3, 2});
}

TEST(NrrdReader, takes_spacing_and_origin_and_scales_units_to_mm) {
    const Folder folder;
    const auto geometry = [&](const std::string& lines) {
        const auto outcome =
            readVolume(folder.write("a.nrrd", Bytes(header("uchar", "raw", lines)).append(ramp<std::uint8_t>(24))));
        EXPECT_TRUE(outcome.read) << outcome.report.error;
        return outcome;
    };
    const auto plain = geometry("spacings: 0.5 0.25 2\n");
    EXPECT_EQ(plain.volume->spacing(), (LyrVolume::Vector{0.5, 0.25, 2.0}));
    EXPECT_EQ(plain.volume->unit(), "mm");

    const auto oblique = geometry(
        "space: left-posterior-superior\nspace directions: (3,4,0) (0, -2, 0) (0,0,1.5)\nspace origin: "
        "(-10,20,30.5)\n");
    EXPECT_EQ(oblique.volume->spacing(), (LyrVolume::Vector{5.0, 2.0, 1.5}));
    EXPECT_EQ(oblique.volume->origin(), (LyrVolume::Vector{-10.0, 20.0, 30.5}));

    const auto microns = geometry(
        "space dimension: 3\nspace directions: (500,0,0) (0,250,0) (0,0,40)\nspace units: \"um\" \"\u00B5m\" "
        "\"micron\"\n"
        "space origin: (1000,0,0)\n");
    EXPECT_EQ(microns.volume->spacing(), (LyrVolume::Vector{0.5, 0.25, 0.04}));
    EXPECT_EQ(microns.volume->origin()[0], 1.0);
    EXPECT_EQ(microns.volume->unit(), "mm");

    const auto mixed = geometry("spacings: 0.1 2 0.003\nunits: \"cm\" \"mm\" \"m\"\n");
    EXPECT_EQ(mixed.volume->spacing(), (LyrVolume::Vector{1.0, 2.0, 3.0}));

    const auto inches = geometry("spacings: 1 1 1\nspace dimension: 3\nspace units: \"in\" \"in\" \"in\"\n");
    EXPECT_EQ(inches.volume->spacing(), (LyrVolume::Vector{25.4, 25.4, 25.4}));

    const auto none = geometry("");
    EXPECT_EQ(none.volume->spacing(), (LyrVolume::Vector{1.0, 1.0, 1.0}));
    EXPECT_EQ(none.volume->unit(), "");

    const auto strange = geometry("spacings: 2 2 2\nunits: \"furlong\" \"furlong\" \"furlong\"\n");
    EXPECT_EQ(strange.volume->spacing()[0], 2.0);
    EXPECT_EQ(strange.volume->unit(), "furlong");
    EXPECT_NE(strange.warnings().find("furlong"), std::string::npos);
}

TEST(NrrdReader, a_spacing_of_zero_becomes_one_with_a_warning) {
    const Folder folder;
    const auto outcome = readVolume(
        folder.write("a.nrrd", Bytes(header("uchar", "raw", "spacings: 1 0 -3\n")).append(ramp<std::uint8_t>(24))));
    expectRamp(outcome, {4, 3, 2});
    EXPECT_EQ(outcome.volume->spacing(), (LyrVolume::Vector{1.0, 1.0, 3.0}));
    EXPECT_NE(outcome.warnings().find("spacing along y"), std::string::npos);
}

TEST(NrrdReader, reads_detached_data_from_one_file_a_list_and_a_numbered_row) {
    const Folder folder;
    const Bytes all = ramp<std::uint16_t>(24);
    folder.write("data/a.raw", all);
    const Bytes front = all.first(24);
    Bytes back;
    for (std::size_t i = 12; i < 24; ++i) {
        back.put(static_cast<std::uint16_t>(i));
    }
    folder.write("s_007.raw", front);
    folder.write("s_009.raw", back);
    const std::string text = header("ushort", "raw");
    const std::string open = text.substr(0, text.size() - 1);
    expectRamp(readVolume(folder.write("a.nhdr", Bytes(open + "data file: data/a.raw\n"))), {4, 3, 2});
    expectRamp(readVolume(folder.write("b.nhdr", Bytes(open + "data file: LIST\ns_007.raw\ns_009.raw\n"))), {4, 3, 2});
    expectRamp(readVolume(folder.write("c.nhdr", Bytes(open + "datafile: s_%03d.raw 7 9 2\n"))), {4, 3, 2});
    expectRamp(readVolume(folder.write("d.nhdr", Bytes(open + "data file: " + folder.path("data/a.raw") + "\n\n"))),
               {4, 3, 2});
    expectRefused(readVolume(folder.write("e.nhdr", Bytes(open + "data file: no.raw\n"))),
                  {"no.raw", "cannot be opened"});
    expectRefused(readVolume(folder.write("f.nhdr", Bytes(open + "data file: LIST\n"))), {"f.nhdr", "data file"});
    expectRefused(readVolume(folder.write("g.nhdr", Bytes(open + "data file: s_%03d.raw 7 9 1\n"))), {"s_008.raw"});
}

TEST(NrrdReader, skips_lines_and_bytes_before_the_data) {
    const Folder folder;
    folder.write("a.raw", Bytes("first\nsecond\nXYZ").append(ramp<std::uint8_t>(24)));
    const std::string text = header("uchar", "raw", "data file: a.raw\n");
    const std::string open = text.substr(0, text.size() - 1);
    expectRamp(readVolume(folder.write("a.nhdr", Bytes(open + "line skip: 2\nbyte skip: 3\n"))), {4, 3, 2});
    expectRamp(readVolume(folder.write("b.nhdr", Bytes(open + "byte skip: -1\n"))), {4, 3, 2});
    expectRefused(readVolume(folder.write("c.nhdr", Bytes(open + "byte skip: 17\n"))), {"a.raw", "cut off"});
    expectRefused(readVolume(folder.write("d.nhdr", Bytes(open + "line skip: 900\n"))), {"a.raw", "line skip"});
    expectRefused(readVolume(folder.write("e.nhdr", Bytes(open + "byte skip: -2\n"))), {"byte skip"});

    folder.write("a.raw.gz", gzip(Bytes("XYZ").append(ramp<std::uint8_t>(24))));
    const std::string packed = header("uchar", "gzip", "data file: a.raw.gz\nbyte skip: 3\n");
    expectRamp(readVolume(folder.write("f.nhdr", Bytes(packed))), {4, 3, 2});
}

TEST(NrrdReader, of_several_frames_the_first_is_taken_wherever_their_axis_is) {
    const Folder folder;
    const std::string start = "NRRD0005\ntype: short\nencoding: raw\nendian: little\ndimension: 4\n";
    const auto last =
        readVolume(folder.write("last.nrrd", Bytes(start + "sizes: 2 2 2 3\n\n").append(ramp<std::int16_t>(24))));
    expectRamp(last, {2, 2, 2});
    EXPECT_NE(last.warnings().find("3 frames"), std::string::npos) << last.warnings();

    // Frames alternate sample by sample: 0, 3, 6, …
    const auto first = readVolume(folder.write(
        "first.nrrd",
        Bytes(start + "sizes: 3 2 2 2\nkinds: list domain domain domain\n\n").append(ramp<std::int16_t>(24))));
    expectRamp(first, {2, 2, 2}, 0.0, 3.0);
    EXPECT_NE(first.warnings().find("3 frames"), std::string::npos);

    expectRefused(
        readVolume(folder.write(
            "between.nrrd",
            Bytes(start + "sizes: 2 2 3 2\nkinds: domain domain time domain\n\n").append(ramp<std::int16_t>(24)))),
        {"between.nrrd", "axis 3"});
    expectRefused(
        readVolume(folder.write("short.nrrd", Bytes(start + "sizes: 2 2 2 3\n\n").append(ramp<std::int16_t>(23)))),
        {"short.nrrd", "48 bytes", "46 are there"});
}

TEST(NrrdReader, one_and_two_axes_make_a_thin_volume) {
    const Folder folder;
    const std::string start = "NRRD0001\ntype: uchar\nencoding: raw\n";
    expectRamp(readVolume(folder.write("a.nrrd",
                                       Bytes(start + "dimension: 2\nsizes: 4 6\n\n").append(ramp<std::uint8_t>(24)))),
               {4, 6, 1});
    expectRamp(
        readVolume(folder.write("b.nrrd", Bytes(start + "dimension: 1\nsizes: 24\n\n").append(ramp<std::uint8_t>(24)))),
        {24, 1, 1});
}

TEST(NrrdReader, refuses_several_values_for_each_sample) {
    const Folder folder;
    const std::string start = "NRRD0005\ntype: uchar\nencoding: raw\ndimension: 4\n";
    for (const char* kind : {"RGB-color", "vector", "3-vector", "3D-symmetric-matrix", "complex", "none"}) {
        expectRefused(
            readVolume(folder.write("a.nrrd", Bytes(start + "sizes: 3 2 2 2\nkinds: " + kind +
                                                    " domain domain domain\nspace directions: none (1,0,0) (0,1,0) "
                                                    "(0,0,1)\n\n")
                                                  .append(ramp<std::uint8_t>(24)))),
            {"a.nrrd", "3 values for each sample"});
    }
}

TEST(NrrdReader, every_cut_of_raw_and_gzip_files_is_refused) {
    const Folder folder;
    expectEveryCutRefused(folder, "a.nrrd", Bytes(header("short", "raw")).append(ramp<std::int16_t>(24)));
    expectEveryCutRefused(folder, "g.nrrd", Bytes(header("short", "gzip")).append(gzip(ramp<std::int16_t>(24))));
    folder.write("a.raw", ramp<std::int16_t>(24));
    expectEveryCutRefused(folder, "a.nhdr",
                          Bytes(header("short", "raw", "data file: a.raw\n"))
                              .first(header("short", "raw", "data file: a.raw\n").size() - 2));
    std::string other = header("short", "raw", "data file: a.raw\n");
    other.replace(other.find("sizes: 4 3 2\n"), 13, "");
    other.insert(other.size() - 1, "sizes: 4 3 24");  // cut to "sizes: 4 3 2" it would claim less than is there
    folder.write("a.raw", ramp<std::int16_t>(24 * 12));
    expectEveryCutRefused(folder, "b.nhdr", Bytes(other.substr(0, other.size() - 1)));
}

TEST(NrrdReader, every_cut_of_detached_data_is_refused) {
    const Folder folder;
    folder.write("a.nhdr", Bytes(header("short", "raw", "data file: a.raw\n")));
    folder.write("g.nhdr", Bytes(header("short", "gzip", "data file: a.raw.gz\n")));
    const Bytes raw = ramp<std::int16_t>(24);
    const Bytes packed = gzip(raw);
    for (std::size_t length = 0; length < raw.size(); ++length) {
        folder.write("a.raw", raw.first(length));
        expectRefused(readVolume(folder.path("a.nhdr")), {"a.raw", "48 bytes"});
    }
    for (std::size_t length = 0; length < packed.size(); ++length) {
        folder.write("a.raw.gz", packed.first(length));
        expectRefused(readVolume(folder.path("g.nhdr")), {"a.raw.gz"});
    }
}

TEST(NrrdReader, refuses_text_and_hex_with_too_few_or_damaged_numbers) {
    const Folder folder;
    expectRefused(readVolume(folder.write("a.nrrd", Bytes(header("int", "text") + "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 "
                                                                                  "16 17 18 19 20 21 22 23\n"))),
                  {"a.nrrd", "24 numbers", "23 are there"});
    expectRefused(readVolume(folder.write("b.nrrd", Bytes(header("int", "text") + "1 2 3 4 5 6 7 8 nine 10 11 12 13 14 "
                                                                                  "15 16 17 18 19 20 21 22 23 24\n"))),
                  {"b.nrrd", "\"nine\""});
    expectRefused(readVolume(folder.write("c.nrrd", Bytes(header("uchar", "hex") + std::string(47, '7')))), {"c.nrrd"});
    expectRefused(readVolume(folder.write(
                      "d.nrrd", Bytes(header("uchar", "hex") + std::string(20, '7') + "xy" + std::string(26, '7')))),
                  {"d.nrrd", "hexadecimal"});
}

TEST(NrrdReader, refuses_a_wrong_checksum_and_damaged_gzip) {
    const Folder folder;
    const std::string text = header("short", "gzip");
    Bytes file = Bytes(text).append(gzip(ramp<std::int16_t>(24)));
    file[file.size() - 6] ^= 1;  // inside the CRC of the trailer
    expectRefused(readVolume(folder.write("a.nrrd", file)), {"a.nrrd", "damaged"});
    Bytes other = Bytes(text).append(gzip(ramp<std::int16_t>(24)));
    other[text.size() + 1] ^= 0x55;  // second byte of the gzip signature
    expectRefused(readVolume(folder.write("b.nrrd", other)), {"b.nrrd"});
}

TEST(NrrdReader, refuses_headers_that_lie_or_make_no_sense) {
    const Folder folder;
    const auto refuse = [&](const std::string& from, const std::string& to, std::initializer_list<const char*> words) {
        std::string text = header("short", "raw");
        text.replace(text.find(from), from.size(), to);
        expectRefused(readVolume(folder.write("a.nrrd", Bytes(text).append(ramp<std::int16_t>(24)))), words);
    };
    refuse("sizes: 4 3 2", "sizes: 4 3 3", {"a.nrrd", "72 bytes", "48 are there"});
    refuse("sizes: 4 3 2", "sizes: 4 0 2", {"a.nrrd", "size of 0"});
    refuse("sizes: 4 3 2", "sizes: 4 -3 2", {"a.nrrd", "size of -3"});
    refuse("sizes: 4 3 2", "sizes: 4 3", {"a.nrrd", "sizes"});
    refuse("sizes: 4 3 2", "sizes: 4 3 2x", {"a.nrrd", "sizes"});
    refuse("sizes: 4 3 2", "sizes: 4 3 99999999999999999999", {"a.nrrd", "sizes"});
    refuse("sizes: 4 3 2", "sizes: 4294967296 4294967296 16", {"a.nrrd", "impossible"});
    refuse("sizes: 4 3 2", "sizes: 100000 100000 100000", {"a.nrrd", "memory"});
    refuse("dimension: 3", "dimension: 0", {"a.nrrd", "dimension"});
    refuse("dimension: 3", "dimension: 17", {"a.nrrd", "dimension"});
    refuse("type: short", "type: block", {"a.nrrd", "block"});
    refuse("endian: little", "endian: middle", {"a.nrrd", "endian"});
    refuse("encoding: raw", "encoding: bzip2", {"a.nrrd", "bzip2", "gzip"});
    refuse("encoding: raw", "encoding: raw\nencoding: raw", {"a.nrrd", "twice"});
    refuse("# a remark", "nonsense", {"a.nrrd", "nonsense"});
    refuse("encoding: raw\n", "", {"a.nrrd", "encoding"});
}

TEST(NrrdReader, a_small_gzip_file_that_claims_gigabytes_takes_no_memory) {
    const Folder folder;
    // 1000 × 1000 × 100 floats in memory: 400 MB, which the length of the file alone shows to be impossible.
    const std::string text = "NRRD0004\ntype: uchar\ndimension: 3\nsizes: 1000 1000 100\nencoding: gzip\n\n";
    const std::uint64_t before = samples::peakMemory();
    expectRefused(readVolume(folder.write("a.nrrd", Bytes(text).append(gzip(ramp<std::uint8_t>(24))))), {"a.nrrd"});
    // Packed as tightly as gzip can, 200 kB might hold 200 MB; only 40 MB are there.
    Bytes noise;
    std::uint32_t state = 1;
    for (int i = 0; i < 200000; ++i) {
        state = state * 1664525U + 1013904223U;
        noise.put(static_cast<std::uint8_t>(state >> 24U));
    }
    expectRefused(readVolume(folder.write("b.nrrd", Bytes(text).append(gzip(noise)))), {"b.nrrd", "200000 are there"});
    samples::expectLessMemoryTaken(before, 64);
}

TEST(NrrdReader, data_behind_the_volume_are_ignored_with_a_warning) {
    const Folder folder;
    const auto outcome =
        readVolume(folder.write("a.nrrd", Bytes(header("uchar", "raw")).append(ramp<std::uint8_t>(24)).zeros(10)));
    expectRamp(outcome, {4, 3, 2});
    EXPECT_NE(outcome.warnings().find("10 bytes"), std::string::npos);
}
