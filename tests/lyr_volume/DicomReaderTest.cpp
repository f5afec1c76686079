// DICOM files and folders of them through LyrVolumeReader.

#include <gtest/gtest.h>

#include <filesystem>

#include "lyr_volume/SampleFiles.h"

using samples::Bytes;
using samples::expectEveryCutRefused;
using samples::expectRamp;
using samples::expectRefused;
using samples::Folder;
using samples::ramp;
using samples::readVolume;

namespace {

constexpr const char* kImplicitLittle = "1.2.840.10008.1.2";
constexpr const char* kExplicitLittle = "1.2.840.10008.1.2.1";
constexpr const char* kExplicitBig = "1.2.840.10008.1.2.2";
constexpr const char* kRunLength = "1.2.840.10008.1.2.5";

/** One image of 4 × 3 unsigned 16-bit samples, unless changed. */
struct Image {
    std::string syntax = kExplicitLittle;
    std::string sopClass = "1.2.840.10008.5.1.4.1.1.2";  // CT
    std::string series = "1.2.3.4";
    std::string description = "Head";
    std::string instance = "1";
    std::string position = "-10\\-20\\0";
    std::string orientation = "1\\0\\0\\0\\1\\0";
    std::string spacing = "0.25\\0.5";  // between rows, between columns
    std::string thickness;
    std::string slope;
    std::string intercept;
    std::string frames;
    std::uint16_t rows = 3;
    std::uint16_t columns = 4;
    std::uint16_t samples = 1;
    std::string photometric = "MONOCHROME2";
    std::uint16_t bits = 16;
    std::uint16_t stored = 0;  ///< bits; 0: all
    std::uint16_t high = 0;    ///< 0: the highest stored one
    std::uint16_t representation = 0;
    const char* pixelType = nullptr;  ///< OB or OW where not the usual one
    Bytes groups;                     ///< functional groups, behind all else
    bool withSequence = false;
    bool withPixels = true;
    Bytes pixels = ramp<std::uint16_t>(12);
    Bytes behind;
};

/** Writes elements one after the other in a transfer syntax. */
class DataSet {
public:
    DataSet(bool implicitTypes, bool bigEndian) : implicit_(implicitTypes), big_(bigEndian) {}

    DataSet& text(std::uint16_t group, std::uint16_t element, const char* type, std::string value) {
        if (value.empty()) {
            return *this;
        }
        if (value.size() % 2 != 0) {
            value.push_back(std::string(type) == "UI" ? '\0' : ' ');
        }
        head(group, element, type, static_cast<std::uint32_t>(value.size()));
        bytes_.text(value);
        return *this;
    }

    DataSet& number(std::uint16_t group, std::uint16_t element, std::uint16_t value) {
        head(group, element, "US", 2);
        bytes_.put(value, big_);
        return *this;
    }

    DataSet& raw(std::uint16_t group, std::uint16_t element, const char* type, const Bytes& value,
                 bool undefined = false) {
        head(group, element, type, undefined ? 0xFFFFFFFFU : static_cast<std::uint32_t>(value.size()));
        bytes_.append(value);
        return *this;
    }

    /** Item and sequence delimiters have no type in any syntax. */
    DataSet& mark(std::uint16_t element, std::uint32_t length) {
        bytes_.put<std::uint16_t>(0xFFFE, big_).put(element, big_).put(length, big_);
        return *this;
    }

    DataSet& append(const Bytes& more) {
        bytes_.append(more);
        return *this;
    }

    const Bytes& bytes() const { return bytes_; }

private:
    void head(std::uint16_t group, std::uint16_t element, const char* type, std::uint32_t length) {
        bytes_.put(group, big_).put(element, big_);
        if (implicit_) {
            bytes_.put(length, big_);
            return;
        }
        bytes_.text(std::string(type, 2));
        const std::string name(type);
        if (name == "OB" || name == "OW" || name == "SQ" || name == "UN") {
            bytes_.put<std::uint16_t>(0).put(length, big_);
        } else {
            bytes_.put(static_cast<std::uint16_t>(length), big_);
        }
    }

    bool implicit_;
    bool big_;
    Bytes bytes_;
};

/** A sequence of undefined length with an item of undefined length and another sequence in it. */
void putSequence(DataSet& set) {
    set.raw(0x0008, 0x1140, "SQ", Bytes(), true).mark(0xE000, 0xFFFFFFFFU);
    set.text(0x0008, 0x1150, "UI", "1.2.3");
    set.raw(0x0040, 0xA170, "SQ", Bytes(), true).mark(0xE000, 0).mark(0xE0DD, 0);
    set.mark(0xE00D, 0).mark(0xE0DD, 0);
}

Bytes dicomFile(const Image& image) {
    DataSet meta(false, false);
    meta.text(0x0002, 0x0002, "UI", image.sopClass).text(0x0002, 0x0003, "UI", "1.2.3.4.5." + image.instance);
    meta.text(0x0002, 0x0010, "UI", image.syntax);
    DataSet group(false, false);
    group.raw(0x0002, 0x0000, "UL", Bytes().put(static_cast<std::uint32_t>(meta.bytes().size())));

    DataSet set(image.syntax == kImplicitLittle, image.syntax == kExplicitBig);
    set.text(0x0008, 0x0016, "UI", image.sopClass).text(0x0008, 0x0018, "UI", "1.2.3.4.5." + image.instance);
    set.text(0x0008, 0x0060, "CS", "CT").text(0x0008, 0x103E, "LO", image.description);
    if (image.withSequence) {
        putSequence(set);
    }
    set.text(0x0018, 0x0050, "DS", image.thickness);
    set.text(0x0020, 0x000D, "UI", "1.2.3").text(0x0020, 0x000E, "UI", image.series);
    set.text(0x0020, 0x0013, "IS", image.instance).text(0x0020, 0x0032, "DS", image.position);
    set.text(0x0020, 0x0037, "DS", image.orientation);
    set.number(0x0028, 0x0002, image.samples).text(0x0028, 0x0004, "CS", image.photometric);
    if (image.samples > 1) {
        set.number(0x0028, 0x0006, 0);
    }
    set.text(0x0028, 0x0008, "IS", image.frames);
    set.number(0x0028, 0x0010, image.rows).number(0x0028, 0x0011, image.columns);
    set.text(0x0028, 0x0030, "DS", image.spacing).number(0x0028, 0x0100, image.bits);
    const std::uint16_t stored = image.stored != 0 ? image.stored : image.bits;
    set.number(0x0028, 0x0101, stored);
    set.number(0x0028, 0x0102, image.high != 0 ? image.high : static_cast<std::uint16_t>(stored - 1));
    set.number(0x0028, 0x0103, image.representation);
    set.text(0x0028, 0x1052, "DS", image.intercept).text(0x0028, 0x1053, "DS", image.slope);
    set.append(image.groups);
    if (image.withPixels) {
        const char* usual = image.bits > 8 ? "OW" : "OB";
        set.raw(0x7FE0, 0x0010, image.pixelType != nullptr ? image.pixelType : usual, image.pixels,
                image.syntax == kRunLength);
    }
    return Bytes()
        .zeros(128)
        .text("DICM")
        .append(group.bytes())
        .append(meta.bytes())
        .append(set.bytes())
        .append(image.behind);
}

/** Slice k of a volume of 4 × 3 samples each, 2 mm apart, numbered on. */
Image rampSlice(int k) {
    Image image;
    image.instance = std::to_string(k + 1);
    image.position = "-10\\-20\\" + std::to_string(2 * k);
    image.pixels = ramp<std::uint16_t>(12, static_cast<std::uint16_t>(12 * k));
    return image;
}

/** Pixel data of one frame: offset table, one fragment, end. */
Bytes encapsulated(const Bytes& fragment) {
    DataSet set(false, false);
    set.mark(0xE000, 0).mark(0xE000, static_cast<std::uint32_t>(fragment.size()));
    return Bytes(set.bytes()).append(fragment).append(DataSet(false, false).mark(0xE0DD, 0).bytes());
}

/** 16-bit samples in two run-length segments, high bytes first, each as one literal run (PS3.5, annex G). */
Bytes runLength(const Bytes& plain) {
    Bytes fragment;
    const std::size_t count = plain.size() / 2;
    const auto segment = static_cast<std::uint32_t>(count + 1 + (count + 1) % 2);
    fragment.put<std::uint32_t>(2).put<std::uint32_t>(64).put<std::uint32_t>(64 + segment).zeros(52);
    for (const std::size_t byte : {std::size_t{1}, std::size_t{0}}) {
        fragment.put(static_cast<std::uint8_t>(count - 1));
        for (std::size_t i = 0; i < count; ++i) {
            fragment.put(plain.data()[2 * i + byte]);
        }
        fragment.zeros((count + 1) % 2);
    }
    return fragment;
}

}  // namespace

TEST(DicomReader, reads_a_series_in_the_order_of_its_positions) {
    const Folder folder;
    const char* names[] = {"c.dcm", "a.dcm", "d.dcm", "b.dcm"};
    for (int k = 0; k < 4; ++k) {
        folder.write(std::string("series/") + names[k], dicomFile(rampSlice(k)));
    }
    const auto outcome = readVolume(folder.path("series"));
    expectRamp(outcome, {4, 3, 4});
    EXPECT_EQ(outcome.warnings(), "");
    EXPECT_EQ(outcome.volume->spacing(), (LyrVolume::Vector{0.5, 0.25, 2.0}));
    EXPECT_EQ(outcome.volume->origin(), (LyrVolume::Vector{-10.0, -20.0, 0.0}));
    EXPECT_EQ(outcome.volume->unit(), "mm");
}

TEST(DicomReader, reads_one_file_in_every_plain_transfer_syntax_with_nested_sequences) {
    const Folder folder;
    for (const char* syntax : {kImplicitLittle, kExplicitLittle, kExplicitBig}) {
        Image image;
        image.syntax = syntax;
        image.withSequence = true;
        image.pixels = ramp<std::uint16_t>(12, 300, syntax == kExplicitBig);
        expectRamp(readVolume(folder.write("a.dcm", dicomFile(image))), {4, 3, 1}, 300);
    }
}

TEST(DicomReader, reads_bytes_signed_samples_slope_and_intercept) {
    const Folder folder;
    Image image;
    image.bits = 8;
    image.pixels = ramp<std::uint8_t>(12, 200);
    expectRamp(readVolume(folder.write("a.dcm", dicomFile(image))), {4, 3, 1}, 200);
    image = Image();
    image.representation = 1;
    image.pixels = ramp<std::int16_t>(12, -6);
    expectRamp(readVolume(folder.write("b.dcm", dicomFile(image))), {4, 3, 1}, -6);
    image.slope = "0.5";
    image.intercept = "-1024";
    expectRamp(readVolume(folder.write("c.dcm", dicomFile(image))), {4, 3, 1}, -1027.0, 0.5);
}

TEST(DicomReader, of_each_word_only_the_stored_bits_count) {
    const Folder folder;
    Image image;
    image.stored = 12;
    image.representation = 1;
    image.pixels = Bytes();
    for (int i = 0; i < 12; ++i) {
        // Twelve bits of i - 6 with something else in the four above them.
        image.pixels.put(static_cast<std::uint16_t>(((i - 6) & 0x0FFF) | 0xA000));
    }
    expectRamp(readVolume(folder.write("a.dcm", dicomFile(image))), {4, 3, 1}, -6);

    image = Image();
    image.stored = 10;
    image.high = 13;
    image.pixels = Bytes();
    for (int i = 0; i < 12; ++i) {
        image.pixels.put(static_cast<std::uint16_t>((1000 + i) << 4 | 0xC003));
    }
    expectRamp(readVolume(folder.write("b.dcm", dicomFile(image))), {4, 3, 1}, 1000);

    // Bytes written as words, most significant byte first, come in swapped pairs.
    image = Image();
    image.syntax = kExplicitBig;
    image.bits = 8;
    image.pixelType = "OW";
    image.rows = 1;
    image.columns = 4;
    image.pixels = Bytes().put<std::uint8_t>(1).put<std::uint8_t>(0).put<std::uint8_t>(3).put<std::uint8_t>(2);
    expectRamp(readVolume(folder.write("c.dcm", dicomFile(image))), {4, 1, 1});
}

TEST(DicomReader, takes_geometry_and_scaling_of_many_frames_from_their_groups) {
    const Folder folder;
    const auto sequence = [](std::uint16_t group, std::uint16_t element, const Bytes& content, bool open) {
        DataSet set(false, false);
        if (open) {
            set.raw(group, element, "SQ", Bytes(), true).mark(0xE000, 0xFFFFFFFFU).append(content);
            return set.mark(0xE00D, 0).mark(0xE0DD, 0).bytes();
        }
        DataSet items(false, false);
        items.mark(0xE000, static_cast<std::uint32_t>(content.size())).append(content);
        return set.raw(group, element, "SQ", items.bytes()).bytes();
    };
    for (const bool open : {false, true}) {
        Image image;
        image.sopClass = "1.2.840.10008.5.1.4.1.1.2.1";  // enhanced CT
        image.frames = "2";
        image.position.clear();
        image.orientation.clear();
        image.spacing.clear();
        image.pixels = ramp<std::uint16_t>(24);
        const Bytes measures =
            DataSet(false, false).text(0x0018, 0x0050, "DS", "9").text(0x0028, 0x0030, "DS", "0.5\\0.75").bytes();
        const Bytes scaling =
            DataSet(false, false).text(0x0028, 0x1052, "DS", "-1000").text(0x0028, 0x1053, "DS", "2").bytes();
        const Bytes turn = DataSet(false, false).text(0x0020, 0x0037, "DS", "1\\0\\0\\0\\1\\0").bytes();
        Bytes shared = sequence(0x0020, 0x9116, turn, open);
        shared.append(sequence(0x0028, 0x9110, measures, open)).append(sequence(0x0028, 0x9145, scaling, open));
        Bytes frames;
        for (const char* place : {"1\\2\\3", "1\\2\\7"}) {
            const Bytes position = DataSet(false, false).text(0x0020, 0x0032, "DS", place).bytes();
            const Bytes frame = sequence(0x0020, 0x9113, position, open);
            frames.append(
                DataSet(false, false).mark(0xE000, static_cast<std::uint32_t>(frame.size())).append(frame).bytes());
        }
        image.groups = sequence(0x5200, 0x9229, shared, open);
        image.groups.append(DataSet(false, false).raw(0x5200, 0x9230, "SQ", frames).bytes());
        const auto outcome = readVolume(folder.write("a.dcm", dicomFile(image)));
        expectRamp(outcome, {4, 3, 2}, -1000.0, 2.0);
        EXPECT_EQ(outcome.volume->spacing(), (LyrVolume::Vector{0.75, 0.5, 4.0}));
        EXPECT_EQ(outcome.volume->origin(), (LyrVolume::Vector{1.0, 2.0, 3.0}));
        expectEveryCutRefused(folder, "b.dcm", dicomFile(image), 3);
    }
}

TEST(DicomReader, reads_run_length_compressed_pixels_and_refuses_every_cut_of_them) {
    const Folder folder;
    Image image;
    image.syntax = kRunLength;
    image.pixels = encapsulated(runLength(ramp<std::uint16_t>(12, 250)));
    const Bytes file = dicomFile(image);
    expectRamp(readVolume(folder.write("a.dcm", file)), {4, 3, 1}, 250);
    expectEveryCutRefused(folder, "b.dcm", file);
}

TEST(DicomReader, finds_the_fragments_of_each_frame) {
    const Folder folder;
    const Bytes first = runLength(ramp<std::uint16_t>(12));
    const Bytes second = runLength(ramp<std::uint16_t>(12, 12));
    const auto fragments = [](const Bytes& table, std::initializer_list<Bytes> parts) {
        DataSet set(false, false);
        set.mark(0xE000, static_cast<std::uint32_t>(table.size())).append(table);
        for (const Bytes& part : parts) {
            set.mark(0xE000, static_cast<std::uint32_t>(part.size())).append(part);
        }
        return set.mark(0xE0DD, 0).bytes();
    };
    Image image;
    image.syntax = kRunLength;
    image.frames = "2";
    image.pixels = fragments(Bytes(), {first, second});
    expectRamp(readVolume(folder.write("a.dcm", dicomFile(image))), {4, 3, 2});
    // The first frame in two pieces: only the table tells where the second frame begins.
    Bytes rest;
    for (std::size_t i = 40; i < first.size(); ++i) {
        rest.put(first.data()[i]);
    }
    const Bytes table = Bytes().put<std::uint32_t>(0).put(static_cast<std::uint32_t>(first.size() + 16));
    image.pixels = fragments(table, {first.first(40), rest, second});
    expectRamp(readVolume(folder.write("b.dcm", dicomFile(image))), {4, 3, 2});
    image.pixels = fragments(Bytes(), {first.first(40), rest, second});
    expectRefused(readVolume(folder.write("c.dcm", dicomFile(image))), {"c.dcm", "belong to which frame"});
    image.pixels = fragments(Bytes(), {first});
    expectRefused(readVolume(folder.write("d.dcm", dicomFile(image))), {"d.dcm", "too short"});
}

TEST(DicomReader, reads_several_frames_of_one_file) {
    const Folder folder;
    Image image;
    image.sopClass = "1.2.840.10008.5.1.4.1.1.7.3";  // multi-frame secondary capture
    image.frames = "2";
    image.pixels = ramp<std::uint16_t>(24);
    image.thickness = "3";
    const auto outcome = readVolume(folder.write("a.dcm", dicomFile(image)));
    expectRamp(outcome, {4, 3, 2});
    EXPECT_EQ(outcome.volume->spacing(), (LyrVolume::Vector{0.5, 0.25, 3.0}));
    image.pixels = ramp<std::uint16_t>(23);
    expectRefused(readVolume(folder.write("b.dcm", dicomFile(image))), {"b.dcm", "46 bytes", "48 are needed"});
}

TEST(DicomReader, takes_the_largest_of_several_series_with_a_warning) {
    const Folder folder;
    for (int k = 0; k < 3; ++k) {
        folder.write("s/large" + std::to_string(k), dicomFile(rampSlice(k)));
    }
    Image other = rampSlice(0);
    other.series = "9.9.9";
    other.description = "Scout";
    folder.write("s/another", dicomFile(other));
    const auto outcome = readVolume(folder.path("s"));
    expectRamp(outcome, {4, 3, 3});
    EXPECT_NE(outcome.warnings().find("2 series"), std::string::npos);
    EXPECT_NE(outcome.warnings().find("\"Head\" with 3 slices"), std::string::npos) << outcome.warnings();
}

TEST(DicomReader, warns_of_missing_slices_with_their_place) {
    const Folder folder;
    for (const int k : {0, 1, 2, 4, 5}) {
        folder.write("s/i" + std::to_string(k) + ".dcm", dicomFile(rampSlice(k)));
    }
    const auto outcome = readVolume(folder.path("s"));
    ASSERT_TRUE(outcome.read) << outcome.report.error;
    EXPECT_EQ(outcome.volume->size()[2], 5);
    EXPECT_EQ(outcome.volume->spacing()[2], 2.0);
    EXPECT_NE(outcome.warnings().find("missing between i2.dcm and i4.dcm"), std::string::npos) << outcome.warnings();
}

TEST(DicomReader, of_several_frames_at_one_place_the_first_is_taken) {
    const Folder folder;
    for (int k = 0; k < 3; ++k) {
        folder.write("s/a" + std::to_string(k), dicomFile(rampSlice(k)));
        Image later = rampSlice(k);
        later.instance = std::to_string(k + 11);
        later.pixels = ramp<std::uint16_t>(12, 5000);
        folder.write("s/0later" + std::to_string(k), dicomFile(later));
    }
    const auto outcome = readVolume(folder.path("s"));
    expectRamp(outcome, {4, 3, 3});
    EXPECT_NE(outcome.warnings().find("first frame"), std::string::npos);
}

TEST(DicomReader, orders_slices_without_positions_by_their_numbers) {
    const Folder folder;
    for (int k = 0; k < 11; ++k) {
        Image image = rampSlice(k);
        image.position.clear();
        image.orientation.clear();
        image.thickness = "3.5";
        folder.write("s/i" + std::to_string(20 - k) + ".dcm", dicomFile(image));
    }
    const auto outcome = readVolume(folder.path("s"));
    expectRamp(outcome, {4, 3, 11});
    EXPECT_EQ(outcome.volume->spacing()[2], 3.5);
    EXPECT_NE(outcome.warnings().find("no positions"), std::string::npos);
}

TEST(DicomReader, leaves_reports_and_other_files_out_with_a_warning) {
    const Folder folder;
    for (int k = 0; k < 2; ++k) {
        folder.write("s/i" + std::to_string(k), dicomFile(rampSlice(k)));
    }
    Image report;
    report.sopClass = "1.2.840.10008.5.1.4.1.1.88.11";
    report.withPixels = false;
    report.rows = report.columns = 0;
    folder.write("s/report", dicomFile(report));
    folder.write("s/readme.txt", Bytes("hello"));
    const auto outcome = readVolume(folder.path("s"));
    expectRamp(outcome, {4, 3, 2});
    EXPECT_NE(outcome.warnings().find("s/report"), std::string::npos);
    EXPECT_NE(outcome.warnings().find("readme.txt"), std::string::npos);
    expectRefused(readVolume(folder.path("s/report")), {"report", "no image"});
}

TEST(DicomReader, every_cut_is_refused) {
    const Folder folder;
    Image image;
    image.withSequence = true;
    expectEveryCutRefused(folder, "a.dcm", dicomFile(image));
    image.syntax = kImplicitLittle;
    expectEveryCutRefused(folder, "b.dcm", dicomFile(image));
    // Elements behind the pixels, too: a cut between them is the only one that cannot be known.
    Image behind;
    behind.behind = DataSet(false, false).text(0xFFFC, 0xFFFC, "LO", "filling").bytes();
    const std::size_t whole = dicomFile(Image()).size();
    for (std::size_t length = whole + 1; length < dicomFile(behind).size(); ++length) {
        expectRefused(readVolume(folder.write("c.dcm", dicomFile(behind).first(length))), {"c.dcm", "cut off"});
    }
    expectRamp(readVolume(folder.write("c.dcm", dicomFile(behind))), {4, 3, 1});
}

TEST(DicomReader, every_cut_of_a_slice_in_a_folder_is_refused) {
    for (const char* ending : {".dcm", ""}) {
        const Folder folder;
        for (int k = 0; k < 3; ++k) {
            folder.write("s/i" + std::to_string(k) + ending, dicomFile(rampSlice(k)));
        }
        const Bytes slice = dicomFile(rampSlice(1));
        for (std::size_t length = 0; length < slice.size(); ++length) {
            folder.write(std::string("s/i1") + ending, slice.first(length));
            expectRefused(readVolume(folder.path("s")), {"i1"});
        }
    }
}

TEST(DicomReader, refuses_slices_that_differ_in_geometry) {
    const Folder folder;
    const auto refuse = [&](const Image& odd) {
        for (int k = 0; k < 3; ++k) {
            folder.write("s/i" + std::to_string(k), dicomFile(k == 1 ? odd : rampSlice(k)));
        }
        expectRefused(readVolume(folder.path("s")), {"i1", "differs from i0"});
    };
    Image odd = rampSlice(1);
    odd.rows = 2;
    refuse(odd);
    odd = rampSlice(1);
    odd.spacing = "0.25\\0.75";
    refuse(odd);
    odd = rampSlice(1);
    odd.orientation = "0\\1\\0\\0\\0\\1";
    refuse(odd);
}

TEST(DicomReader, refuses_colour_wrong_lengths_and_impossible_sizes) {
    const Folder folder;
    const auto refuse = [&](const Image& image, std::initializer_list<const char*> words) {
        expectRefused(readVolume(folder.write("a.dcm", dicomFile(image))), words);
    };
    Image image;
    image.samples = 3;
    image.photometric = "RGB";
    image.bits = 8;
    image.pixels = ramp<std::uint8_t>(36);
    refuse(image, {"a.dcm", "colour"});
    image = Image();
    image.rows = 4;
    refuse(image, {"a.dcm", "24 bytes", "32 are needed"});
    image.rows = 65535;
    image.columns = 65535;
    refuse(image, {"a.dcm", "are needed"});
    image.frames = "2000000000";
    refuse(image, {"a.dcm", "are needed"});
    image = Image();
    image.rows = 0;
    refuse(image, {"a.dcm", "no voxels"});
    image = Image();
    image.syntax = "1.2.840.10008.1.2.1.99";
    refuse(image, {"a.dcm", "deflated"});
    image = Image();
    image.syntax = kRunLength;
    image.rows = 65535;
    image.columns = 65535;
    image.pixels = encapsulated(runLength(ramp<std::uint16_t>(12)));
    const std::uint64_t before = samples::peakMemory();
    refuse(image, {"a.dcm", "too short"});
    samples::expectLessMemoryTaken(before, 32);
}

TEST(DicomReader, writes_nothing_to_standard_error_for_damaged_pixels) {
    const Folder folder;
    testing::internal::CaptureStderr();
    Image image;
    for (const char* syntax : {"1.2.840.10008.1.2.4.70", "1.2.840.10008.1.2.4.90"}) {  // JPEG, but the fragment is none
        image.syntax = syntax;
        image.pixels = encapsulated(ramp<std::uint16_t>(200, 1));
        Bytes file = dicomFile(image);
        // The writer leaves the length of other syntaxes defined; mark it undefined, as compressed pixels need it.
        file.set<std::uint32_t>(file.size() - image.pixels.size() - 4, 0xFFFFFFFFU);
        expectRefused(readVolume(folder.write("a.dcm", file)), {"a.dcm", "do not begin"});
    }
    image.syntax = kRunLength;
    Bytes fragment = runLength(ramp<std::uint16_t>(12));
    fragment.set<std::uint32_t>(8, 100000);  // place of the second segment
    image.pixels = encapsulated(fragment);
    const auto run = readVolume(folder.write("b.dcm", dicomFile(image)));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    expectRefused(run, {"b.dcm"});
}
