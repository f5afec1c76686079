// Files written by ITK, through LyrVolumeReader.

#include <gtest/gtest.h>
#include <itkGDCMImageIO.h>
#include <itkMetaDataObject.h>
#include <itkMetaImageIO.h>
#include <itkNiftiImageIO.h>
#include <itkNrrdImageIO.h>
#include <itkTIFFImageIO.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

#include "lyr_volume/SampleFiles.h"

using samples::expectEveryCutRefused;
using samples::expectRamp;
using samples::Folder;
using samples::readVolume;

namespace {

constexpr itk::SizeValueType kX = 40;  // the JPEG 2000 writer wants 32 at least
constexpr itk::SizeValueType kY = 36;
constexpr itk::SizeValueType kZ = 4;

/** Writes 40 × 36 × depth samples 0, 1, … of 0.5 × 0.25 × 2 mm. */
template <typename T>
void write(itk::ImageIOBase& io, const std::string& path, itk::IOComponentEnum type, bool compressed,
           itk::SizeValueType depth = kZ, double place = 0.0) {
    const bool flat = depth == 0;
    const itk::SizeValueType size[] = {kX, kY, depth};
    const double spacing[] = {0.5, 0.25, 2.0};
    const double origin[] = {10.0, 20.0, place};
    const unsigned int axes = flat ? 2 : 3;
    io.SetNumberOfDimensions(axes);
    itk::ImageIORegion region(axes);
    for (unsigned int i = 0; i < axes; ++i) {
        io.SetDimensions(i, size[i]);
        io.SetSpacing(i, spacing[i]);
        io.SetOrigin(i, origin[i]);
        std::vector<double> direction(axes, 0.0);
        direction[i] = 1.0;
        io.SetDirection(i, direction);
        region.SetSize(i, size[i]);
    }
    io.SetPixelType(itk::IOPixelEnum::SCALAR);
    io.SetComponentType(type);
    io.SetNumberOfComponents(1);
    io.SetUseCompression(compressed);
    io.SetIORegion(region);
    io.SetFileName(path);
    std::vector<T> values(kX * kY * (flat ? 1 : depth));
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = static_cast<T>(i);
    }
    ASSERT_TRUE(io.CanWriteFile(path.c_str()));
    io.Write(values.data());
}

template <typename T>
void writeAs(itk::ImageIOBase& io, const std::string& path, bool compressed) {
    if constexpr (std::is_same_v<T, float>) {
        write<T>(io, path, itk::IOComponentEnum::FLOAT, compressed);
    } else {
        write<T>(io, path, itk::IOComponentEnum::SHORT, compressed);
    }
}

/** GDCM's writer loses some bytes when it packs pixels; only the reader is under test here. */
class LeaksOfOthers {
#if defined(__SANITIZE_ADDRESS__)
    __lsan::ScopedDisabler disabler_;
#endif
};

/** Writes slice k of a series, 3 mm apart, each with the same samples. */
void writeDicomSlice(const std::string& path, int k, bool compressed,
                     itk::GDCMImageIOEnums::Compression codec = itk::GDCMImageIOEnums::Compression::JPEG) {
    [[maybe_unused]] const LeaksOfOthers leaks;
    const auto io = itk::GDCMImageIO::New();
    io->SetCompressionType(codec);
    io->SetKeepOriginalUID(true);
    auto& facts = io->GetMetaDataDictionary();
    const std::string root = "1.2.826.0.1.3680043.2.1125.";
    itk::EncapsulateMetaData<std::string>(facts, "0020|000e", root + "1");
    itk::EncapsulateMetaData<std::string>(facts, "0020|000d", root + "2");
    itk::EncapsulateMetaData<std::string>(facts, "0008|0018", root + "3." + std::to_string(k + 1));
    itk::EncapsulateMetaData<std::string>(facts, "0008|0060", "CT");
    itk::EncapsulateMetaData<std::string>(facts, "0028|0004", "MONOCHROME2");
    itk::EncapsulateMetaData<std::string>(facts, "0020|0032", "10\\20\\" + std::to_string(3 * k));
    itk::EncapsulateMetaData<std::string>(facts, "0020|0037", "1\\0\\0\\0\\1\\0");
    write<unsigned short>(*io, path, itk::IOComponentEnum::USHORT, compressed, 0);
}

const LyrVolume::Size kSize{40, 36, 4};
const LyrVolume::Vector kSpacing{0.5, 0.25, 2.0};

template <typename Io>
void expectReadable(const Folder& folder, const std::string& name) {
    for (const bool compressed : {false, true}) {
        writeAs<short>(*Io::New(), folder.path(name), compressed);
        const auto whole = readVolume(folder.path(name));
        expectRamp(whole, kSize);
        EXPECT_EQ(whole.volume->spacing(), kSpacing);
        EXPECT_EQ(whole.volume->unit(), "mm");
        EXPECT_EQ(whole.warnings(), "");
        writeAs<float>(*Io::New(), folder.path(name), compressed);
        expectRamp(readVolume(folder.path(name)), kSize);
    }
}

}  // namespace

TEST(ItkWritten, nrrd_attached_and_detached) {
    const Folder folder;
    expectReadable<itk::NrrdImageIO>(folder, "a.nrrd");
    expectReadable<itk::NrrdImageIO>(folder, "a.nhdr");
    EXPECT_EQ(readVolume(folder.path("a.nrrd")).volume->origin(), (LyrVolume::Vector{10.0, 20.0, 0.0}));
}

TEST(ItkWritten, meta_image_attached_and_detached) {
    const Folder folder;
    expectReadable<itk::MetaImageIO>(folder, "a.mha");
    expectReadable<itk::MetaImageIO>(folder, "a.mhd");
    EXPECT_EQ(readVolume(folder.path("a.mha")).volume->origin(), (LyrVolume::Vector{10.0, 20.0, 0.0}));
}

TEST(ItkWritten, nifti_plain_packed_and_in_two_files) {
    const Folder folder;
    expectReadable<itk::NiftiImageIO>(folder, "a.nii");
    expectReadable<itk::NiftiImageIO>(folder, "a.nii.gz");
    expectReadable<itk::NiftiImageIO>(folder, "a.hdr");
}

TEST(ItkWritten, tiff_of_several_pages_plain_and_packed) {
    const Folder folder;
    for (const bool compressed : {false, true}) {
        write<unsigned short>(*itk::TIFFImageIO::New(), folder.path("a.tif"), itk::IOComponentEnum::USHORT, compressed);
        expectRamp(readVolume(folder.path("a.tif")), kSize);
        write<float>(*itk::TIFFImageIO::New(), folder.path("b.tif"), itk::IOComponentEnum::FLOAT, compressed);
        expectRamp(readVolume(folder.path("b.tif")), kSize);
    }
}

TEST(ItkWritten, dicom_slices_plain_and_in_both_jpeg_kinds) {
    using Codec = itk::GDCMImageIOEnums::Compression;
    const Folder folder;
    for (const auto codec : {Codec::JPEG, Codec::JPEG2000}) {
        for (const bool compressed : {false, true}) {
            const std::string name = "s" + std::to_string(static_cast<int>(codec)) + (compressed ? "c" : "p");
            std::filesystem::create_directory(folder.path(name));
            for (int k = 0; k < 3; ++k) {
                writeDicomSlice(folder.path(name + "/i" + std::to_string(9 - k) + ".dcm"), k, compressed, codec);
            }
            const auto outcome = readVolume(folder.path(name));
            ASSERT_TRUE(outcome.read) << outcome.report.error;
            EXPECT_EQ(outcome.volume->size(), (LyrVolume::Size{40, 36, 3}));
            EXPECT_EQ(outcome.volume->spacing(), (LyrVolume::Vector{0.5, 0.25, 3.0}));
            for (std::int64_t z = 0; z < 3; ++z) {
                EXPECT_EQ(outcome.volume->at(39, 35, z), 1439.0F);
                EXPECT_EQ(outcome.volume->at(1, 2, z), 81.0F);
            }
        }
    }
}

TEST(ItkWritten, every_cut_of_a_jpeg_slice_is_refused) {
    const Folder folder;
    for (const auto codec : {itk::GDCMImageIOEnums::Compression::JPEG, itk::GDCMImageIOEnums::Compression::JPEG2000}) {
        writeDicomSlice(folder.path("a.dcm"), 0, true, codec);
        const auto length = std::filesystem::file_size(folder.path("a.dcm"));
        for (std::uintmax_t rest = length - 1; rest > 0; rest -= std::min<std::uintmax_t>(rest, 3)) {
            std::filesystem::resize_file(folder.path("a.dcm"), rest);
            samples::expectRefused(readVolume(folder.path("a.dcm")), {"a.dcm"});
        }
    }
}

namespace {

samples::Bytes contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    return samples::Bytes(text);
}

/** Pseudo-random numbers that are the same in every run. */
class Dice {
public:
    std::uint32_t below(std::size_t limit) {
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        return static_cast<std::uint32_t>((state_ >> 33U) % limit);
    }

private:
    std::uint64_t state_ = 1;
};

/** Overwrites a few bytes, mostly in the header, with values that headers are sensitive to. */
samples::Bytes damaged(samples::Bytes bytes, Dice& dice) {
    constexpr unsigned char kValues[] = {0x00, 0x01, 0x7F, 0x80, 0xFF, ' ', '0', '9', '-', '\n'};
    for (std::uint32_t i = 0; i <= dice.below(4); ++i) {
        const std::size_t reach = dice.below(4) == 0 ? bytes.size() : std::min<std::size_t>(bytes.size(), 700);
        const std::size_t place = dice.below(reach);
        for (std::size_t k = place; k <= std::min(bytes.size() - 1, place + dice.below(4)); ++k) {
            bytes[k] =
                dice.below(2) == 0 ? kValues[dice.below(sizeof(kValues))] : static_cast<unsigned char>(dice.below(256));
        }
    }
    return bytes;
}

}  // namespace

TEST(ItkWritten, damaged_files_are_refused_or_read_but_do_no_harm) {
    const Folder folder;
    const char* rounds = std::getenv("LYR_DAMAGE_ROUNDS");  // more than the usual few, for a long search
    const int count = rounds != nullptr ? std::atoi(rounds) : 60;
    writeAs<short>(*itk::NrrdImageIO::New(), folder.path("a.nrrd"), true);
    writeAs<short>(*itk::NrrdImageIO::New(), folder.path("b.nrrd"), false);
    writeAs<short>(*itk::MetaImageIO::New(), folder.path("a.mha"), true);
    writeAs<short>(*itk::MetaImageIO::New(), folder.path("b.mha"), false);
    writeAs<short>(*itk::NiftiImageIO::New(), folder.path("a.nii"), false);
    writeAs<short>(*itk::NiftiImageIO::New(), folder.path("b.nii.gz"), true);
    writeAs<short>(*itk::TIFFImageIO::New(), folder.path("a.tif"), true);
    writeAs<short>(*itk::TIFFImageIO::New(), folder.path("b.tif"), false);
    writeDicomSlice(folder.path("a.dcm"), 0, false);
    writeDicomSlice(folder.path("b.dcm"), 0, true);
    const std::uint64_t before = samples::peakMemory();
    Dice dice;
    for (const char* name :
         {"a.nrrd", "b.nrrd", "a.mha", "b.mha", "a.nii", "b.nii.gz", "a.tif", "b.tif", "a.dcm", "b.dcm"}) {
        const samples::Bytes whole = contentOf(folder.path(name));
        ASSERT_TRUE(readVolume(folder.path(name)).read) << name;
        for (int i = 0; i < count; ++i) {
            const auto outcome = readVolume(folder.write(name, damaged(whole, dice)));
            ASSERT_EQ(outcome.read, outcome.volume != nullptr);
            ASSERT_EQ(outcome.read, outcome.report.error.empty()) << outcome.report.error;
        }
    }
    samples::expectLessMemoryTaken(before, 256);
}

TEST(ItkWritten, every_cut_is_refused) {
    const Folder folder;
    for (const bool compressed : {false, true}) {
        writeAs<short>(*itk::NrrdImageIO::New(), folder.path("a.nrrd"), compressed);
        writeAs<short>(*itk::MetaImageIO::New(), folder.path("a.mha"), compressed);
        writeAs<short>(*itk::NiftiImageIO::New(), folder.path("a.nii"), false);
        writeAs<short>(*itk::NiftiImageIO::New(), folder.path("a.nii.gz"), true);
        writeAs<short>(*itk::TIFFImageIO::New(), folder.path("a.tif"), compressed);
        for (const char* name : {"a.nrrd", "a.mha", "a.nii", "a.nii.gz", "a.tif"}) {
            expectEveryCutRefused(folder, name, contentOf(folder.path(name)), 11);
        }
    }
}
