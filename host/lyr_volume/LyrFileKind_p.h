#pragma once

#include <string>

#include <lyr_volume/LyrReadContext_p.h>

namespace lyrvolume {

enum class FileKind { Unknown, Nrrd, MetaImage, Nifti, Tiff, Dicom };

constexpr const char* kKnownFormats =
    "NRRD (.nrrd, .nhdr), MetaImage (.mha, .mhd), NIfTI (.nii, .nii.gz), TIFF (.tif, .tiff or a folder of them), DICOM "
    "(a folder or .dcm) and builtin:casting";

/** What a file is by its content, or else by the ending of its name, so that a damaged file of a known kind is told
 * apart from one of another kind. False with a message when it cannot be opened or is empty. */
bool fileKind(const std::string& path, FileKind& kind, ReadContext& context);

/** What a file is by its first bytes alone; Unknown also when it cannot be read. */
FileKind contentKind(const std::string& path);

}  // namespace lyrvolume
