#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How applications are started, as their desktop entries tell. Each call reads the files that it needs.
namespace Ostrel::DesktopEntries {

struct Command {
    /// An absolute path.
    std::string program;
    std::vector<std::string> arguments;

    friend bool operator==(const Command&, const Command&) = default;
};

/// The application whose desktop entry has this name or shows it to people, in any case. Absent when none is installed.
std::optional<Command> commandForApplication(std::string_view name);
/// A program, or a desktop entry, at an absolute path. Absent when the path is neither.
std::optional<Command> commandForPath(const std::string& path);

/// What a desktop entry's text starts; absent when that is not there. Files and URLs that could be given to it are left
/// out.
std::optional<Command> commandOfEntry(std::string_view text);

} // namespace Ostrel::DesktopEntries
