#include <lys_core/LyqPresetFolders.h>

#include <dlfcn.h>

#include <QDir>

#include <cstdlib>
#include <filesystem>
#include <system_error>

std::string LyqPresetFolders::user() {
    const char* variable = std::getenv("XDG_DATA_HOME");
    std::string data = variable && *variable == '/' ? variable : "";
    if (data.empty()) {
        const char* home = std::getenv("HOME");
        data = (home && *home == '/' ? std::string(home) : QDir::homePath().toStdString()) + "/.local/share";
    }
    return data + "/lys_colortable/presets";
}

std::string LyqPresetFolders::installed() {
    Dl_info self;
    if (dladdr(reinterpret_cast<const void*>(&LyqPresetFolders::installed), &self) == 0) {
        return {};
    }
    std::error_code error;
    const std::filesystem::path library = std::filesystem::absolute(self.dli_fname, error);
    return (library.parent_path() / "../share/lys/presets").lexically_normal().string();
}
