#pragma once

#include "OstrelCore/Report/CompatReport.h"
#include "OstrelDialect/PackSkin.h"

#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// What a skin asks for beyond drawing and its own files; each sorted and without repeats. Found from its text alone.
struct PackWants {
    /// Absolute paths of script files.
    std::vector<std::string> scripts;
    /// Hosts that it reads from.
    std::vector<std::string> web;
    /// Programs and command lines, as written.
    std::vector<std::string> programs;
    /// Files and folders outside the pack that it reads or lists.
    std::vector<std::string> files;

    bool isEmpty() const { return scripts.empty() && web.empty() && programs.empty() && files.empty(); }
    void merge(const PackWants& other);
    friend bool operator==(const PackWants&, const PackWants&) = default;
};

PackWants findWants(const PackSkin& skin);

/// Whether a program belongs to the system that skins were written for, so that it cannot run here and is never asked
/// about.
bool isForeignProgram(std::string_view program);

/// What the full dialect cannot serve here.
CompatReport reportOf(const PackSkin& skin);

/// What the skin uses that the base dialect does not have, in words for the user, most telling first.
std::vector<std::string> thingsBeyondBase(const PackSkin& skin);

} // namespace Ostrel
