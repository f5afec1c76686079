// TIFF files and folders of them through LyrVolumeReader.

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

/** One page: its tags and its strips or tiles, already stored as they shall be. */
struct Page {
    std::uint32_t width = 4;
    std::uint32_t height = 3;
    std::uint16_t bits = 8;
    std::uint16_t format = 1;
    std::uint16_t samples = 1;
    std::uint16_t photometric = 1;
    std::uint16_t compression = 1;
    std::uint32_t rowsPerStrip = 3;
    std::uint32_t tile = 0;
    std::uint32_t subfile = 0;
    std::uint32_t resolution = 0;  ///< pixels in a unit
    std::uint16_t resolutionUnit = 2;
    std::string description;
    std::vector<Bytes> pieces;
};

struct Tag {
    std::uint16_t tag;
    std::uint16_t type;
    std::uint64_t count;
    Bytes value;
};

/** Writes classic or big TIFF files in either byte order: each page's pieces, then its directory. */
class TiffWriter {
public:
    explicit TiffWriter(bool bigEndian = false, bool bigTiff = false) : big_(bigEndian), wide_(bigTiff) {
        file_.text(big_ ? "MM" : "II").put<std::uint16_t>(wide_ ? 43 : 42, big_);
        if (wide_) {
            file_.put<std::uint16_t>(8, big_).put<std::uint16_t>(0, big_);
        }
        link_ = file_.size();
        putPlace(file_, 0);
    }

    TiffWriter& page(const Page& page) {
        Bytes places;
        Bytes lengths;
        for (const Bytes& piece : page.pieces) {
            putPlace(places, file_.size());
            putPlace(lengths, piece.size());
            file_.append(piece);
        }
        if (file_.size() % 2 != 0) {
            file_.zeros(1);
        }
        const std::uint64_t count = page.pieces.size();
        const std::uint16_t placeType = wide_ ? 16 : 4;
        std::vector<Tag> tags{{254, 4, 1, number32(page.subfile)},     {256, 4, 1, number32(page.width)},
                              {257, 4, 1, number32(page.height)},      {258, 3, 1, number16(page.bits)},
                              {259, 3, 1, number16(page.compression)}, {262, 3, 1, number16(page.photometric)}};
        if (!page.description.empty()) {
            tags.push_back({270, 2, page.description.size() + 1, Bytes(page.description).zeros(1)});
        }
        if (page.tile == 0) {
            tags.push_back({273, placeType, count, places});
        }
        tags.push_back({277, 3, 1, number16(page.samples)});
        if (page.tile == 0) {
            tags.push_back({278, 4, 1, number32(page.rowsPerStrip)});
            tags.push_back({279, placeType, count, lengths});
        }
        if (page.resolution != 0) {
            const Bytes rational = number32(page.resolution).append(number32(1));
            tags.push_back({282, 5, 1, rational});
            tags.push_back({283, 5, 1, rational});
            tags.push_back({296, 3, 1, number16(page.resolutionUnit)});
        }
        if (page.tile != 0) {
            tags.push_back({322, 4, 1, number32(page.tile)});
            tags.push_back({323, 4, 1, number32(page.tile)});
            tags.push_back({324, placeType, count, places});
            tags.push_back({325, placeType, count, lengths});
        }
        tags.push_back({339, 3, 1, number16(page.format)});
        directory(tags);
        return *this;
    }

    const Bytes& file() const { return file_; }
    /** Place of the link to the page behind the last one. */
    std::size_t link() const { return link_; }

private:
    Bytes number16(std::uint16_t value) const { return Bytes().put(value, big_); }
    Bytes number32(std::uint32_t value) const { return Bytes().put(value, big_); }

    void putPlace(Bytes& bytes, std::uint64_t value) const {
        wide_ ? bytes.put<std::uint64_t>(value, big_)
              : bytes.put<std::uint32_t>(static_cast<std::uint32_t>(value), big_);
    }

    /** Long values first, so that the directory is the end of the page. */
    void directory(const std::vector<Tag>& tags) {
        const std::size_t room = wide_ ? 8 : 4;
        Bytes entries;
        for (const Tag& tag : tags) {
            entries.put(tag.tag, big_).put(tag.type, big_);
            putPlace(entries, tag.count);
            if (tag.value.size() > room) {
                putPlace(entries, file_.size());
                file_.append(tag.value).zeros(tag.value.size() % 2);
            } else {
                entries.append(tag.value).zeros(room - tag.value.size());
            }
        }
        const std::uint64_t start = file_.size();
        wide_ ? file_.set<std::uint64_t>(link_, start, big_)
              : file_.set<std::uint32_t>(link_, static_cast<std::uint32_t>(start), big_);
        wide_ ? file_.put<std::uint64_t>(tags.size(), big_)
              : file_.put<std::uint16_t>(static_cast<std::uint16_t>(tags.size()), big_);
        file_.append(entries);
        link_ = file_.size();
        putPlace(file_, 0);
    }

    bool big_;
    bool wide_;
    std::size_t link_ = 0;
    Bytes file_;
};

/** Page k of a volume of 4 × 3 samples each, numbered on. */
template <typename T>
Page rampPage(std::size_t k, std::uint16_t format, T first = T{}, bool bigEndian = false) {
    Page page;
    page.bits = sizeof(T) * 8;
    page.format = format;
    page.pieces = {ramp<T>(12, static_cast<T>(first + static_cast<T>(12 * k)), bigEndian)};
    return page;
}

template <typename T>
Bytes rampFile(std::size_t pages, std::uint16_t format, T first, bool bigEndian, bool bigTiff) {
    TiffWriter writer(bigEndian, bigTiff);
    for (std::size_t k = 0; k < pages; ++k) {
        writer.page(rampPage<T>(k, format, first, bigEndian));
    }
    return writer.file();
}

}  // namespace

TEST(TiffReader, reads_the_pages_of_one_file_in_every_sample_type_and_layout_of_bytes) {
    const Folder folder;
    const auto check = [&]<typename T>(std::uint16_t format, T first) {
        for (const bool bigEndian : {false, true}) {
            for (const bool bigTiff : {false, true}) {
                expectRamp(readVolume(folder.write("a.tif", rampFile<T>(2, format, first, bigEndian, bigTiff))),
                           {4, 3, 2}, static_cast<double>(first));
            }
        }
    };
    check(1, std::uint8_t{200});
    check(1, std::uint16_t{65000});
    check(1, std::uint32_t{70000});
    check(2, std::int8_t{-20});
    check(2, std::int16_t{-300});
    check(2, std::int32_t{-70000});
    check(3, -1.5F);
    check(3, 0.25);
}

TEST(TiffReader, reads_strips_and_tiles_also_where_the_last_is_not_full) {
    const Folder folder;
    Page strips = rampPage<std::uint16_t>(0, 1);
    strips.rowsPerStrip = 2;
    strips.pieces = {ramp<std::uint16_t>(8), ramp<std::uint16_t>(4, 8)};
    expectRamp(readVolume(folder.write("a.tif", TiffWriter().page(strips).file())), {4, 3, 1});

    // 20 × 18 pixels in tiles of 16 × 16: two across, two down.
    Page tiles;
    tiles.width = 20;
    tiles.height = 18;
    tiles.bits = 16;
    tiles.tile = 16;
    for (int ty = 0; ty < 2; ++ty) {
        for (int tx = 0; tx < 2; ++tx) {
            Bytes tile;
            for (int y = 0; y < 16; ++y) {
                for (int x = 0; x < 16; ++x) {
                    const bool inside = ty * 16 + y < 18 && tx * 16 + x < 20;
                    tile.put(static_cast<std::uint16_t>(inside ? (ty * 16 + y) * 20 + tx * 16 + x : 9999));
                }
            }
            tiles.pieces.push_back(tile);
        }
    }
    expectRamp(readVolume(folder.write("b.tif", TiffWriter().page(tiles).file())), {20, 18, 1});
}

TEST(TiffReader, reads_deflate_and_packbits) {
    const Folder folder;
    Page packed = rampPage<std::uint16_t>(0, 1);
    packed.compression = 8;
    packed.pieces = {samples::zlib(packed.pieces[0])};
    expectRamp(readVolume(folder.write("a.tif", TiffWriter().page(packed).file())), {4, 3, 1});

    Page bits = rampPage<std::uint8_t>(0, 1);
    bits.compression = 32773;
    bits.pieces = {Bytes().put<std::uint8_t>(11).append(ramp<std::uint8_t>(12))};  // a run of 12 literal bytes
    expectRamp(readVolume(folder.write("b.tif", TiffWriter().page(bits).file())), {4, 3, 1});
}

TEST(TiffReader, reads_a_folder_in_the_natural_order_of_its_names) {
    const Folder folder;
    for (std::size_t k = 0; k < 12; ++k) {
        folder.write("stack/s" + std::to_string(k + 1) + ".tif",
                     TiffWriter().page(rampPage<std::uint16_t>(k, 1)).file());
    }
    const auto outcome = readVolume(folder.path("stack"));
    expectRamp(outcome, {4, 3, 12});
    EXPECT_EQ(outcome.warnings(), "");

    std::filesystem::remove(folder.path("stack/s7.tif"));
    folder.write("stack/notes.txt", Bytes("x"));
    const auto gap = readVolume(folder.path("stack"));
    ASSERT_TRUE(gap.read) << gap.report.error;
    EXPECT_EQ(gap.volume->size()[2], 11);
    EXPECT_NE(gap.warnings().find("missing between s6.tif and s8.tif"), std::string::npos) << gap.warnings();
    EXPECT_NE(gap.warnings().find("notes.txt"), std::string::npos);
}

TEST(TiffReader, takes_spacing_from_resolution_and_description) {
    const Folder folder;
    const auto spacing = [&](std::uint32_t resolution, std::uint16_t unit, const std::string& description) {
        Page page = rampPage<std::uint8_t>(0, 1);
        page.resolution = resolution;
        page.resolutionUnit = unit;
        page.description = description;
        const auto outcome =
            readVolume(folder.write("a.tif", TiffWriter().page(page).page(rampPage<std::uint8_t>(1, 1)).file()));
        EXPECT_TRUE(outcome.read) << outcome.report.error;
        return outcome;
    };
    const auto inch = spacing(254, 2, "");
    EXPECT_DOUBLE_EQ(inch.volume->spacing()[0], 0.1);
    EXPECT_DOUBLE_EQ(inch.volume->spacing()[2], 0.1);
    EXPECT_NE(inch.warnings().find("distance between slices"), std::string::npos);
    EXPECT_DOUBLE_EQ(spacing(20, 3, "").volume->spacing()[1], 0.5);
    const auto described = spacing(2, 1, "ImageJ=1.53\nimages=2\nunit=micron\nspacing=4.0\n");
    EXPECT_DOUBLE_EQ(described.volume->spacing()[0], 0.0005);
    EXPECT_DOUBLE_EQ(described.volume->spacing()[2], 0.004);
    EXPECT_EQ(described.volume->unit(), "mm");
    const auto none = spacing(2, 1, "");
    EXPECT_EQ(none.volume->spacing(), (LyrVolume::Vector{1.0, 1.0, 1.0}));
    EXPECT_EQ(none.volume->unit(), "");
}

TEST(TiffReader, leaves_smaller_copies_of_pages_out) {
    const Folder folder;
    Page small = rampPage<std::uint8_t>(0, 1);
    small.width = 2;
    small.height = 2;
    small.subfile = 1;
    small.pieces = {ramp<std::uint8_t>(4)};
    expectRamp(
        readVolume(folder.write(
            "a.tif",
            TiffWriter().page(rampPage<std::uint8_t>(0, 1)).page(small).page(rampPage<std::uint8_t>(1, 1)).file())),
        {4, 3, 2});
}

TEST(TiffReader, every_cut_is_refused) {
    const Folder folder;
    expectEveryCutRefused(folder, "a.tif", rampFile<std::uint16_t>(3, 1, 0, false, false));
    expectEveryCutRefused(folder, "b.tif", rampFile<std::uint16_t>(3, 1, 0, true, true));
    Page packed = rampPage<std::uint16_t>(0, 1);
    packed.compression = 8;
    packed.pieces = {samples::zlib(packed.pieces[0])};
    packed.description = "some words that are longer than a tag";
    packed.resolution = 100;
    expectEveryCutRefused(folder, "c.tif", TiffWriter().page(packed).page(packed).file());
    Page tiles;
    tiles.width = tiles.height = tiles.tile = 16;
    tiles.pieces = {ramp<std::uint8_t>(256)};
    expectEveryCutRefused(folder, "d.tif", TiffWriter().page(tiles).file());
}

TEST(TiffReader, every_cut_of_a_slice_in_a_folder_is_refused) {
    const Folder folder;
    for (std::size_t k = 0; k < 3; ++k) {
        folder.write("stack/s" + std::to_string(k) + ".tif", TiffWriter().page(rampPage<std::uint16_t>(k, 1)).file());
    }
    expectRamp(readVolume(folder.path("stack")), {4, 3, 3});
    const Bytes slice = TiffWriter().page(rampPage<std::uint16_t>(1, 1)).file();
    for (std::size_t length = 0; length < slice.size(); ++length) {
        folder.write("stack/s1.tif", slice.first(length));
        expectRefused(readVolume(folder.path("stack")), {"s1.tif"});
    }
}

TEST(TiffReader, refuses_slices_that_are_not_alike) {
    const Folder folder;
    Page other = rampPage<std::uint8_t>(0, 1);
    other.width = 3;
    other.pieces = {ramp<std::uint8_t>(9)};
    const Page first = rampPage<std::uint8_t>(0, 1);
    expectRefused(readVolume(folder.write("a.tif", TiffWriter().page(first).page(other).file())),
                  {"a.tif, page 2", "3 × 3", "4 × 3"});
    expectRefused(
        readVolume(folder.write("b.tif", TiffWriter().page(first).page(rampPage<std::uint16_t>(0, 1)).file())),
        {"b.tif, page 2", "uint16", "uint8"});
    folder.write("stack/1.tif", TiffWriter().page(first).file());
    folder.write("stack/2.tif", TiffWriter().page(first).page(first).file());
    expectRefused(readVolume(folder.path("stack")), {"2.tif", "2 pages"});
}

TEST(TiffReader, refuses_colour_and_bit_depths_it_cannot_read) {
    const Folder folder;
    Page colour = rampPage<std::uint8_t>(0, 1);
    colour.samples = 3;
    colour.photometric = 2;
    colour.pieces = {ramp<std::uint8_t>(36)};
    expectRefused(readVolume(folder.write("a.tif", TiffWriter().page(colour).file())), {"a.tif", "colour"});
    Page palette = rampPage<std::uint8_t>(0, 1);
    palette.photometric = 3;
    expectRefused(readVolume(folder.write("b.tif", TiffWriter().page(palette).file())), {"b.tif", "colour"});
    Page twelve = rampPage<std::uint8_t>(0, 1);
    twelve.bits = 12;
    twelve.pieces = {ramp<std::uint8_t>(18)};
    expectRefused(readVolume(folder.write("c.tif", TiffWriter().page(twelve).file())), {"c.tif", "12 bits"});
}

TEST(TiffReader, refuses_files_that_lie_about_their_size) {
    const Folder folder;
    const auto refuse = [&](const Page& page, std::initializer_list<const char*> words) {
        expectRefused(readVolume(folder.write("a.tif", TiffWriter().page(page).file())), words);
    };
    Page page = rampPage<std::uint8_t>(0, 1);
    page.height = 4;
    refuse(page, {"a.tif", "page 1", "2 are needed"});
    page.rowsPerStrip = 4;
    refuse(page, {"a.tif", "12 bytes", "16 are needed"});
    page.height = 0;
    refuse(page, {"a.tif", "impossible"});
    page = rampPage<std::uint8_t>(0, 1);
    page.width = 4000000000U;
    refuse(page, {"a.tif", "impossible"});
    page = rampPage<std::uint8_t>(0, 1);
    page.compression = 8;
    page.width = 16000000;
    page.height = 16000000;
    page.rowsPerStrip = 16000000;
    const std::uint64_t before = samples::peakMemory();
    refuse(page, {"a.tif", "cannot hold"});
    samples::expectLessMemoryTaken(before, 32);
    page = rampPage<std::uint8_t>(0, 1);
    page.compression = 8;  // says deflate, is not
    refuse(page, {"a.tif", "cannot be decoded"});
    page.description = "ImageJ=1.53\nimages=24\n";
    page.compression = 1;
    refuse(page, {"a.tif", "24 images"});
}

TEST(TiffReader, refuses_pages_that_run_in_a_circle) {
    const Folder folder;
    TiffWriter writer;
    writer.page(rampPage<std::uint8_t>(0, 1));
    Bytes file = writer.file();
    std::uint32_t first = 0;
    for (std::size_t i = 4; i-- > 0;) {
        first = first << 8U | file[4 + i];
    }
    file.set<std::uint32_t>(writer.link(), first);
    expectRefused(readVolume(folder.write("a.tif", file)), {"a.tif", "circle"});
}

TEST(TiffReader, a_folder_without_slices_is_refused) {
    const Folder folder;
    expectRefused(readVolume(folder.path()), {"no TIFF or DICOM slices"});
    folder.write("readme.txt", Bytes("x"));
    expectRefused(readVolume(folder.path()), {"no TIFF or DICOM slices"});
    folder.write("a.tif", Bytes("x"));
    expectRefused(readVolume(folder.path()), {"a.tif"});
}
