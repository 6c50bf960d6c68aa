#include "OstrelEngine/Measures/Full/FullFolderInfoMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelDialect/PerlRegularExpression.h"
#include "OstrelPlatform/Clock.h"

#include <utility>

namespace Ostrel {

namespace {

/// Files whose names do not match do not count. A pattern that does not compile lets all through.
FolderContents filtered(const FolderRequest& request, const std::string& pattern) {
    auto asked = request;
    const auto expression = pattern.empty() ? std::nullopt : PerlRegularExpression::compile(pattern);
    asked.listsTree = expression && request.isRecursive;
    auto contents = scanFolder(asked);
    if (!expression)
        return contents;
    FolderContents result;
    result.folderCount = contents.folderCount;
    for (const auto& entry : contents.entries) {
        if (entry.isFolder || !expression->matches(entry.name))
            continue;
        result.fileCount += 1;
        result.size += entry.size;
    }
    return result;
}

} // namespace

FullFolderInfoMeasure::FullFolderInfoMeasure(const MeasureDefinition& definition, FullMeasureHost& host)
    : FullMeasure(definition, host)
    , registration_(*this, *this) { }

void FullFolderInfoMeasure::readOptions() {
    type_ = upperCased(trimmed(text("InfoType"_key)));
    folder_ = trimmed(text("Folder"_key));
    request_.path = folder_.starts_with('[') ? "" : host().folders().absolutePath(folder_);
    request_.includesHidden = isOn("IncludeHiddenFiles"_key, false);
    request_.isRecursive = isOn("IncludeSubFolders"_key, false);
    filter_ = text("RegExpFilter"_key);
    isReadable_ = !request_.path.empty() && mayRead(host(), request_.path);
    scannedAt_.reset();
}

void FullFolderInfoMeasure::update() {
    if (optionsDidChange())
        readOptions();
    const FullFolderInfoMeasure* source = this;
    if (folder_.starts_with('[') && folder_.ends_with(']')) {
        const auto* parent = ParentMeasures<FullFolderInfoMeasure>::find(
            host().measure(std::string_view(folder_).substr(1, folder_.size() - 2)));
        source = parent ? parent : this;
    } else if (isReadable_) {
        scan();
    }
    publishNumber(type_ == "FILECOUNT" ? source->contents_.fileCount
            : type_ == "FOLDERCOUNT"   ? source->contents_.folderCount
            : type_ == "FOLDERSIZE"    ? source->contents_.size
                                       : 0);
}

void FullFolderInfoMeasure::scan() {
    constexpr double Rest = 5;
    const double now = host().platform().clock.uptimeSeconds();
    if (task_.isRunning() || (scannedAt_ && now - *scannedAt_ < Rest))
        return;
    scannedAt_ = now;
    task_.start(
        host().platform(), [request = request_, pattern = filter_] { return filtered(request, pattern); },
        [this](FolderContents contents) {
            contents.entries.clear();
            contents_ = std::move(contents);
            host().valueDidArrive(*this);
        });
}

} // namespace Ostrel
