#include "OstrelPlatform/Linux/Web/LazyRemoteReader.h"

#include "OstrelPlatform/Linux/ModuleLoader.h"
#include "OstrelPlatform/Linux/Web/RemoteModule.h"

#include <optional>
#include <string>
#include <utility>

namespace Ostrel {

namespace {

std::unique_ptr<RemoteReader> load(const std::string& file) {
    const auto make = ModuleLoader::function<MakeRemoteReader>(file, MakeRemoteReaderName);
    return std::unique_ptr<RemoteReader>(make ? make() : nullptr);
}

} // namespace

LazyRemoteReader::LazyRemoteReader(std::string moduleFile)
    : moduleFile_(std::move(moduleFile)) { }

LazyRemoteReader::~LazyRemoteReader() = default;

std::optional<std::string> LazyRemoteReader::read(const std::string& url) {
    if (!std::exchange(tried_, true))
        reader_ = load(moduleFile_.empty() ? ModuleLoader::installedFile(OSTREL_REMOTE_MODULE) : moduleFile_);
    return reader_ ? reader_->read(url) : std::nullopt;
}

} // namespace Ostrel
