#include <lyr_volume/LyrVolumeReader.h>

#include <array>
#include <charconv>
#include <exception>
#include <filesystem>
#include <new>
#include <string_view>
#include <system_error>
#include <utility>

#include <lyr_volume/LyrCasting.h>
#include <lyr_volume/LyrFileKind_p.h>
#include <lyr_volume/LyrFolder_p.h>
#include <lyr_volume/LyrFormats_p.h>
#include <lyr_volume/LyrHeaderText_p.h>

namespace {

using lyrvolume::Draft;
using lyrvolume::FileKind;
using lyrvolume::ReadContext;

constexpr std::string_view kBuiltin = "builtin:";
constexpr std::string_view kCasting = "builtin:casting";

bool readBuiltin(const std::string& name, std::shared_ptr<const LyrVolume>& out, ReadContext& context) {
    const std::string_view rest = std::string_view(name).substr(std::min(kCasting.size(), name.size()));
    LyrCasting::Options options;
    if (name.compare(0, kCasting.size(), kCasting) != 0 || (!rest.empty() && rest.front() != '@')) {
        return context.fail(name,
                            "there is no such built-in volume; there is builtin:casting, with another edge length "
                            "builtin:casting@256");
    }
    if (!rest.empty()) {
        const auto edge = lyrvolume::parseAs<std::int64_t>(rest.substr(1));
        if (!edge) {
            return context.fail(name, "the edge length must be a whole number, as in builtin:casting@256");
        }
        options.edge = *edge;
    }
    std::string error;
    return LyrCasting::create(options, out, error) || context.fail(name, error);
}

bool readFile(const std::string& path, Draft& draft, ReadContext& context) {
    FileKind kind = FileKind::Unknown;
    if (!lyrvolume::fileKind(path, kind, context)) {
        return false;
    }
    switch (kind) {
        case FileKind::Nrrd:
            return lyrvolume::readNrrd(path, draft, context);
        case FileKind::MetaImage:
            return lyrvolume::readMetaImage(path, draft, context);
        case FileKind::Nifti:
            return lyrvolume::readNifti(path, draft, context);
        case FileKind::Tiff:
            return lyrvolume::readTiff({path}, draft, context);
        case FileKind::Dicom:
            return lyrvolume::readDicom(path, {path}, draft, context);
        case FileKind::Unknown:
            break;
    }
    return context.fail(path, std::string("is of no known format; known are ") + lyrvolume::kKnownFormats);
}

bool readAny(const std::string& path, std::shared_ptr<const LyrVolume>& out, ReadContext& context) {
    Draft draft;
    draft.description.source = path;
    std::error_code ignored;
    const bool folder = std::filesystem::is_directory(path, ignored);
    if (!(folder ? lyrvolume::readFolder(path, draft, context) : readFile(path, draft, context))) {
        return false;
    }
    std::shared_ptr<const LyrVolume> volume = LyrVolume::create(std::move(draft.description), std::move(draft.samples));
    if (!volume) {
        return context.fail(path, "size or spacing are impossible; the header is wrong");
    }
    if (!context.advance(1.0)) {
        return false;
    }
    out = std::move(volume);
    return true;
}

}  // namespace

bool LyrVolumeReader::read(const std::string& pathOrName, std::shared_ptr<const LyrVolume>& out, Report& report,
                           const Progress& progress) {
    report = Report();
    ReadContext context(report, progress);
    try {
        return std::string_view(pathOrName).substr(0, kBuiltin.size()) == kBuiltin
                   ? readBuiltin(pathOrName, out, context)
                   : readAny(pathOrName, out, context);
    } catch (const std::bad_alloc&) {
        return context.fail(pathOrName,
                            "there is not enough memory to read it; close other programs or take a part of it");
    } catch (const std::exception& problem) {
        return context.fail(pathOrName, std::string("cannot be read: ") + problem.what());
    } catch (...) {
        return context.fail(pathOrName, "cannot be read for an unknown reason");
    }
}
