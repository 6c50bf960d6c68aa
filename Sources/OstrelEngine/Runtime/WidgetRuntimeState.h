#pragma once

#include <map>
#include <string>

namespace Ostrel {

/// What a widget changed at run time.
struct WidgetRuntimeState {
    std::map<std::string, std::string> variables;
    /// By upper-cased meter name; true is shown.
    std::map<std::string, bool> meterVisibility;

    friend bool operator==(const WidgetRuntimeState&, const WidgetRuntimeState&) = default;
};

} // namespace Ostrel
