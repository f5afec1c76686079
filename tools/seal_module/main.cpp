#include <lyr_core/LyrModule.h>
#include <lyr_core/LyrModuleFile_p.h>

#include <cstddef>
#include <cstdio>
#include <fstream>

/** seal_module FILE: computes the checksum of a module file and writes it into the file's note. */
int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: lys_seal_module FILE\n", stderr);
        return 2;
    }
    LyrModuleFile module;
    std::string reason;
    if (!module.read(argv[1], reason)) {
        std::fprintf(stderr, "%s cannot be sealed: %s\n", argv[1], reason.c_str());
        return 1;
    }
    const std::uint64_t seal = module.computeSeal();
    std::fstream file(argv[1], std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(static_cast<std::streamoff>(module.noteOffset + offsetof(LyrModuleNote, seal)));
    file.write(reinterpret_cast<const char*>(&seal), sizeof(seal));
    file.close();
    if (!file) {
        std::fprintf(stderr, "%s cannot be written\n", argv[1]);
        return 1;
    }
    return 0;
}
