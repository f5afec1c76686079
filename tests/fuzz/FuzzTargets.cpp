#include "fuzz/FuzzTargets.h"

namespace fuzz {

namespace {

constexpr Target TARGETS[] = {
    {"font_string", fontString},           {"legend_settings", legendSettings}, {"number", number},
    {"object_file", objectFile},           {"placeholders", placeholders},      {"volume_dicom", volumeDicom},
    {"volume_metaimage", volumeMetaImage}, {"volume_nifti", volumeNifti},       {"volume_nrrd", volumeNrrd},
    {"volume_tiff", volumeTiff},
};

}  // namespace

std::span<const Target> targets() {
    return TARGETS;
}

}  // namespace fuzz
