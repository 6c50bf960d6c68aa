#pragma once

#include "OstrelGUI/WidgetLibraryItem.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Ostrel {

/// What the window has been told of the library, and what it has to be told next: the list first, so that it can be
/// shown, previews one at a time after it, each once for as long as it stays the same picture.
class LibraryFeed {
public:
    struct Preview {
        /// Null when the widget no longer has one.
        std::shared_ptr<const std::string> picture;
        std::size_t index = 0;
    };

    /// The message after which the window has these items: all of them when paths came, went or moved, else those that
    /// changed. Absent when it has them already.
    std::optional<nlohmann::json> list(const std::vector<WidgetLibraryItem>& items);
    /// The next picture that the window lacks, by its place in the list that was told last. Absent when it has all.
    std::optional<Preview> nextPreview(const std::vector<WidgetLibraryItem>& items);

private:
    bool hasSamePaths(const std::vector<WidgetLibraryItem>& items) const;
    nlohmann::json all(const std::vector<WidgetLibraryItem>& items);
    std::optional<nlohmann::json> changed(const std::vector<WidgetLibraryItem>& items);

    /// As the window has them, pictures too.
    std::vector<WidgetLibraryItem> told_;
    bool hasTold_ = false;
    /// No item before it lacks its picture.
    std::size_t firstToCheck_ = 0;
};

} // namespace Ostrel
