#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class HeadlessSkin;

/// One line of a scenario.
struct ScenarioStep {
    /// As written.
    std::string line;
    std::function<void(HeadlessSkin& skin)> run;
};

/// The steps of a scenario text, one a line. Empty lines and lines that begin with "#" are left out. Absent when a line
/// is none that is known. The full dialect knows more kinds of lines than the base.
std::optional<std::vector<ScenarioStep>> parseScenario(std::string_view text, bool isFull);

} // namespace Ostrel
