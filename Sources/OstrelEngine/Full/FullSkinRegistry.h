#pragma once

#include "OstrelEngine/Full/FullSkinHost.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class FullSkin;

/// The running skins of the full dialect, by the names of their configs, and the way of bangs between them. Main
/// thread.
class FullSkinRegistry {
public:
    /// Skins may send bangs in their answers to bangs, as deep as this.
    static constexpr int MaxDepth = 16;
    /// Bangs that come of one bang.
    static constexpr int MaxDeliveries = 2000;

    /// One skin a config: the one before is forgotten. Held weakly.
    void add(const std::shared_ptr<FullSkin>& skin);
    void remove(const FullSkin& skin);

    /// Null when none is loaded.
    std::shared_ptr<FullSkin> find(std::string_view config) const;
    /// The file of the config's skin that was loaded last, whether it runs or not; absent when none ever was.
    std::optional<std::string> lastFile(std::string_view config) const;

    /// False when it reached nobody, or the skins answer each other without end.
    bool send(const FullSkin& sender, const BangTarget& target, const BangCall& call);

private:
    struct Entry {
        std::string config;
        std::string file;
        std::weak_ptr<FullSkin> skin;
    };
    std::vector<std::shared_ptr<FullSkin>> targets(const FullSkin& sender, const BangTarget& target) const;

    /// In the order in which the configs were first loaded.
    std::vector<Entry> entries_;
    int depth_ = 0;
    int deliveries_ = 0;
};

} // namespace Ostrel
