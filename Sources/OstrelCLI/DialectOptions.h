#pragma once

#include "OstrelCLI/Command.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// What `--allow` names. Without the option scripts only; with it what it lists, which may be nothing.
struct AllowedKinds {
    bool scripts = true;
    bool web = false;
    bool programs = false;
    bool files = false;

    friend bool operator==(const AllowedKinds&, const AllowedKinds&) = default;
};

/// `--dialect base|full` before a command's other arguments and, with `full`, `--root DIR`, `--screen W,H` and
/// `--allow LIST`. Without `--dialect` all arguments are the command's own.
struct DialectOptions {
    enum class Place {
        /// The options of the full dialect stand anywhere.
        Anywhere,
        /// They stand before the first argument that is none of them: what follows may be text with dashes.
        Leading,
    };
    static constexpr std::string_view Usage
        = "[--dialect base|full [--root DIR] [--screen W,H] [--allow scripts,web,programs,files,all]]";

    bool isFull = false;
    /// As given.
    std::optional<std::string> root;
    int screenWidth = 1920;
    int screenHeight = 1080;
    AllowedKinds allowed;
    /// The command's own arguments, in order.
    std::vector<std::string_view> rest;

    /// Absent when an option has no value or one that it does not know.
    static std::optional<DialectOptions> parse(Arguments arguments, Place place = Place::Anywhere);
};

} // namespace Ostrel
