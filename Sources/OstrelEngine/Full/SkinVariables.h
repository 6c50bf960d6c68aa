#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Full/FullSkinHost.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// The variables of a running skin as raw text, and the built-in ones, which no other can shadow. Each has a revision
/// that grows with its value, so that a text which names it need not be resolved again until then.
class SkinVariables {
public:
    SkinVariables(const PackFolders& folders, const Options& initial);

    /// A place that stays for the life of the skin; absent when there is no such variable.
    std::optional<std::size_t> position(std::string_view name) const;
    const std::string& raw(std::size_t position) const { return values_[position].text; }
    std::uint64_t revision(std::size_t position) const { return values_[position].revision; }
    /// Grows when a variable is made: what was unknown may be known now.
    std::uint64_t namesRevision() const { return namesRevision_; }

    /// False when nothing was set: built-in ones stay, and there is a limit to length and number.
    bool set(std::string_view name, std::string_view value);
    /// The window's place, size and screens for the built-in ones.
    void setPlace(const SkinPlace& place, Size window);

    /// Those of [Variables] and those that bangs made, in order, for people to read.
    const Options& own() const { return own_; }

private:
    struct Value {
        std::string text;
        std::uint64_t revision = 0;
        bool isBuiltIn = false;
    };
    void setBuiltIn(std::string_view name, std::string text);
    void setArea(std::string_view prefix, std::string_view suffix, const ScreenArea& area);

    CaseInsensitiveDictionary<std::size_t> positions_;
    std::vector<Value> values_;
    Options own_;
    std::uint64_t namesRevision_ = 0;
    std::vector<SkinPlace::Screen> screens_;
    std::size_t primary_ = 0;
};

} // namespace Ostrel
