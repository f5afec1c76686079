#pragma once

#include <span>
#include <string>
#include <vector>

#include <lyr_volume/LyrDicomSlice_p.h>

namespace lyrvolume {

/** Undoes the run-length encoding of DICOM (PS3.5, annex G). The bytes of a sample come out least significant first.
 *  False when the data do not give exactly the frame's bytes. */
bool decodeRunLength(std::span<const unsigned char> data, const DicomPixelLayout& layout,
                     std::vector<unsigned char>& out);

/** Why a JPEG or JPEG 2000 codestream is not what the file states (size, one component, bits) or is cut off; empty when
 *  it is fine. Codecs must not be trusted with streams that contradict the header around them. */
std::string codestreamProblem(std::span<const unsigned char> data, const DicomPixelLayout& layout,
                              const std::string& transferSyntax);

}  // namespace lyrvolume
