#include <lyr_core/LyrModule.h>
#include <lyr_core/LyrModuleFile_p.h>

#include <elf.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace {

/** No module comes near this; a file that does is none. */
constexpr std::size_t LARGEST_FILE = std::size_t(1) << 30;

#if defined(__x86_64__)
constexpr unsigned THIS_MACHINE = EM_X86_64;
#elif defined(__aarch64__)
constexpr unsigned THIS_MACHINE = EM_AARCH64;
#else
#error "name the ELF machine number of this processor here"
#endif

class ElfReader {
public:
    explicit ElfReader(const std::vector<unsigned char>& bytes) : mBytes(bytes) {}

    template <class T>
    bool read(std::uint64_t offset, T& out) const {
        if (!holds(offset, sizeof(T))) {
            return false;
        }
        std::memcpy(&out, mBytes.data() + offset, sizeof(T));
        return true;
    }

    bool holds(std::uint64_t offset, std::uint64_t size) const {
        return offset <= mBytes.size() && size <= mBytes.size() - offset;
    }

    bool isLibraryOfThisMachine(std::string& reason) {
        if (!read(0, mHeader) || std::memcmp(mHeader.e_ident, ELFMAG, SELFMAG) != 0) {
            reason = "it is no ELF file";
        } else if (mHeader.e_ident[EI_CLASS] != ELFCLASS64 || mHeader.e_ident[EI_DATA] != ELFDATA2LSB ||
                   mHeader.e_machine != THIS_MACHINE) {
            reason = "it was built for another kind of machine";
        } else if (mHeader.e_type != ET_DYN || mHeader.e_phentsize != sizeof(Elf64_Phdr) ||
                   mHeader.e_shentsize != sizeof(Elf64_Shdr)) {
            reason = "it is no shared library";
        } else {
            return true;
        }
        return false;
    }

    /** Every segment and section that the loader would map lies in the file. */
    bool isWhole() const {
        for (unsigned i = 0; i < mHeader.e_phnum; ++i) {
            Elf64_Phdr segment;
            if (!read(mHeader.e_phoff + i * sizeof(segment), segment) || !holds(segment.p_offset, segment.p_filesz)) {
                return false;
            }
        }
        for (unsigned i = 0; i < mHeader.e_shnum; ++i) {
            Elf64_Shdr section;
            if (!sectionAt(i, section) ||
                (section.sh_type != SHT_NOBITS && !holds(section.sh_offset, section.sh_size))) {
                return false;
            }
        }
        return mHeader.e_phnum > 0 && mHeader.e_shnum > 0;
    }

    bool findNote(std::size_t& offset, LyrModuleNote& note) const {
        for (unsigned i = 0; i < mHeader.e_shnum; ++i) {
            Elf64_Shdr section;
            const bool fits = sectionAt(i, section) && section.sh_type == SHT_NOTE && section.sh_size >= sizeof(note) &&
                              read(section.sh_offset, note);
            if (fits && note.type == 1 && note.ownerSize == 4 && std::memcmp(note.owner, "LYS", 4) == 0) {
                offset = section.sh_offset;
                return note.descriptionSize == sizeof(note) - offsetof(LyrModuleNote, abi);
            }
        }
        return false;
    }

private:
    bool sectionAt(unsigned index, Elf64_Shdr& out) const {
        return read(mHeader.e_shoff + index * sizeof(Elf64_Shdr), out);
    }

    const std::vector<unsigned char>& mBytes;
    Elf64_Ehdr mHeader{};
};

/** The bytes of a file that begins like an ELF file; of another one only these first bytes are read. */
bool readBytes(const std::string& path, std::vector<unsigned char>& bytes, std::string& reason) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::is_regular_file(status)) {
        reason = std::filesystem::exists(status) ? "it is no file" : "it is not there";
        return false;
    }
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error || size > LARGEST_FILE) {
        reason = error ? "its size cannot be found out: " + error.message() : "it is too large for a module";
        return false;
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        reason = "it cannot be read: " + std::generic_category().message(errno);
        return false;
    }
    bytes.resize(std::min<std::size_t>(static_cast<std::size_t>(size), SELFMAG));
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file || bytes.size() < SELFMAG || std::memcmp(bytes.data(), ELFMAG, SELFMAG) != 0) {
        return true;
    }
    bytes.resize(static_cast<std::size_t>(size));
    if (!file.read(reinterpret_cast<char*>(bytes.data() + SELFMAG), static_cast<std::streamsize>(size - SELFMAG))) {
        reason = "it cannot be read to its end";
        return false;
    }
    return true;
}

}  // namespace

bool LyrModuleFile::read(const std::string& path, std::string& reason) {
    if (!readBytes(path, bytes, reason)) {
        return false;
    }
    ElfReader reader(bytes);
    if (!reader.isLibraryOfThisMachine(reason)) {
        return false;
    }
    if (!reader.isWhole()) {
        reason = "it is cut off or damaged";
        return false;
    }
    LyrModuleNote note;
    if (!reader.findNote(noteOffset, note)) {
        reason = "it carries no module note";
        return false;
    }
    note.name[sizeof(note.name) - 1] = '\0';
    name = note.name;
    seal = note.seal;
    return true;
}

std::uint32_t LyrModuleFile::abi() const {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes.data() + noteOffset + offsetof(LyrModuleNote, abi), sizeof(word));
    return word;
}

// Over words of 64 bits, short ones filled up with zeros: xor, multiply by an odd number (the prime of FNV-1a), fold
// the high bits down. Each step can be undone, so a change of one word always changes the result; it is a guard against
// damage, not against forgery.
std::uint64_t LyrModuleFile::computeSeal() const {
    const std::size_t sealBegin = noteOffset + offsetof(LyrModuleNote, seal);
    std::uint64_t hash = 0xcbf29ce484222325u ^ bytes.size();
    std::size_t at = 0;
    const auto add = [&](std::size_t count) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + at, count);
        hash = (hash ^ word) * 0x100000001b3u;
        hash ^= hash >> 29;
        at += count;
    };
    const auto addUpTo = [&](std::size_t end) {
        while (at < end) {
            add(std::min(sizeof(std::uint64_t), end - at));
        }
    };
    addUpTo(sealBegin);
    at += sizeof(std::uint64_t);
    addUpTo(bytes.size());
    return hash ? hash : 1;
}
