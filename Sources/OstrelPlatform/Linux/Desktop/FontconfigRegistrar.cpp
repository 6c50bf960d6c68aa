#include "OstrelPlatform/Linux/Desktop/FontconfigRegistrar.h"

#include <fontconfig/fontconfig.h>

#include <filesystem>
#include <string>

namespace Ostrel {

namespace {

// A skin's font is read into memory whole where it is used.
constexpr std::uintmax_t LargestFontBytes = 64u << 20;

} // namespace

void FontconfigRegistrar::registerFontFile(const std::string& path) {
    // A pipe or a device named like a font would be read without end.
    std::error_code failed;
    if (!std::filesystem::is_regular_file(path, failed))
        return;
    if (const auto bytes = std::filesystem::file_size(path, failed); failed || bytes > LargestFontBytes)
        return;
    FcConfigAppFontAddFile(nullptr, reinterpret_cast<const FcChar8*>(path.c_str()));
}

} // namespace Ostrel
