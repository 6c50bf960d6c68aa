#pragma once

#include "OstrelCore/Documents/Diagnostic.h"
#include "OstrelCore/Report/CompatReport.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace Ostrel {

class MainQueue;

/// The list of scans. Each runs on a thread of the background and arrives on the main queue; a result whose item is
/// gone is dropped. Main thread.
class ScannerViewModel {
public:
    /// The skin as the full dialect sees it.
    struct FullScan {
        /// Of its pack.
        std::string root;
        /// What it uses that the base dialect does not have, in words.
        std::vector<std::string> beyondBase;
        CompatReport report;
        std::string formattedText;
        std::string formattedJSON;
    };
    struct ScanSuccess {
        CompatReport report;
        std::vector<Diagnostic> diagnostics;
        std::string formattedText;
        std::string formattedJSON;
        std::optional<FullScan> full = std::nullopt;
    };
    struct ScanFailure {
        std::string message;
        std::vector<Diagnostic> diagnostics;
    };
    struct Scanning { };
    using ScanState = std::variant<std::shared_ptr<const ScanSuccess>, std::shared_ptr<const ScanFailure>, Scanning>;

    /// Unique in the process, never used again.
    using ScanID = std::uint64_t;
    struct ScanItem {
        ScanID id = 0;
        std::string path;
        ScanState state = Scanning{};

        /// The file's name.
        std::string displayName() const;
    };

    /// The queue outlives the model.
    explicit ScannerViewModel(MainQueue& mainQueue);
    /// Waits for the scans that are under way; those that wait are dropped.
    ~ScannerViewModel();
    ScannerViewModel(const ScannerViewModel&) = delete;
    ScannerViewModel& operator=(const ScannerViewModel&) = delete;

    const std::vector<ScanItem>& items() const;
    std::optional<ScanID> selection() const;
    void setSelection(std::optional<ScanID> selection);
    /// Null when nothing is selected, or what is selected is gone. Good until the next change.
    const ScanItem* selectedItem() const;

    /// Expands the paths in the background and starts a scan for every file that is not listed yet, in sorted order.
    /// The first becomes the selection where there is none. `onExpanded` follows on the main queue once they are
    /// listed, with the expanded paths, also when nothing new was among them, and after a `clearAll`, when none is
    /// listed any more; not after the model's end.
    using Expanded = std::function<void(const std::vector<std::string>& expandedPaths, bool areListed)>;
    void scan(std::span<const std::string> paths, Expanded onExpanded = nullptr);
    /// Whether paths are still being expanded.
    bool isExpanding() const;
    void clearAll();
    /// Positions that are none are skipped. When the selection goes, the first item that is left becomes it.
    void remove(std::span<const std::size_t> offsets);

    /// What changed: the list, the selection, or the state of one item.
    struct Change {
        bool list = false;
        bool selection = false;
        std::optional<ScanID> state = std::nullopt;
    };
    /// After every change.
    std::function<void(const Change&)> onChange;

    /// The work of one scan; any thread.
    static ScanState performScan(const std::string& path);

private:
    static std::optional<FullScan> performFullScan(const std::string& path);

    struct Shared;
    std::shared_ptr<Shared> shared_;
};

} // namespace Ostrel
