#include "OstrelGUI/ScannerViewModel.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Packages/SkinPathResolver.h"
#include "OstrelCore/Report/CompatReportFormatter.h"
#include "OstrelCore/Report/CompatScanner.h"
#include "OstrelDialect/PackReader.h"
#include "OstrelDialect/PackReport.h"
#include "OstrelGUI/ScanWorkers.h"
#include "OstrelPlatform/MainQueue.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <stop_token>
#include <unordered_set>

namespace Ostrel {

namespace {

/// Results that one turn of the main loop takes over, so that the window stays awake between them.
constexpr std::size_t ResultsPerTurn = 64;
/// Threads that walk folders, when one after the other is opened and cleared.
constexpr std::size_t MostExpansions = 4;
/// Of the background; scans are parsing, and more threads than cores only crowd out the widgets.
constexpr unsigned MaxThreads = 8;

std::size_t threadCount() {
    return std::clamp(std::thread::hardware_concurrency(), 1U, MaxThreads);
}

ScannerViewModel::ScanID nextID() {
    static std::atomic<ScannerViewModel::ScanID> last = 0;
    return ++last;
}

} // namespace

/// All of the model, so that what arrives late can tell that it is gone.
struct ScannerViewModel::Shared : std::enable_shared_from_this<Shared> {
    struct Result {
        ScanID id = 0;
        ScanState state;
    };

    Shared(ScannerViewModel& itsModel, MainQueue& itsQueue)
        : model(&itsModel)
        , mainQueue(itsQueue) {
        addExpansions();
    }

    void addExpansions() { expansions.push_back(std::make_unique<ScanWorkers>(1)); }
    void notify(const Change& change) const {
        if (model && model->onChange)
            model->onChange(change);
    }
    void add(const std::vector<std::string>& paths);
    void start(std::size_t firstItem);
    void deposit(Result result);
    void postDelivery();
    void deliver();
    void apply(Result& result);
    std::vector<Result> takeResults();

    /// Null when it is gone.
    ScannerViewModel* model;
    MainQueue& mainQueue;
    /// Ascending by their identities.
    std::vector<ScanItem> items;
    std::unordered_set<std::string> listedPaths;
    std::optional<ScanID> selection;
    /// Counts what `clearAll` has done: an expansion from before is not listed.
    int generation = 0;
    /// Expansions that have not been told yet.
    int expanding = 0;
    /// Ends the expansions with the model.
    std::stop_source expansionsEnd;

    std::mutex mutex;
    /// Guarded by `mutex`: what has been scanned and waits for the main queue.
    std::vector<Result> results;
    bool isDeliveryPosted = false;

    /// The last takes new work, on one thread, so that what is opened first is listed first. The others still expand
    /// what was cleared from the list.
    std::vector<std::unique_ptr<ScanWorkers>> expansions;
    ScanWorkers scans{threadCount()};
};

void ScannerViewModel::Shared::add(const std::vector<std::string>& paths) {
    const auto firstNew = items.size();
    for (const auto& path : paths)
        if (listedPaths.insert(path).second)
            items.push_back({.id = nextID(), .path = path});
    if (items.size() == firstNew)
        return;
    const bool selects = !selection;
    if (selects)
        selection = items[firstNew].id;
    start(firstNew);
    notify({.list = true, .selection = selects});
}

void ScannerViewModel::Shared::start(std::size_t firstItem) {
    std::vector<ScanWorkers::Work> work;
    for (auto i = firstItem; i < items.size(); ++i)
        // The workers end before this does.
        work.emplace_back([this, id = items[i].id, path = items[i].path] { deposit({id, performScan(path)}); });
    scans.post(std::move(work));
}

void ScannerViewModel::Shared::deposit(Result result) {
    const std::scoped_lock lock(mutex);
    results.push_back(std::move(result));
    if (!std::exchange(isDeliveryPosted, true))
        postDelivery();
}

void ScannerViewModel::Shared::postDelivery() {
    mainQueue.post([weak = weak_from_this()] {
        if (const auto shared = weak.lock())
            shared->deliver();
    });
}

std::vector<ScannerViewModel::Shared::Result> ScannerViewModel::Shared::takeResults() {
    const std::scoped_lock lock(mutex);
    const auto count = static_cast<std::ptrdiff_t>(std::min(results.size(), ResultsPerTurn));
    std::vector<Result> taken(
        std::make_move_iterator(results.begin()), std::make_move_iterator(results.begin() + count));
    results.erase(results.begin(), results.begin() + count);
    isDeliveryPosted = !results.empty();
    if (isDeliveryPosted)
        postDelivery();
    return taken;
}

void ScannerViewModel::Shared::deliver() {
    for (auto& result : takeResults())
        apply(result);
}

void ScannerViewModel::Shared::apply(Result& result) {
    const auto item = std::ranges::lower_bound(items, result.id, {}, &ScanItem::id);
    if (item == items.end() || item->id != result.id)
        return;
    item->state = std::move(result.state);
    notify({.state = result.id});
}

ScannerViewModel::ScannerViewModel(MainQueue& mainQueue)
    : shared_(std::make_shared<Shared>(*this, mainQueue)) { }

ScannerViewModel::~ScannerViewModel() {
    shared_->model = nullptr;
    shared_->expansionsEnd.request_stop();
    for (const auto& workers : shared_->expansions)
        workers->stop();
    shared_->scans.stop();
}

std::string ScannerViewModel::ScanItem::displayName() const {
    return lastPathComponent(path);
}

const std::vector<ScannerViewModel::ScanItem>& ScannerViewModel::items() const {
    return shared_->items;
}

std::optional<ScannerViewModel::ScanID> ScannerViewModel::selection() const {
    return shared_->selection;
}

void ScannerViewModel::setSelection(std::optional<ScanID> selection) {
    if (std::exchange(shared_->selection, selection) != selection)
        shared_->notify({.selection = true});
}

const ScannerViewModel::ScanItem* ScannerViewModel::selectedItem() const {
    if (!shared_->selection)
        return nullptr;
    const auto item = std::ranges::lower_bound(shared_->items, *shared_->selection, {}, &ScanItem::id);
    return item != shared_->items.end() && item->id == *shared_->selection ? &*item : nullptr;
}

void ScannerViewModel::scan(std::span<const std::string> paths, Expanded onExpanded) {
    auto expand = [shared = shared_.get(), generation = shared_->generation, stop = shared_->expansionsEnd.get_token(),
                      chosen = std::vector(paths.begin(), paths.end()), onExpanded = std::move(onExpanded)] {
        auto expanded = SkinPathResolver::expand(chosen, stop);
        shared->mainQueue.post(
            [weak = shared->weak_from_this(), generation, expanded = std::move(expanded), onExpanded] {
                const auto target = weak.lock();
                if (!target || !target->model)
                    return;
                --target->expanding;
                const bool areListed = target->generation == generation;
                if (areListed)
                    target->add(expanded);
                if (onExpanded)
                    onExpanded(expanded, areListed);
            });
    };
    ++shared_->expanding;
    std::vector<ScanWorkers::Work> work;
    work.emplace_back(std::move(expand));
    shared_->expansions.back()->post(std::move(work));
}

bool ScannerViewModel::isExpanding() const {
    return shared_->expanding > 0;
}

void ScannerViewModel::clearAll() {
    // What is being expanded goes on: it is no longer listed, but the library learns of it. What comes next need not
    // wait for it.
    if (isExpanding() && shared_->expansions.size() < MostExpansions)
        shared_->addExpansions();
    shared_->scans.dropWaiting();
    ++shared_->generation;
    const Change change{.list = !shared_->items.empty(), .selection = shared_->selection.has_value()};
    shared_->items.clear();
    shared_->listedPaths.clear();
    shared_->selection = std::nullopt;
    if (change.list || change.selection)
        shared_->notify(change);
}

void ScannerViewModel::remove(std::span<const std::size_t> offsets) {
    auto& items = shared_->items;
    std::vector<std::size_t> descending;
    std::ranges::copy_if(offsets, std::back_inserter(descending), [&](auto offset) { return offset < items.size(); });
    std::ranges::sort(descending, std::greater());
    descending.erase(std::unique(descending.begin(), descending.end()), descending.end());
    if (descending.empty())
        return;
    bool isSelectionGone = false;
    for (const auto offset : descending) {
        const auto item = items.begin() + static_cast<std::ptrdiff_t>(offset);
        isSelectionGone = isSelectionGone || shared_->selection == item->id;
        shared_->listedPaths.erase(item->path);
        items.erase(item);
    }
    if (isSelectionGone)
        shared_->selection = items.empty() ? std::nullopt : std::optional(items.front().id);
    shared_->notify({.list = true, .selection = isSelectionGone});
}

std::optional<ScannerViewModel::FullScan> ScannerViewModel::performFullScan(const std::string& path) {
    const auto skin = readPackSkin(path);
    if (!skin)
        return std::nullopt;
    auto report = reportOf(*skin);
    auto text = CompatReportFormatter::formatText(report);
    auto json = CompatReportFormatter::formatJSON(report);
    return FullScan{.root = skin->folders.root,
        .beyondBase = thingsBeyondBase(*skin),
        .report = std::move(report),
        .formattedText = std::move(text),
        .formattedJSON = std::move(json)};
}

ScannerViewModel::ScanState ScannerViewModel::performScan(const std::string& path) {
    DiskFileProvider files;
    DiagnosticCollector diagnostics;
    const auto config = SkinLoader(files, diagnostics).load(path);
    if (!config)
        return std::make_shared<const ScanFailure>(
            ScanFailure{.message = "Could not load skin", .diagnostics = diagnostics.diagnostics()});
    auto report = CompatScanner::scan(*config);
    auto text = CompatReportFormatter::formatText(report);
    auto json = CompatReportFormatter::formatJSON(report);
    return std::make_shared<const ScanSuccess>(ScanSuccess{.report = std::move(report),
        .diagnostics = diagnostics.diagnostics(),
        .formattedText = std::move(text),
        .formattedJSON = std::move(json),
        .full = performFullScan(path)});
}

} // namespace Ostrel
