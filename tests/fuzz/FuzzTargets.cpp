#include "fuzz/FuzzTargets.h"

namespace fuzz {

namespace {

constexpr Target TARGETS[] = {
    {"dicom_frame", dicomFrame, 0b111, 512},       {"font_string", fontString, 0b1, 128},
    {"legend_settings", legendSettings, 0b1, 512}, {"number", number, 0b1111, 128},
    {"object_file", objectFile, 0b11, 2048},       {"placeholders", placeholders, 0b111, 256},
    {"preset_file", presetFile, 0b11, 1024},       {"preset_names", presetNames, 0b11, 512},
    {"volume_dicom", volumeDicom, 0b1, 1024},      {"volume_metaimage", volumeMetaImage, 0b1, 512},
    {"volume_nifti", volumeNifti, 0b1, 1024},      {"volume_nrrd", volumeNrrd, 0b1, 512},
    {"volume_tiff", volumeTiff, 0b1, 512},
};

}  // namespace

std::span<const Target> targets() {
    return TARGETS;
}

}  // namespace fuzz
