#include "OstrelEngine/Measures/Full/FullFileViewMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Measures/Full/TimeLocale.h"
#include "OstrelEngine/Measures/Full/WallTime.h"
#include "OstrelPlatform/Workspace.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Ostrel {

namespace {

/// In the order of the types.
constexpr std::string_view TypeNames[] = {"FOLDERPATH", "FOLDERSIZE", "FILECOUNT", "FOLDERCOUNT", "FILENAME",
    "FILETYPE", "FILESIZE", "FILEDATE", "FILEPATH", "PATHTOFILE", "ICON"};

enum class SortKey { Name, Size, Type, Date };
enum class DateKey { Modified, Created, Accessed };

/// What of a folder is listed, and in which order.
struct Rules {
    bool showsDotDot = true;
    bool showsFolders = true;
    bool showsFiles = true;
    std::vector<std::string> extensions;
    std::string wildcard = "*";
    SortKey sort = SortKey::Name;
    DateKey date = DateKey::Modified;
    bool isAscending = true;
};

std::string_view extensionOf(std::string_view name) {
    const auto dot = name.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? std::string_view() : name.substr(dot + 1);
}

DateKey dateKey(std::string_view word) {
    return equalsIgnoringCase(word, "CREATED") ? DateKey::Created
        : equalsIgnoringCase(word, "ACCESSED") ? DateKey::Accessed
                                               : DateKey::Modified;
}

std::int64_t dateOf(const FolderEntry& entry, DateKey key) {
    return key == DateKey::Created ? entry.created : key == DateKey::Accessed ? entry.accessed : entry.modified;
}

bool isListed(const FolderEntry& entry, const Rules& rules) {
    if (entry.isFolder)
        return rules.showsFolders;
    const auto fits = [extension = extensionOf(entry.name)](
                          const std::string& wanted) { return equalsIgnoringCase(wanted, extension); };
    return rules.showsFiles && fitsWildcard(entry.name, rules.wildcard)
        && (rules.extensions.empty() || std::ranges::any_of(rules.extensions, fits));
}

void sort(std::vector<FolderEntry>& entries, const Rules& rules) {
    struct Keyed {
        std::string name;
        std::string type;
        FolderEntry entry;
    };
    std::vector<Keyed> keyed;
    for (auto& entry : entries)
        keyed.push_back({upperCased(entry.name), upperCased(extensionOf(entry.name)), std::move(entry)});
    const auto isLess = [&rules](const Keyed& a, const Keyed& b) {
        switch (rules.sort) {
        case SortKey::Size:
            if (a.entry.size != b.entry.size)
                return a.entry.size < b.entry.size;
            break;
        case SortKey::Type:
            if (a.type != b.type)
                return a.type < b.type;
            break;
        case SortKey::Date:
            if (dateOf(a.entry, rules.date) != dateOf(b.entry, rules.date))
                return dateOf(a.entry, rules.date) < dateOf(b.entry, rules.date);
            break;
        case SortKey::Name:
            break;
        }
        return a.name < b.name;
    };
    std::ranges::stable_sort(keyed, [&](const Keyed& a, const Keyed& b) {
        if (a.entry.isFolder != b.entry.isFolder)
            return a.entry.isFolder;
        return rules.isAscending ? isLess(a, b) : isLess(b, a);
    });
    entries.clear();
    for (auto& item : keyed)
        entries.push_back(std::move(item.entry));
}

std::string parentOf(std::string path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    const auto slash = path.rfind('/');
    return slash == path.npos || slash == 0 ? "/" : path.substr(0, slash);
}

std::string withSlash(std::string path) {
    return path.empty() || path.ends_with('/') ? path : path + "/";
}

} // namespace

FullFileViewMeasure::FullFileViewMeasure(const MeasureDefinition& definition, FullMeasureHost& host)
    : FullMeasure(definition, host)
    , registration_(*this, *this) { }

void FullFileViewMeasure::readOptions() {
    const auto path = trimmed(text("Path"_key));
    const bool isChild = path.size() > 2 && path.starts_with('[') && path.ends_with(']');
    parentName_ = isChild ? path.substr(1, path.size() - 2) : "";
    const auto type = std::ranges::find(TypeNames, upperCased(trimmed(text("Type"_key, "FolderPath"))));
    type_ = type == std::end(TypeNames) ? Type::FolderPath : static_cast<Type>(type - std::begin(TypeNames));
    index_ = std::max(1, integer("Index"_key, 1));
    ignoresCount_ = isOn("IgnoreCount"_key, false);
    pageSize_ = std::clamp(integer("Count"_key, 1), 1, 20000);
    if (!isChild && listing_.path.empty())
        list(path.empty() ? "/media" : host().folders().absolutePath(path));
}

void FullFileViewMeasure::list(std::string path) {
    if (task_.isRunning()) {
        next_ = std::move(path);
        return;
    }
    if (!mayRead(host(), path)) {
        host().log(LogLevel::Warning, name(), "This folder is not shown: " + path);
        return;
    }
    Rules rules;
    const int depth = integer("Recursive"_key, 0);
    rules.showsDotDot = isOn("ShowDotDot"_key, true) && depth != 2;
    rules.showsFolders = isOn("ShowFolder"_key, true);
    rules.showsFiles = isOn("ShowFile"_key, true);
    for (const auto extension : splitDroppingEmpty(text("Extensions"_key), ';'))
        rules.extensions.emplace_back(trimmed(extension));
    rules.wildcard = text("WildcardSearch"_key, "*");
    const auto order = upperCased(trimmed(text("SortType"_key)));
    rules.sort = order == "SIZE" ? SortKey::Size
        : order == "TYPE"        ? SortKey::Type
        : order == "DATE"        ? SortKey::Date
                                 : SortKey::Name;
    rules.date = dateKey(trimmed(text("SortDateType"_key)));
    rules.isAscending = isOn("SortAscending"_key, true);
    const FolderRequest request{path, isOn("ShowHidden"_key, true), depth == 1, depth == 2};
    task_.start(
        host().platform(),
        [request, rules] {
            Listing listing{withSlash(request.path), {}, scanFolder(request)};
            listing.entries = std::exchange(listing.totals.entries, {});
            std::erase_if(listing.entries, [&](const FolderEntry& entry) { return !isListed(entry, rules); });
            sort(listing.entries, rules);
            if (rules.showsDotDot && request.path != "/") {
                FolderEntry up;
                up.name = "..";
                up.path = parentOf(request.path);
                up.isFolder = true;
                listing.entries.insert(listing.entries.begin(), up);
            }
            return listing;
        },
        [this](Listing listing) { takeListing(std::move(listing)); });
}

void FullFileViewMeasure::takeListing(Listing listing) {
    if (listing.path != listing_.path)
        first_ = 0;
    listing_ = std::move(listing);
    turn(0);
    if (next_) {
        list(*std::exchange(next_, std::nullopt));
        return;
    }
    host().valueDidArrive(*this);
    if (const auto action = option("FinishAction"_key); action && !action->empty())
        host().runAction(*this, *action);
}

/// Moves the page; it never leaves the list.
void FullFileViewMeasure::turn(std::int64_t entries) {
    const auto last = std::max<std::int64_t>(0, static_cast<std::int64_t>(listing_.entries.size()) - pageSize_);
    first_ = std::clamp<std::int64_t>(first_ + entries, 0, last);
}

FullFileViewMeasure& FullFileViewMeasure::parent() {
    auto* found
        = parentName_.empty() ? nullptr : ParentMeasures<FullFileViewMeasure>::find(host().measure(parentName_));
    return found ? *found : *this;
}

const FolderEntry* FullFileViewMeasure::entry() {
    const auto& from = parent();
    const auto position
        = ignoresCount_ ? std::int64_t{index_} - 1 : from.first_ + (std::int64_t{index_} - 1) % from.pageSize_;
    return position < static_cast<std::int64_t>(from.listing_.entries.size())
        ? &from.listing_.entries[static_cast<std::size_t>(position)]
        : nullptr;
}

void FullFileViewMeasure::update() {
    if (optionsDidChange())
        readOptions();
    const auto& listing = parent().listing_;
    switch (type_) {
    case Type::FolderPath:
        return publishText(listing.path, 0);
    case Type::FolderSize:
        return publishNumber(listing.totals.size);
    case Type::FileCount:
        return publishNumber(listing.totals.fileCount);
    case Type::FolderCount:
        return publishNumber(listing.totals.folderCount);
    default:
        break;
    }
    if (const auto* shown = entry())
        publishEntry(*shown);
    else
        publishText("", 0);
}

void FullFileViewMeasure::publishEntry(const FolderEntry& shown) {
    const auto extension = extensionOf(shown.name);
    switch (type_) {
    case Type::FileName: {
        const bool hides = parent().isOn("HideExtensions"_key, false) && !shown.isFolder && !extension.empty();
        return publishText(
            std::string_view(shown.name).substr(0, shown.name.size() - (hides ? extension.size() + 1 : 0)), 0);
    }
    case Type::FileType:
        return publishText(shown.isFolder ? "" : extension, 0);
    case Type::FileSize:
        return shown.isFolder ? publishText("", 0) : publishNumber(shown.size);
    case Type::FileDate: {
        const auto second = dateOf(shown, dateKey(trimmed(text("DateType"_key))));
        return shown.name == ".." ? publishText("", 0) : publishText(dateText(second), static_cast<double>(second));
    }
    case Type::FilePath:
        return publishText(shown.path, 0);
    case Type::PathToFile:
        return publishText(withSlash(parentOf(shown.path)), 0);
    default:
        return publishText("", 0);
    }
}

std::string FullFileViewMeasure::dateText(std::int64_t second) const {
    const auto time = WallTime::fromSecondsSince1601(second);
    const auto locale = TimeLocale::ofMachine();
    return time ? locale->date(*time, TimeLocale::Style::Short) + " " + locale->time(*time) : "";
}

bool FullFileViewMeasure::executeCommand(std::string_view command) {
    const auto word = upperCased(trimmed(command));
    auto& from = parent();
    const bool canLeave = from.integer("Recursive"_key, 0) != 2;
    if (word == "UPDATE") {
        from.list(from.listing_.path);
    } else if (word == "PAGEUP" || word == "PAGEDOWN") {
        from.turn(word == "PAGEUP" ? -from.pageSize_ : from.pageSize_);
    } else if (word == "INDEXUP" || word == "INDEXDOWN") {
        from.turn(word == "INDEXUP" ? -1 : 1);
    } else if (word == "PREVIOUSFOLDER") {
        if (canLeave)
            from.list(parentOf(from.listing_.path));
    } else if (word == "FOLLOWPATH" || word == "OPEN") {
        const auto* shown = entry();
        auto* workspace = host().platform().workspace;
        if (shown && shown->isFolder && word == "FOLLOWPATH" && canLeave)
            from.list(shown->path);
        else if (shown && workspace && host().isAllowed(Permission::Programs, shown->path))
            workspace->openFile(shown->path);
    } else {
        host().log(LogLevel::Notice, name(), "Nothing serves the command " + std::string(command));
    }
    return true;
}

} // namespace Ostrel
