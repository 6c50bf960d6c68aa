#include "OstrelEngine/Measures/Full/FullQuoteMeasure.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Measures/Full/FolderScan.h"
#include "OstrelPlatform/Clock.h"

#include <algorithm>
#include <bit>
#include <filesystem>
#include <system_error>
#include <utility>

namespace Ostrel {

namespace {

constexpr std::size_t MaximumPieces = 20000;
constexpr std::size_t LongestFile = 8 << 20;

std::vector<std::string> piecesOf(std::string text, const std::string& separator) {
    std::vector<std::string> pieces;
    text = replacingOccurrences(text, "\r\n", "\n");
    std::string_view rest = text;
    while (!rest.empty() && pieces.size() < MaximumPieces) {
        const auto end = rest.find(separator);
        const auto piece = trimmed(rest.substr(0, end));
        if (!piece.empty())
            pieces.emplace_back(piece);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + separator.size());
    }
    return pieces;
}

std::vector<std::string> filesOf(const std::string& folder, bool isRecursive, const std::vector<std::string>& filters) {
    std::vector<std::string> paths;
    for (const auto& entry : scanFolder({folder, false, false, isRecursive}).entries) {
        const auto fits = [&](const std::string& filter) { return fitsWildcard(entry.name, filter); };
        if (!entry.isFolder && std::ranges::any_of(filters, fits))
            paths.push_back(entry.path);
    }
    std::ranges::sort(paths);
    return paths;
}

} // namespace

FullQuoteMeasure::FullQuoteMeasure(const MeasureDefinition& definition, FullMeasureHost& host)
    : FullMeasure(definition, host)
    , random_(std::bit_cast<std::uint64_t>(host.platform().clock.wallSeconds())
          ^ CaseFolding::hash(definition.sectionName)) { }

void FullQuoteMeasure::update() {
    constexpr double Rest = 5;
    if (optionsDidChange()) {
        path_ = host().folders().absolutePath(trimmed(text("PathName"_key)));
        if (!mayRead(host(), path_))
            path_.clear();
        readAt_.reset();
    }
    const double now = host().platform().clock.uptimeSeconds();
    if (!path_.empty() && !task_.isRunning() && (!readAt_ || now - *readAt_ >= Rest)) {
        readAt_ = now;
        readPieces();
    }
    pick();
}

void FullQuoteMeasure::pick() {
    if (pieces_.empty())
        return publishText("", 0);
    auto pick = random_.below(pieces_.size());
    // No piece twice in a row.
    if (pick == shown_ && pieces_.size() > 1)
        pick = (pick + 1 + random_.below(pieces_.size() - 1)) % pieces_.size();
    shown_ = pick;
    const auto& piece = pieces_[pick];
    publishText(piece, parseDouble(piece).value_or(0));
}

void FullQuoteMeasure::readPieces() {
    const auto written = text("Separator"_key);
    const auto separator = written.empty() ? std::string("\n") : std::string(written);
    std::vector<std::string> filters;
    for (const auto filter : splitDroppingEmpty(text("FileFilter"_key, "*.jpg;*.png"), ';'))
        filters.emplace_back(trimmed(filter));
    const bool isRecursive = isOn("Subfolders"_key, true);
    task_.start(
        host().platform(),
        [path = path_, separator, filters, isRecursive]() -> std::vector<std::string> {
            std::error_code error;
            if (std::filesystem::is_directory(path, error))
                return filesOf(path, isRecursive, filters);
            if (!std::filesystem::is_regular_file(path, error) || std::filesystem::file_size(path, error) > LongestFile)
                return {};
            return piecesOf(DiskFileProvider().contentsOfFile(path).value_or(""), separator);
        },
        [this](std::vector<std::string> pieces) {
            const bool isFirst = pieces_.empty();
            if (pieces != pieces_)
                shown_.reset();
            pieces_ = std::move(pieces);
            if (!isFirst || pieces_.empty())
                return;
            pick();
            host().valueDidArrive(*this);
        });
}

} // namespace Ostrel
