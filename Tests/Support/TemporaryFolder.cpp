#include "Support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace Ostrel {

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "ostrel-test-XXXXXX").string();
    if (mkdtemp(pattern.data()))
        path_ = std::filesystem::canonical(pattern).string();
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::write(std::string_view relativePath, std::string_view bytes) const {
    const auto file = std::filesystem::path(path_) / relativePath;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return file.string();
}

} // namespace Ostrel
