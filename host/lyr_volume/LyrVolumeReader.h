#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <lyr_volume/LyrVolume.h>
#include <lyr_volume/LyrVolumeExport.h>

/** Opens volumes: files, folders of slices and the built-in casting.
 *
 *  - NRRD: `.nrrd`, and `.nhdr` with its data beside it (one file, a list or a numbered row of files); raw, gzip, text
 *    and hex encoding
 *  - MetaImage: `.mha`, and `.mhd` with its data beside it; raw, zlib and text
 *  - NIfTI 1 and 2: `.nii`, `.nii.gz`, and `.hdr` with `.img` or `.img.gz`
 *  - TIFF: a file with one page for each slice, or a folder of slice files in the natural order of their names
 *  - DICOM: a folder with a series (the largest, if there are several), or one file with one or more frames
 *  - `builtin:casting`, `builtin:casting@N`: LyrCasting with its default edge length, or N voxels
 *
 *  What a file is follows from its content first and its name second. Lengths are checked before anything is taken for
 *  granted: a file that is cut off, or whose header claims more than is there, is refused before memory is taken for
 * it. Compressed data are read to their end, checksum included. Distances are brought to mm where the file states a
 * known unit; formats whose convention is mm are taken at their word. Of a file with several frames the first is taken.
 *  Files with several values for each sample (colour, vectors, complex numbers) are refused.
 */
class LYR_VOLUME_EXPORT LyrVolumeReader {
public:
    /** What happened. */
    struct Report {
        std::string error;                  ///< what, where and what to do about it; empty when the volume was read
        std::vector<std::string> warnings;  ///< what was read differently than one might expect, with its place
        bool cancelled = false;             ///< the progress function asked to stop; `error` says so too
    };

    /** Called now and then with the part that is done, 0 to 1, on the calling thread; returning false cancels. */
    using Progress = std::function<bool(double)>;

    /** Reads the volume at a path, or the built-in one of that name. False, with `out` untouched and `report.error`
     * set, when it cannot be read or the reading was cancelled; `report` is emptied first. Throws nothing. May be
     * called from any thread, and from several at once. */
    static bool read(const std::string& pathOrName, std::shared_ptr<const LyrVolume>& out, Report& report,
                     const Progress& progress = {});
};
