#include "ModuleTools.h"
#include "Process.h"

#include <lyr_core/LyrModule.h>

#include <sys/stat.h>

#include <elf.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>

using namespace modules;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

class LyrModuleFileTest : public testing::Test {
protected:
    /** The file must not load: a message that names it, and no code of it has run. */
    void expectRefused(const std::string& path, const std::string& reason = "") {
        EXPECT_FALSE(loader.load(path)) << path;
        EXPECT_THAT(loader.message, AllOf(StartsWith("Cannot load module " + path + ": "), HasSubstr(reason)));
        EXPECT_FALSE(folder.codeRan()) << loader.message;
        EXPECT_FALSE(process::maps(path));
        EXPECT_TRUE(LyrModuleLoader::getLoadedModules().isEmpty());
    }
    void expectRefusedBytes(const std::string& bytes, const std::string& reason = "") {
        // A new file each time: overwriting one waits for the disk.
        const std::string path = folder.write(std::to_string(++files) + ".so", bytes);
        expectRefused(path, reason);
        std::filesystem::remove(path);
    }

    Folder folder;
    Loader loader;
    int files = 0;
};

template <class T>
void put(std::string& bytes, std::size_t offset, T value) {
    std::memcpy(bytes.data() + offset, &value, sizeof(value));
}

}  // namespace

TEST_F(LyrModuleFileTest, a_good_module_of_another_maker_loads_sealed_or_not) {
    for (const char* name : {"good", "sealed"}) {
        std::filesystem::remove(folder.marker());
        ASSERT_TRUE(loader.load(fixture(name))) << loader.message;
        EXPECT_TRUE(folder.codeRan()) << "otherwise the marker shows nothing in the other cases";
        EXPECT_TRUE(loader.unload((std::string("test_") + name).c_str())) << loader.message;
    }
}

TEST_F(LyrModuleFileTest, the_name_of_a_module_can_be_read_without_loading_it) {
    LyrString message;
    EXPECT_STREQ(LyrModuleLoader::readName(fixture("good"), message).utf8(), "test_good");
    EXPECT_STREQ(LyrModuleLoader::readName(COLORTABLE_MODULE, message).utf8(), "lys_colortable");
    EXPECT_FALSE(folder.codeRan());
    EXPECT_TRUE(LyrModuleLoader::readName(fixture("no_note"), message).isNull());
    EXPECT_THAT(message.utf8(), HasSubstr("no module note"));
}

TEST_F(LyrModuleFileTest, what_is_no_library_is_refused) {
    expectRefusedBytes("", "no ELF file");
    expectRefusedBytes("\177", "no ELF file");
    expectRefusedBytes("\177ELF", "no ELF file");
    expectRefusedBytes("This is a text and no library.\n", "no ELF file");
    expectRefusedBytes(std::string(100000, '\0'), "no ELF file");
    expectRefused(folder / "nothing.so", "it is not there");
    expectRefused(std::filesystem::temp_directory_path(), "it is no file");
    expectRefused("/dev/zero", "it is no file");
    ASSERT_EQ(mkfifo((folder / "pipe.so").c_str(), 0600), 0);
    expectRefused(folder / "pipe.so", "it is no file");
    EXPECT_FALSE(loader.load(std::filesystem::canonical("/proc/self/exe"))) << "a program is no module";
}

TEST_F(LyrModuleFileTest, a_huge_file_that_is_no_library_is_not_read) {
    const std::string path = folder.write("huge.so", "no library");
    std::filesystem::resize_file(path, 1000u << 20);
    const long long before = process::residentBytes();
    expectRefused(path, "no ELF file");
    EXPECT_LT(process::residentBytes() - before, 100 << 20);
    std::filesystem::resize_file(path, 3000ull << 20);
    expectRefused(path, "too large");
}

TEST_F(LyrModuleFileTest, only_absolute_paths_are_taken_never_the_working_directory) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(FIXTURE_FOLDER);
    for (const char* path : {"good.so", "./good.so", "../modules/good.so", "", "test_good"}) {
        EXPECT_FALSE(loader.load(path));
        EXPECT_THAT(loader.message, HasSubstr("not absolute"));
    }
    std::filesystem::current_path(before);
    EXPECT_FALSE(folder.codeRan());
}

TEST_F(LyrModuleFileTest, a_file_that_was_cut_off_is_refused_at_every_length) {
    for (const std::string& original : {fixture("sealed"), fixture("good")}) {
        const std::string whole = readFile(original);
        ASSERT_GT(whole.size(), 4096u);
        for (std::size_t length = 0; length < whole.size() && !HasFailure(); length += length < 256 ? 1 : 101) {
            expectRefusedBytes(whole.substr(0, length));
        }
        expectRefusedBytes(whole.substr(0, whole.size() - 1));
    }
    const std::string sealed = readFile(fixture("sealed"));
    expectRefusedBytes(sealed + '\0', "changed");
    expectRefusedBytes(sealed + sealed, "changed");
}

TEST_F(LyrModuleFileTest, a_sealed_file_with_a_changed_byte_anywhere_is_refused) {
    std::string bytes = readFile(fixture("sealed"));
    const int flips[] = {0x01, 0x80, 0xff, 0x10};
    std::size_t next = 0;
    for (std::size_t at = 0; at < bytes.size() && !HasFailure(); at += at < 512 ? 1 : 23) {
        SCOPED_TRACE("byte " + std::to_string(at));
        const char before = bytes[at];
        bytes[at] = static_cast<char>(before ^ flips[next++ % 4]);
        expectRefusedBytes(bytes);
        bytes[at] = before;
    }
    // Two changes that undo each other in a plain sum or xor.
    std::swap(bytes[bytes.size() / 2], bytes[bytes.size() / 2 + 8]);
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 0x80);
    bytes[bytes.size() / 2 + 8] = static_cast<char>(bytes[bytes.size() / 2 + 8] ^ 0x80);
    expectRefusedBytes(bytes, "changed");
}

TEST_F(LyrModuleFileTest, the_tables_module_is_sealed) {
    std::string bytes = readFile(COLORTABLE_MODULE);
    expectRefusedBytes(bytes + '\0', "changed");
    for (std::size_t at = 100; at < bytes.size() && !HasFailure(); at += bytes.size() / 50) {
        const char before = bytes[at];
        bytes[at] = static_cast<char>(before ^ 0x10);
        expectRefusedBytes(bytes);
        bytes[at] = before;
    }
}

TEST_F(LyrModuleFileTest, a_damaged_file_without_a_seal_never_crashes_the_check) {
    const std::string original = readFile(fixture("good"));
    unsigned state = 12345;
    const auto random = [&](std::size_t count) {
        state = state * 1664525u + 1013904223u;
        return static_cast<std::size_t>(state >> 8) % count;
    };
    LyrString message;
    for (int i = 0; i < 1000; ++i) {
        std::string bytes = original;
        // The headers, and the section table at the end: what the check itself reads.
        for (int changes = 0; changes < 3; ++changes) {
            const std::size_t at = random(3) == 0 ? random(64) : bytes.size() - 1 - random(64 * 30);
            bytes[at] = static_cast<char>(random(4) == 0 ? 0xff : random(256));
        }
        // Only looked at: what an unsealed file does once it is loaded is its own affair.
        const std::string path = folder.write(std::to_string(i) + ".so", bytes);
        const LyrString name = LyrModuleLoader::readName(path, message);
        EXPECT_TRUE(!name.isNull() || !message.isEmpty());
        std::filesystem::remove(path);
    }
    EXPECT_FALSE(folder.codeRan());
}

TEST_F(LyrModuleFileTest, libraries_for_other_machines_are_refused) {
    const std::string original = readFile(fixture("good"));
    std::string bytes = original;
    put<unsigned char>(bytes, EI_CLASS, ELFCLASS32);
    expectRefusedBytes(bytes, "another kind of machine");
    bytes = original;
    put<unsigned char>(bytes, EI_DATA, ELFDATA2MSB);
    expectRefusedBytes(bytes, "another kind of machine");
    for (const int machine : {EM_386, EM_ARM, EM_RISCV, EM_PPC64, EM_NONE}) {
        bytes = original;
        put(bytes, offsetof(Elf64_Ehdr, e_machine), static_cast<Elf64_Half>(machine));
        expectRefusedBytes(bytes, "another kind of machine");
    }
    for (const int type : {ET_REL, ET_EXEC, ET_CORE}) {
        bytes = original;
        put(bytes, offsetof(Elf64_Ehdr, e_type), static_cast<Elf64_Half>(type));
        expectRefusedBytes(bytes, "no shared library");
    }
}

TEST_F(LyrModuleFileTest, a_library_without_a_module_note_is_refused) {
    expectRefused(fixture("no_note"), "no module note");
}

TEST_F(LyrModuleFileTest, a_module_of_another_binary_interface_is_refused) {
    expectRefused(fixture("other_abi"), "another version of this application");
}

TEST_F(LyrModuleFileTest, a_module_that_lacks_a_symbol_is_refused_and_the_message_names_it) {
    expectRefused(fixture("missing_symbol"), "lyr_test_symbol_that_nobody_has");
}

TEST_F(LyrModuleFileTest, a_module_whose_entry_does_not_fit_its_note_is_refused) {
    expectRefused(fixture("other_entry"), "entry");
    expectRefused(fixture("no_entry"), "entry");
    expectRefused(fixture("empty_entry"), "entry");
}

TEST_F(LyrModuleFileTest, a_module_that_is_not_ready_is_refused_and_taken_out_again) {
    expectRefused(fixture("not_ready"), "could not register");
}

TEST_F(LyrModuleFileTest, a_nameless_note_is_refused) {
    std::string bytes = readFile(fixture("good"));
    // The name behind the note's head, not the texts of the entry.
    const std::string head("LYS\0", 4);
    std::size_t note = bytes.find(head);
    while (note != std::string::npos && bytes.compare(note + 20, 9, "test_good") != 0) {
        note = bytes.find(head, note + 1);
    }
    ASSERT_NE(note, std::string::npos);
    bytes.replace(note + 20, 9, 9, '\0');
    expectRefusedBytes(bytes, "names no module");
}
