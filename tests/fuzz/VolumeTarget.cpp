#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <lyr_volume/LyrVolumeReader.h>

#include "fuzz/FuzzTargets.h"

namespace {

/** A folder in memory where there is one, with data that detached headers may name. */
class Folder {
public:
    Folder() {
        std::error_code ignored;
        const bool shared = std::filesystem::is_directory("/dev/shm", ignored);
        std::string pattern =
            (shared ? "/dev/shm" : std::filesystem::temp_directory_path().string()) + "/lys_fuzz_XXXXXX";
        const char* made = ::mkdtemp(pattern.data());
        mPath = made ? made : ".";
        for (const char* name : {"/data.raw", "/data1.raw", "/data2.raw"}) {
            std::ofstream(mPath + name) << std::string(64, '\1');
        }
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string write(const char* name, fuzz::Bytes bytes) const {
        const std::string path = mPath + '/' + name;
        const int file = ::open(path.c_str(), O_CREAT | O_WRONLY | O_TRUNC | O_CLOEXEC, 0600);
        const bool whole = ::write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
        ::close(file);
        fuzz::require(whole, "the input could be written to a file");
        return path;
    }

private:
    std::string mPath;
};

/** Reads the bytes as a file of this name: its ending decides where the content does not. */
fuzz::Accepted readVolume(const char* name, fuzz::Bytes bytes) {
    static const Folder folder;
    std::shared_ptr<const LyrVolume> volume;
    LyrVolumeReader::Report report;
    const bool read = LyrVolumeReader::read(folder.write(name, bytes), volume, report);
    fuzz::require(read == bool(volume), "there is a volume exactly when the file was read");
    fuzz::require(read == report.error.empty(), "a refusal has a message");
    if (read) {
        const LyrVolume::Size& size = volume->size();
        const std::size_t count =
            static_cast<std::size_t>(size[0]) * static_cast<std::size_t>(size[1]) * static_cast<std::size_t>(size[2]);
        fuzz::require(volume->samples().size() == count, "a volume has a sample for each voxel");
    }
    return fuzz::bitIf(read, 0);
}

}  // namespace

fuzz::Accepted fuzz::volumeDicom(Bytes bytes) {
    return readVolume("input.dcm", bytes);
}
fuzz::Accepted fuzz::volumeMetaImage(Bytes bytes) {
    return readVolume("input.mhd", bytes);
}
fuzz::Accepted fuzz::volumeNifti(Bytes bytes) {
    return readVolume("input.nii", bytes);
}
fuzz::Accepted fuzz::volumeNrrd(Bytes bytes) {
    return readVolume("input.nhdr", bytes);
}
fuzz::Accepted fuzz::volumeTiff(Bytes bytes) {
    return readVolume("input.tif", bytes);
}
