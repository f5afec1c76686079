#pragma once

#include <span>
#include <string>

/** What the fuzzer feeds with bytes. Each target gives them to one reader of foreign input and checks what the reader
 * promises; a broken promise, a crash, a second of processor time or 512 MiB of memory is a finding. The same functions
 * replay the corpora in the ordinary test run. */
namespace fuzz {

using Bytes = std::span<const unsigned char>;

void dicomFrame(Bytes bytes);
void fontString(Bytes bytes);
void legendSettings(Bytes bytes);
void number(Bytes bytes);
void objectFile(Bytes bytes);
void placeholders(Bytes bytes);
void presetFile(Bytes bytes);
void presetNames(Bytes bytes);
void volumeDicom(Bytes bytes);
void volumeMetaImage(Bytes bytes);
void volumeNifti(Bytes bytes);
void volumeNrrd(Bytes bytes);
void volumeTiff(Bytes bytes);

struct Target {
    const char* name;  ///< also the folder of its corpus
    void (*run)(Bytes);
    int longest;  ///< bytes of an input, where the fuzzer is not told otherwise
};

std::span<const Target> targets();

/** Tells of a broken promise. Not defined here: the fuzzer ends with it, the replaying test fails. */
void broken(const char* promise);

inline void require(bool kept, const char* promise) {
    if (!kept) {
        broken(promise);
    }
}

inline std::string textOf(Bytes bytes) {
    return std::string(bytes.begin(), bytes.end());
}

}  // namespace fuzz
