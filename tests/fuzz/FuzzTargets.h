#pragma once

#include <span>
#include <string>

/** What the fuzzer feeds with bytes. Each target gives them to one reader of foreign input and checks what the reader
 * promises; a broken promise, a crash, a second of processor time or 512 MiB of memory is a finding. The same functions
 * replay the corpora in the ordinary test run. */
namespace fuzz {

using Bytes = std::span<const unsigned char>;
/** Which of its readers took an input, one bit for each: a reader that refuses everything keeps its promises as well.
 */
using Accepted = unsigned;

Accepted dicomFrame(Bytes bytes);
Accepted fontString(Bytes bytes);
Accepted legendSettings(Bytes bytes);
Accepted number(Bytes bytes);
Accepted objectFile(Bytes bytes);
Accepted placeholders(Bytes bytes);
Accepted presetFile(Bytes bytes);
Accepted presetNames(Bytes bytes);
Accepted volumeDicom(Bytes bytes);
Accepted volumeMetaImage(Bytes bytes);
Accepted volumeNifti(Bytes bytes);
Accepted volumeNrrd(Bytes bytes);
Accepted volumeTiff(Bytes bytes);

struct Target {
    const char* name;  ///< also the folder of its corpus
    Accepted (*run)(Bytes);
    Accepted readers;  ///< all of them; the corpus has an input for each
    int longest;       ///< bytes of an input, where the fuzzer is not told otherwise
};

std::span<const Target> targets();

/** Tells of a broken promise. Not defined here: the fuzzer ends with it, the replaying test fails. */
void broken(const char* promise);

inline void require(bool kept, const char* promise) {
    if (!kept) {
        broken(promise);
    }
}

inline Accepted bitIf(bool taken, int reader) {
    return taken ? 1U << reader : 0U;
}

inline std::string textOf(Bytes bytes) {
    return std::string(bytes.begin(), bytes.end());
}

}  // namespace fuzz
