#pragma once

#include "OstrelEngine/Actions/SkinFileTargets.h"
#include "OstrelEngine/Runtime/SkinParts.h"

#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

class GroupIndex;
class LiveOptions;
class MeasureActions;
class SkinHost;
struct ActionStep;
struct MeasureControlState;

/// What each bang does to a running skin.
class BangOperations {
public:
    /// All must outlive this.
    BangOperations(const SkinParts& parts, SkinHost& host, LiveOptions& options, GroupIndex& groups,
        MeasureActions& measureActions);

    /// Whether the bang's operation changed or achieved something; absent when it needs more words than there are.
    std::optional<bool> perform(const ActionStep& step);
    /// Opens a URL, or a file of the skin; true when it was opened.
    bool openExternalTarget(std::string_view text);
    void publishNow();

private:
    bool setGroupVisible(std::string_view group, bool isVisible);
    void deactivateConfig(const ActionStep& step);
    void activateConfig(const ActionStep& step, bool toggle);
    void commandMeasure(std::string_view arguments);
    void pluginBang(std::string_view arguments);
    void executeCommand(std::string_view measureName, std::string_view command);
    bool updateMeasure(std::string_view name);
    bool updateMeasureGroup(std::string_view group);
    /// A member of the control state set or cleared, of one measure or of a group.
    template <typename Change> void control(std::string_view name, Change change);
    template <typename Change> void controlGroup(std::string_view group, Change change);
    bool writeKeyValue(const ActionStep& step);
    bool setVariable(const ActionStep& step);

    std::string resolveConfigPath(const ActionStep& step) const;
    /// Variables and meter coordinates replaced, and arithmetic done.
    std::string resolveBangValue(std::string_view text) const;

    SkinParts parts_;
    SkinFileTargets targets_;
    SkinHost& host_;
    LiveOptions& options_;
    GroupIndex& groups_;
    MeasureActions& measureActions_;
};

} // namespace Ostrel
