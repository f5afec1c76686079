#pragma once

#include <string>
#include <vector>

#include <lyr_volume/LyrReadContext_p.h>

namespace lyrvolume {

// One function for each format: checks the file, reads the first frame and describes it. False with a message in the
// context when the file is not what it should be.

bool readNrrd(const std::string& path, Draft& draft, ReadContext& context);
bool readMetaImage(const std::string& path, Draft& draft, ReadContext& context);
bool readNifti(const std::string& path, Draft& draft, ReadContext& context);

/** Slices from one file with a page for each, or from several files with one page each, in the order given. */
bool readTiff(const std::vector<std::string>& paths, Draft& draft, ReadContext& context);

/** The largest series among the files; `source` names the folder or file for messages. */
bool readDicom(const std::string& source, const std::vector<std::string>& paths, Draft& draft, ReadContext& context);

}  // namespace lyrvolume
