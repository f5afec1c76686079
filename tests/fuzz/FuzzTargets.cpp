#include "fuzz/FuzzTargets.h"

namespace fuzz {

namespace {

constexpr Target TARGETS[] = {
    {"dicom_frame", dicomFrame, 512},         {"font_string", fontString, 128},
    {"legend_settings", legendSettings, 512}, {"number", number, 128},
    {"object_file", objectFile, 2048},        {"placeholders", placeholders, 256},
    {"preset_file", presetFile, 1024},        {"preset_names", presetNames, 512},
    {"volume_dicom", volumeDicom, 1024},      {"volume_metaimage", volumeMetaImage, 512},
    {"volume_nifti", volumeNifti, 1024},      {"volume_nrrd", volumeNrrd, 512},
    {"volume_tiff", volumeTiff, 512},
};

}  // namespace

std::span<const Target> targets() {
    return TARGETS;
}

}  // namespace fuzz
