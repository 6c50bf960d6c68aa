#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <string>
#include <string_view>

namespace Ostrel {

class MeasureHost;

/// Does what the two helper scripts that skins use most would do; there is no script interpreter. "factory.lua" sets
/// options of numbered sections, "refresher.lua" refreshes the skin once after it was loaded. Any other script is
/// inert.
class ScriptMeasure final : public BaseMeasure {
public:
    ScriptMeasure(const MeasureDefinition& definition, std::string skinPath, MeasureHost& host);

    /// Only "Initialize", with anything behind it, does something.
    bool executeCommand(std::string_view text) override;

private:
    void runFactoryInitialize() const;
    void runRefresherInitialize();
    /// Runs `[!Bang "section" "key" "value"]`.
    void dispatch(std::string_view bang, std::string_view section, std::string_view key, std::string_view value) const;

    MeasureHost& host_;
};

} // namespace Ostrel
