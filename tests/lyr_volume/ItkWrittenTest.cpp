// Files written by ITK, through LyrVolumeReader.

#include <gtest/gtest.h>
#include <itkGDCMImageIO.h>
#include <itkMetaDataObject.h>
#include <itkMetaImageIO.h>
#include <itkNiftiImageIO.h>
#include <itkNrrdImageIO.h>
#include <itkTIFFImageIO.h>

#include <vector>

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
    for (const auto compression : {Codec::JPEG, Codec::JPEG2000}) {
        for (const bool compressed : {false, true}) {
            const std::string name = "s" + std::to_string(static_cast<int>(compression)) + (compressed ? "c" : "p");
            samples::Bytes nothing;
            folder.write(name + "/x", nothing);
            for (int k = 0; k < 3; ++k) {
                const auto io = itk::GDCMImageIO::New();
                io->SetCompressionType(compression);
                io->SetKeepOriginalUID(true);
                auto& facts = io->GetMetaDataDictionary();
                itk::EncapsulateMetaData<std::string>(facts, "0020|000e", "1.2.826.0.1.3680043.2.1125.1");
                itk::EncapsulateMetaData<std::string>(facts, "0020|000d", "1.2.826.0.1.3680043.2.1125.2");
                itk::EncapsulateMetaData<std::string>(facts, "0008|0018",
                                                      "1.2.826.0.1.3680043.2.1125.3." + std::to_string(k + 1));
                itk::EncapsulateMetaData<std::string>(facts, "0008|0060", "CT");
                itk::EncapsulateMetaData<std::string>(facts, "0028|0004", "MONOCHROME2");
                itk::EncapsulateMetaData<std::string>(facts, "0020|0032", "10\\20\\" + std::to_string(3 * k));
                itk::EncapsulateMetaData<std::string>(facts, "0020|0037", "1\\0\\0\\0\\1\\0");
                write<unsigned short>(*io, folder.path(name + "/i" + std::to_string(9 - k) + ".dcm"),
                                      itk::IOComponentEnum::USHORT, compressed, 0);
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
