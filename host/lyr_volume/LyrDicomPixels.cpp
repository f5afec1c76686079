#include <gdcmTrace.h>
#include <itkGDCMImageIO.h>

#include <bit>
#include <memory>
#include <mutex>
#include <optional>

#include <lyr_volume/LyrDicomSlice_p.h>
#include <lyr_volume/LyrSampleType_p.h>

namespace lyrvolume {
namespace {

/** Keeps ITK and GDCM from writing to standard error while it lives: what matters comes back as a message. Their
 * switches belong to the process, so decoding goes on in one thread at a time. */
class Quiet {
public:
    Quiet()
        : lock_(mutex()),
          itkWarnings_(itk::Object::GetGlobalWarningDisplay()),
          gdcmWarnings_(gdcm::Trace::GetWarningFlag()),
          gdcmErrors_(gdcm::Trace::GetErrorFlag()) {
        itk::Object::SetGlobalWarningDisplay(false);
        gdcm::Trace::SetWarning(false);
        gdcm::Trace::SetError(false);
    }
    ~Quiet() {
        itk::Object::SetGlobalWarningDisplay(itkWarnings_);
        gdcm::Trace::SetWarning(gdcmWarnings_);
        gdcm::Trace::SetError(gdcmErrors_);
    }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

private:
    static std::mutex& mutex() {
        static std::mutex instance;
        return instance;
    }

    std::lock_guard<std::mutex> lock_;
    bool itkWarnings_;
    bool gdcmWarnings_;
    bool gdcmErrors_;
};

std::optional<SampleType> sampleType(itk::IOComponentEnum type) {
    static_assert(sizeof(int) == 4 && sizeof(short) == 2 && sizeof(long) == 8);
    switch (type) {
        case itk::IOComponentEnum::UCHAR:
            return SampleType::UInt8;
        case itk::IOComponentEnum::CHAR:
            return SampleType::Int8;
        case itk::IOComponentEnum::USHORT:
            return SampleType::UInt16;
        case itk::IOComponentEnum::SHORT:
            return SampleType::Int16;
        case itk::IOComponentEnum::UINT:
            return SampleType::UInt32;
        case itk::IOComponentEnum::INT:
            return SampleType::Int32;
        case itk::IOComponentEnum::ULONG:
        case itk::IOComponentEnum::ULONGLONG:
            return SampleType::UInt64;
        case itk::IOComponentEnum::LONG:
        case itk::IOComponentEnum::LONGLONG:
            return SampleType::Int64;
        case itk::IOComponentEnum::FLOAT:
            return SampleType::Float32;
        case itk::IOComponentEnum::DOUBLE:
            return SampleType::Float64;
        default:
            return std::nullopt;
    }
}

std::string refusal(const DicomSlice& slice, const itk::GDCMImageIO& io) {
    const bool sizeFits = io.GetNumberOfDimensions() >= 2 && io.GetDimensions(0) == slice.columns &&
                          io.GetDimensions(1) == slice.rows &&
                          (io.GetNumberOfDimensions() > 2 ? io.GetDimensions(2) : 1) == slice.frames;
    if (!sizeFits) {
        return "its decoded size is not the one it states; the file is damaged";
    }
    if (io.GetNumberOfComponents() != 1 || !sampleType(io.GetComponentType())) {
        return "its samples are of no supported type; store them as 8, 16 or 32 bits";
    }
    return {};
}

bool decode(const DicomSlice& slice, std::vector<float>& out, DicomPixels& pixels, std::string& problem) {
    const auto io = itk::GDCMImageIO::New();
    io->SetFileName(slice.path);
    io->ReadImageInformation();
    problem = refusal(slice, *io);
    if (!problem.empty()) {
        return false;
    }
    const unsigned int axes = io->GetNumberOfDimensions();
    itk::ImageIORegion region(axes);
    for (unsigned int i = 0; i < axes; ++i) {
        region.SetIndex(i, 0);
        region.SetSize(i, io->GetDimensions(i));
    }
    io->SetIORegion(region);
    SampleFormat format{*sampleType(io->GetComponentType()), std::endian::native == std::endian::big};
    const std::uint64_t count = slice.rows * slice.columns * slice.frames;
    const auto stored = std::make_unique<unsigned char[]>(count * sampleBytes(format.type));
    io->Read(stored.get());
    const std::size_t before = out.size();
    out.resize(before + count);
    convertSamples(format, stored.get(), count, 1, out.data() + before);
    for (unsigned int i = 0; i < 3 && i < axes; ++i) {
        pixels.spacing[i] = io->GetSpacing(i);
        pixels.origin[i] = io->GetOrigin(i);
    }
    pixels.typeName = sampleName(format.type);
    return true;
}

}  // namespace

bool decodeDicomFile(const DicomSlice& slice, std::vector<float>& out, DicomPixels& pixels, ReadContext& context) {
    std::string problem;
    try {
        const Quiet quiet;
        if (decode(slice, out, pixels, problem)) {
            return true;
        }
    } catch (const itk::ExceptionObject& exception) {
        problem = std::string("cannot be decoded (") + exception.GetDescription() +
                  "); the file is damaged or packed in a "
                  "way that is not supported";
    }
    return context.fail(slice.path, problem);
}

}  // namespace lyrvolume
