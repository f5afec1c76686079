#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrObjectPtr.h>

#include <dlfcn.h>

#include <cstdio>

namespace {

bool tableCanBeMade() {
    const LyrObjectRefPtr object("LyrColorLookupTable", 1);
    return object.get() != nullptr;
}

}  // namespace

int main() {
    const char* path = LYS_MODULE_DIRECTORY "/liblys_colortable.so";
    void* module = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
        std::printf("cannot load the module: %s\n", dlerror());
        return 1;
    }
    if (!tableCanBeMade()) {
        std::puts("the loaded module's class cannot be made by its name");
        return 1;
    }
    if (dlclose(module) != 0 || dlopen(path, RTLD_NOW | RTLD_NOLOAD) != nullptr) {
        std::puts("the module is still there after it was unloaded");
        return 1;
    }
    return 0;
}
