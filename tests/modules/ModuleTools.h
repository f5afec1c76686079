#pragma once

#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrModuleLoader.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/Lyrenum.h>
#include <lys_core/LyqApplication.h>

#include <QUndoStack>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/** Helpers of the tests of the module loader. */
namespace modules {

inline constexpr const char* COLORTABLE = "lys_colortable";

inline std::string fixture(const std::string& name) {
    return std::string(FIXTURE_FOLDER) + '/' + name + ".so";
}

/** Calls of the loader, with the message kept as text. */
struct Loader {
    std::string message;

    template <class Call>
    bool with(Call call) {
        LyrString text;
        const bool done = call(text);
        message = text.utf8();
        return done;
    }
    bool load(const std::string& path) {
        return with([&](LyrString& text) { return LyrModuleLoader::load(path, text); });
    }
    bool unload(const char* module = COLORTABLE) {
        return with([&](LyrString& text) { return LyrModuleLoader::unload(module, text); });
    }
    bool init(const char* module = COLORTABLE) {
        return with([&](LyrString& text) { return LyrModuleLoader::init(module, text); });
    }
    bool cleanup(const char* module = COLORTABLE) {
        return with([&](LyrString& text) { return LyrModuleLoader::cleanup(module, text); });
    }
};

/** The number of a name that a module registers. */
inline Lyrenum id(const char* name) {
    return Lyrenum(name, true);
}

inline LyrObjectRefPtr newTable() {
    return {"LyrColorLookupTable", Lyr::DocumentScope};
}

inline bool setParameters(const LyrObjectRefPtr& table, float from, float to, float step) {
    return lyrSetValue(table.get(), id("CreationParameters"), LyrVector3<float>{from, to, step});
}

inline std::vector<float> positionsOf(const LyrObjectRefPtr& table) {
    LyrValueArrayOPCache<float> cache;
    cache.load(table.get(), id("PositionList"));
    return cache.items();
}

/** A folder of its own, removed in the end; what code of a module would leave behind is looked for in it. */
class Folder {
public:
    Folder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "lys_modules_XXXXXX").string();
        mPath = mkdtemp(pattern.data());
        setenv("LYS_MODULE_MARKER", marker().c_str(), 1);
    }
    ~Folder() {
        unsetenv("LYS_MODULE_MARKER");
        std::error_code error;
        std::filesystem::remove_all(mPath, error);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string operator/(const std::string& name) const { return mPath + '/' + name; }
    std::string marker() const { return mPath + "/marker"; }
    bool codeRan() const { return std::filesystem::exists(marker()); }

    std::string write(const std::string& name, const std::string& bytes) const {
        std::ofstream(*this / name, std::ios::binary) << bytes;
        return *this / name;
    }

private:
    std::string mPath;
};

inline std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace modules
