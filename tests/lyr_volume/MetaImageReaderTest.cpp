// MetaImage files through LyrVolumeReader.

#include <gtest/gtest.h>

#include "lyr_volume/SampleFiles.h"

using samples::Bytes;
using samples::expectEveryCutRefused;
using samples::expectRamp;
using samples::expectRefused;
using samples::Folder;
using samples::ramp;
using samples::readVolume;

namespace {

std::string header(const std::string& type, const std::string& dataFile, const std::string& more = {}) {
    return "ObjectType = Image\nNDims = 3\nBinaryData = True\nBinaryDataByteOrderMSB = False\n" + more +
           "DimSize = 4 3 2\nElementType = " + type + "\nElementDataFile = " + dataFile + "\n";
}

}  // namespace

TEST(MetaImageReader, reads_every_sample_type_in_both_byte_orders) {
    const Folder folder;
    const auto check = [&](const std::string& type, const Bytes& little, const Bytes& big, double first) {
        std::string text = header(type, "LOCAL");
        expectRamp(readVolume(folder.write("a.mha", Bytes(text).append(little))), {4, 3, 2}, first);
        text.replace(text.find("MSB = False"), 11, "MSB = True");
        expectRamp(readVolume(folder.write("a.mha", Bytes(text).append(big))), {4, 3, 2}, first);
    };
    check("MET_UCHAR", ramp<std::uint8_t>(24, 9), ramp<std::uint8_t>(24, 9, true), 9);
    check("MET_CHAR", ramp<std::int8_t>(24, -9), ramp<std::int8_t>(24, -9, true), -9);
    check("MET_USHORT", ramp<std::uint16_t>(24, 40000), ramp<std::uint16_t>(24, 40000, true), 40000);
    check("MET_SHORT", ramp<std::int16_t>(24, -300), ramp<std::int16_t>(24, -300, true), -300);
    check("MET_UINT", ramp<std::uint32_t>(24, 70000), ramp<std::uint32_t>(24, 70000, true), 70000);
    check("MET_INT", ramp<std::int32_t>(24, -70000), ramp<std::int32_t>(24, -70000, true), -70000);
    check("MET_LONG_LONG", ramp<std::int64_t>(24, -5), ramp<std::int64_t>(24, -5, true), -5);
    check("MET_FLOAT", ramp<float>(24, 0.5F), ramp<float>(24, 0.5F, true), 0.5);
    check("MET_DOUBLE", ramp<double>(24, 0.5), ramp<double>(24, 0.5, true), 0.5);
}

TEST(MetaImageReader, reads_spacing_origin_unit_slope_and_intercept) {
    const Folder folder;
    const auto outcome = readVolume(folder.write(
        "a.mha", Bytes(header("MET_SHORT", "LOCAL",
                              "Offset = 1 -2 3.5\nElementSpacing = 0.5 0.25 2\nElementToIntensityFunctionSlope = 0.5\n"
                              "ElementToIntensityFunctionOffset = -100\n"))
                     .append(ramp<std::int16_t>(24))));
    expectRamp(outcome, {4, 3, 2}, -100.0, 0.5);
    EXPECT_EQ(outcome.volume->spacing(), (LyrVolume::Vector{0.5, 0.25, 2.0}));
    EXPECT_EQ(outcome.volume->origin(), (LyrVolume::Vector{1.0, -2.0, 3.5}));
    EXPECT_EQ(outcome.volume->unit(), "mm");

    const auto microns = readVolume(
        folder.write("b.mha", Bytes(header("MET_UCHAR", "LOCAL", "ElementSpacing = 20 30 40\nDistanceUnits = um\n"))
                                  .append(ramp<std::uint8_t>(24))));
    ASSERT_TRUE(microns.read) << microns.report.error;
    EXPECT_EQ(microns.volume->spacing(), (LyrVolume::Vector{0.02, 0.03, 0.04}));
    EXPECT_EQ(microns.volume->unit(), "mm");
}

TEST(MetaImageReader, reads_zlib_and_text_data) {
    const Folder folder;
    const Bytes packed = samples::zlib(ramp<std::int16_t>(24, 5));
    const std::string size = "CompressedData = True\nCompressedDataSize = " + std::to_string(packed.size()) + "\n";
    expectRamp(readVolume(folder.write("a.mha", Bytes(header("MET_SHORT", "LOCAL", size)).append(packed))), {4, 3, 2},
               5);
    expectRamp(readVolume(folder.write("b.mha",
                                       Bytes(header("MET_SHORT", "LOCAL", "CompressedData = True\n")).append(packed))),
               {4, 3, 2}, 5);
    std::string text = header("MET_SHORT", "LOCAL");
    text.replace(text.find("BinaryData = True"), 17, "BinaryData = False");
    for (int i = 0; i < 24; ++i) {
        text += std::to_string(i - 4) + " ";
    }
    expectRamp(readVolume(folder.write("c.mha", Bytes(text))), {4, 3, 2}, -4);
}

TEST(MetaImageReader, reads_detached_data_lists_and_numbered_rows) {
    const Folder folder;
    folder.write("my data.raw", ramp<std::uint8_t>(24));
    expectRamp(readVolume(folder.write("a.mhd", Bytes(header("MET_UCHAR", "my data.raw")))), {4, 3, 2});
    folder.write("s1.raw", ramp<std::uint8_t>(12));
    folder.write("s2.raw", ramp<std::uint8_t>(12, 12));
    expectRamp(readVolume(folder.write("b.mhd", Bytes(header("MET_UCHAR", "LIST") + "s1.raw\ns2.raw\n"))), {4, 3, 2});
    expectRamp(readVolume(folder.write("c.mhd", Bytes(header("MET_UCHAR", "s%d.raw 1 2 1")))), {4, 3, 2});
    // A line that asks for more names than there can be slices, or for too long ones, takes no memory for them.
    for (const std::string& rows : {std::string("s%d.raw 1 900000 1"), std::string(1000, 's') + "%d.raw 1 90000 1"}) {
        expectRefused(readVolume(folder.write("m.mhd", Bytes(header("MET_UCHAR", rows)))), {"names no usable file"});
    }
    folder.write("head.raw", Bytes("HEADER").append(ramp<std::uint8_t>(24)));
    expectRamp(readVolume(folder.write("d.mhd", Bytes(header("MET_UCHAR", "head.raw", "HeaderSize = 6\n")))),
               {4, 3, 2});
    expectRamp(readVolume(folder.write("e.mhd", Bytes(header("MET_UCHAR", "head.raw", "HeaderSize = -1\n")))),
               {4, 3, 2});
    folder.write("a.zraw", samples::zlib(ramp<std::uint8_t>(24)));
    expectRamp(readVolume(folder.write("f.mhd", Bytes(header("MET_UCHAR", "a.zraw", "CompressedData = True\n")))),
               {4, 3, 2});
    expectRefused(readVolume(folder.write("g.mhd", Bytes(header("MET_UCHAR", "no.raw")))),
                  {"no.raw", "cannot be opened"});
}

TEST(MetaImageReader, of_several_frames_the_first_is_taken) {
    const Folder folder;
    std::string text = header("MET_UCHAR", "LOCAL");
    text.replace(text.find("NDims = 3"), 9, "NDims = 4");
    text.replace(text.find("DimSize = 4 3 2"), 15, "DimSize = 2 2 3 2");
    const auto outcome = readVolume(folder.write("a.mha", Bytes(text).append(ramp<std::uint8_t>(24))));
    expectRamp(outcome, {2, 2, 3});
    EXPECT_NE(outcome.warnings().find("2 frames"), std::string::npos);
    expectRefused(readVolume(folder.write("a.mha", Bytes(text).append(ramp<std::uint8_t>(23)))), {"a.mha", "24 bytes"});
}

TEST(MetaImageReader, every_cut_is_refused) {
    const Folder folder;
    expectEveryCutRefused(folder, "a.mha", Bytes(header("MET_SHORT", "LOCAL")).append(ramp<std::int16_t>(24)));
    const Bytes packed = samples::zlib(ramp<std::int16_t>(24));
    expectEveryCutRefused(folder, "z.mha",
                          Bytes(header("MET_SHORT", "LOCAL", "CompressedData = True\n")).append(packed));
    folder.write("a.raw", ramp<std::int16_t>(24));
    const std::string detached = header("MET_SHORT", "a.raw");
    expectEveryCutRefused(folder, "a.mhd", Bytes(detached.substr(0, detached.size() - 1)));
    folder.write("b.mhd", Bytes(header("MET_SHORT", "b.raw")));
    folder.write("c.mhd", Bytes(header("MET_SHORT", "c.zraw", "CompressedData = True\n")));
    for (std::size_t length = 0; length < 48; ++length) {
        folder.write("b.raw", ramp<std::int16_t>(24).first(length));
        expectRefused(readVolume(folder.path("b.mhd")), {"b.raw"});
    }
    for (std::size_t length = 0; length < packed.size(); ++length) {
        folder.write("c.zraw", packed.first(length));
        expectRefused(readVolume(folder.path("c.mhd")), {"c.zraw"});
    }
}

TEST(MetaImageReader, refuses_headers_that_lie_or_make_no_sense) {
    const Folder folder;
    const auto refuse = [&](const std::string& from, const std::string& to, std::initializer_list<const char*> words) {
        std::string text = header("MET_SHORT", "LOCAL");
        text.replace(text.find(from), from.size(), to);
        expectRefused(readVolume(folder.write("a.mha", Bytes(text).append(ramp<std::int16_t>(24)))), words);
    };
    refuse("4 3 2", "4 3 3", {"a.mha", "72 bytes", "48 are there"});
    refuse("4 3 2", "4 0 2", {"a.mha", "size of 0"});
    refuse("4 3 2", "-4 3 -2", {"a.mha", "size of -4"});
    refuse("4 3 2", "4 3", {"a.mha", "DimSize"});
    refuse("4 3 2", "4294967296 4294967296 16", {"a.mha", "impossible"});
    refuse("4 3 2", "70000 70000 70000", {"a.mha", "memory"});
    refuse("NDims = 3", "NDims = 0", {"a.mha", "NDims"});
    refuse("MET_SHORT", "MET_SHORT_ARRAY", {"a.mha", "MET_SHORT_ARRAY"});
    refuse("MET_SHORT", "MET_SHORT\nElementNumberOfChannels = 3", {"a.mha", "3 values for each sample"});
    refuse("LOCAL", "", {"a.mha", "ElementDataFile"});
    refuse("BinaryData = True\n", "rubbish\n", {"a.mha", "rubbish"});
    refuse("MET_SHORT", "MET_SHORT\nCompressedData = True\nCompressedDataSize = 1000", {"a.mha", "1000 compressed"});
}
