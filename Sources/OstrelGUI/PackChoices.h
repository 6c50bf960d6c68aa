#pragma once

#include "OstrelDialect/PackReport.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Ostrel {

class UserDefaults;

enum class Dialect { Base, Full };

/// What the user lets the skins of a pack do in the full dialect, beyond drawing and their own files.
struct PackPermissions {
    bool scripts = false;
    bool web = false;
    bool programs = false;
    bool files = false;

    friend bool operator==(const PackPermissions&, const PackPermissions&) = default;
};

/// What the user has said of a pack.
struct PackChoice {
    /// Absent: the setting for new packs holds.
    std::optional<Dialect> dialect;
    /// Absent until the user has answered; then nothing of it happens.
    std::optional<PackPermissions> permissions;

    friend bool operator==(const PackChoice&, const PackChoice&) = default;
};

/// The user's choices for packs, by the pack's root folder, kept among the settings. What is kept is read at each call:
/// another process may have written it.
class PackChoices {
public:
    enum class NewPacks { Ask, Base, Full };

    /// Keys of the settings.
    static constexpr std::string_view ChoicesKey = "packChoices";
    static constexpr std::string_view NewPacksKey = "newPacks";
    /// With this many packs the one that was named first is forgotten.
    static constexpr std::size_t MaxPacks = 1000;

    /// Outlives this.
    explicit PackChoices(UserDefaults& defaults)
        : defaults_(defaults) { }

    /// The root of the pack that a skin file belongs to; ends in a slash.
    static std::string rootOf(const std::string& skinPath);

    PackChoice of(std::string_view root) const;
    void set(const std::string& root, const PackChoice& choice);
    void forget(std::string_view root);
    /// In the order in which they were first named.
    std::vector<std::pair<std::string, PackChoice>> all() const;

    NewPacks newPacks() const;
    void setNewPacks(NewPacks choice);

    /// The dialect in which a skin runs: the pack's, else what new packs get, else what the skin's author declares with
    /// `Dialect=Full` in its [Metadata].
    Dialect dialectOf(const std::string& skinPath) const;

private:
    void store(const std::vector<std::pair<std::string, PackChoice>>& choices);

    UserDefaults& defaults_;
};

/// What all skins of a pack want together; of a very large pack, of its first skins.
PackWants wantsOfPack(const std::string& root);

} // namespace Ostrel
