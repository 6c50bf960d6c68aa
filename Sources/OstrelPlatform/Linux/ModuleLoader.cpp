#include "OstrelPlatform/Linux/ModuleLoader.h"

#include <dlfcn.h>

#include <filesystem>

namespace Ostrel::ModuleLoader {

namespace fs = std::filesystem;

/// In the library folder of the program's prefix, else where a build leaves it.
std::string installedFile(const std::string& name) {
    std::error_code failed;
    const auto folder = fs::read_symlink("/proc/self/exe", failed).parent_path();
    const auto installed = folder / "../lib/ostrel" / name;
    return fs::exists(installed, failed) ? installed : folder / "../OstrelPlatform/Linux" / name;
}

void* address(const std::string& file, const char* symbol) {
    void* module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    return module ? dlsym(module, symbol) : nullptr;
}

} // namespace Ostrel::ModuleLoader
