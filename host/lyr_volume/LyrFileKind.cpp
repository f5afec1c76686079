#include <array>
#include <cstring>
#include <span>
#include <string_view>
#include <utility>

#include <lyr_volume/LyrFileKind_p.h>
#include <lyr_volume/LyrHeaderText_p.h>
#include <lyr_volume/LyrInputFile_p.h>
#include <lyr_volume/LyrNiftiHeader_p.h>

namespace lyrvolume {
namespace {

using Start = std::array<unsigned char, kNiftiSecondBytes>;

bool beginsWith(std::span<const unsigned char> bytes, std::string_view text) {
    return bytes.size() >= text.size() && std::memcmp(bytes.data(), text.data(), text.size()) == 0;
}

bool isTiff(std::span<const unsigned char> bytes) {
    return beginsWith(bytes, {"II*\0", 4}) || beginsWith(bytes, {"MM\0*", 4}) || beginsWith(bytes, {"II+\0", 4}) ||
           beginsWith(bytes, {"MM\0+", 4});
}

bool isMetaImage(std::span<const unsigned char> bytes) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::string_view line = text.substr(0, text.find('\n'));
    const std::string_view name = trimmed(line.substr(0, line.find('=')));
    return line.find('=') != std::string_view::npos && (name == "ObjectType" || name == "NDims");
}

FileKind kindOfBytes(std::span<const unsigned char> bytes) {
    if (beginsWith(bytes, "NRRD000")) {
        return FileKind::Nrrd;
    }
    if (isTiff(bytes)) {
        return FileKind::Tiff;
    }
    if (bytes.size() >= 132 && std::memcmp(bytes.data() + 128, "DICM", 4) == 0) {
        return FileKind::Dicom;
    }
    if (niftiKind(bytes).version != 0) {
        return FileKind::Nifti;
    }
    return isMetaImage(bytes) ? FileKind::MetaImage : FileKind::Unknown;
}

FileKind kindOfContent(const InputFile& file) {
    Start start{};
    std::span<const unsigned char> bytes(start.data(), file.readAt(0, start));
    if (!beginsWith(bytes, "\x1F\x8B")) {
        return kindOfBytes(bytes);
    }
    // Of the compressed kinds only NIfTI may be gzip as a whole.
    LyrVolumeReader::Report ignored;
    const LyrVolumeReader::Progress none;
    ReadContext quiet(ignored, none);
    const auto count = inflatedStream(file, 0, file.length(), quiet)->read(start);
    const bool nifti = count && niftiKind({start.data(), *count}).version != 0;
    return nifti ? FileKind::Nifti : FileKind::Unknown;
}

FileKind kindOfName(const std::string& path) {
    static constexpr std::array<std::pair<std::string_view, FileKind>, 11> kEndings{{{".nrrd", FileKind::Nrrd},
                                                                                     {".nhdr", FileKind::Nrrd},
                                                                                     {".mha", FileKind::MetaImage},
                                                                                     {".mhd", FileKind::MetaImage},
                                                                                     {".nii", FileKind::Nifti},
                                                                                     {".nii.gz", FileKind::Nifti},
                                                                                     {".hdr", FileKind::Nifti},
                                                                                     {".tif", FileKind::Tiff},
                                                                                     {".tiff", FileKind::Tiff},
                                                                                     {".dcm", FileKind::Dicom},
                                                                                     {".ima", FileKind::Dicom}}};
    const std::string lower = lowerCase(path);
    for (const auto& [ending, kind] : kEndings) {
        if (lower.ends_with(ending)) {
            return kind;
        }
    }
    return FileKind::Unknown;
}

}  // namespace

bool fileKind(const std::string& path, FileKind& kind, ReadContext& context) {
    InputFile file;
    if (!file.open(path, context)) {
        return false;
    }
    if (file.length() == 0) {
        return context.fail(path, "is empty; fetch the file again");
    }
    kind = kindOfContent(file);
    if (kind == FileKind::Unknown) {
        kind = kindOfName(path);
    }
    return true;
}

FileKind contentKind(const std::string& path) {
    LyrVolumeReader::Report ignored;
    const LyrVolumeReader::Progress none;
    ReadContext quiet(ignored, none);
    InputFile file;
    return file.open(path, quiet) ? kindOfContent(file) : FileKind::Unknown;
}

}  // namespace lyrvolume
