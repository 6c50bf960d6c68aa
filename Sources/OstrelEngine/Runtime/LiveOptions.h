#pragma once

#include "OstrelEngine/Runtime/SkinParts.h"

#include <functional>
#include <string_view>

namespace Ostrel {

class GroupIndex;
class MeterRenderer;

/// Changes what a running skin's sections and variables say, and marks what follows from it as due.
class LiveOptions {
public:
    LiveOptions(const SkinParts& parts, GroupIndex& groups)
        : parts_(parts)
        , groups_(groups) { }

    /// Each is true when something changed. A meter comes before a measure of the same name.
    bool setOption(std::string_view sectionName, std::string_view key, std::string_view value);
    /// True only when a meter changed.
    bool setOptionOfGroup(std::string_view group, std::string_view key, std::string_view value);
    /// A new value shows only with the next publication, which this does not ask for.
    bool setVariable(std::string_view name, std::string_view value);
    bool setMeterVisible(std::string_view name, bool isVisible);

    /// A variable or a visibility has changed.
    std::function<void()> onStateChange;
    /// An option of the measure at this position has changed.
    std::function<void(std::size_t)> onMeasureOptionChange;

private:
    bool setMeterOption(MeterRenderer& meter, std::string_view key, std::string_view value);
    bool writeMeterOption(MeterRenderer& meter, std::string_view key, std::string_view value);
    void noteStateChange() const;
    bool setMeasureOption(std::size_t position, std::string_view key, std::string_view value);

    SkinParts parts_;
    GroupIndex& groups_;
};

} // namespace Ostrel
