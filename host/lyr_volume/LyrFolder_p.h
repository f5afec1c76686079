#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <lyr_volume/LyrReadContext_p.h>

namespace lyrvolume {

/** Reads the slices in a folder: a DICOM series or a stack of TIFF files. */
bool readFolder(const std::string& path, Draft& draft, ReadContext& context);

/** Whether one name comes before another when runs of digits count as numbers: "s9" before "s10". */
bool naturalLess(std::string_view a, std::string_view b);

}  // namespace lyrvolume
