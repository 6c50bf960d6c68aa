#pragma once

#include "OstrelEngine/Runtime/SkinParts.h"

#include <cstddef>
#include <string_view>

namespace Ostrel {

class GroupIndex;
class MeterRenderer;

/// Who is told what `LiveOptions` has changed.
class LiveOptionsClient {
public:
    virtual ~LiveOptionsClient() = default;
    /// A variable or a visibility.
    virtual void liveStateDidChange() = 0;
    /// An option of the measure at this position.
    virtual void measureOptionDidChange(std::size_t position) = 0;
};

/// Changes what a running skin's sections and variables say, and marks what follows from it as due.
class LiveOptions {
public:
    LiveOptions(const SkinParts& parts, GroupIndex& groups, LiveOptionsClient& client)
        : parts_(parts)
        , groups_(groups)
        , client_(client) { }

    /// Each is true when something changed. A meter comes before a measure of the same name.
    bool setOption(std::string_view sectionName, std::string_view key, std::string_view value);
    /// True only when a meter changed.
    bool setOptionOfGroup(std::string_view group, std::string_view key, std::string_view value);
    /// A new value shows only with the next publication, which this does not ask for.
    bool setVariable(std::string_view name, std::string_view value);
    bool setMeterVisible(std::string_view name, bool isVisible);

private:
    bool setMeterOption(MeterRenderer& meter, std::string_view key, std::string_view value);
    bool writeMeterOption(MeterRenderer& meter, std::string_view key, std::string_view value);
    bool setMeasureOption(std::size_t position, std::string_view key, std::string_view value);

    SkinParts parts_;
    GroupIndex& groups_;
    LiveOptionsClient& client_;
};

} // namespace Ostrel
