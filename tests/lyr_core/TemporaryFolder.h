#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

/** A folder of its own for one test, gone with all its content in the end. */
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "lyr_test_XXXXXX").string();
        const char* made = ::mkdtemp(pattern.data());
        mPath = made ? made : "";
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return mPath; }
    std::string file(const std::string& name) const { return mPath + '/' + name; }

    void write(const std::string& name, const std::string& content) const {
        std::ofstream(file(name), std::ios::binary) << content;
    }
    /** The content of a file, "(none)" if there is none. */
    std::string read(const std::string& name) const {
        std::ifstream stream(file(name), std::ios::binary);
        if (!stream) {
            return "(none)";
        }
        return std::string(std::istreambuf_iterator<char>(stream), {});
    }
    std::set<std::string> names() const {
        std::set<std::string> result;
        for (const auto& entry : std::filesystem::directory_iterator(mPath)) {
            result.insert(entry.path().filename().string());
        }
        return result;
    }

private:
    std::string mPath;
};
