#pragma once

#include "OstrelEngine/Full/FullActions.h"
#include "OstrelEngine/Measures/Full/ScriptHost.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class FormulaNames;
class FullLayout;
class FullMeasureTable;
class FullMeterTable;
class FullSkinHost;
class LiveSection;
class LiveSections;
class SkinScope;
class SkinVariables;

/// The members of a running skin that scripts work on. They outlive whatever holds this.
struct FullSkinParts {
    ActionHost& actionHost;
    FullSkinHost& host;
    LiveSections& sections;
    SkinVariables& variables;
    FullMeasureTable& measures;
    const FormulaNames& measureNames;
    FullMeterTable& meters;
    FullLayout& layout;
    const SkinScope& scope;
    FullActions& actions;
};

/// What scripts may do with their skin.
class FullScriptHost final : public ScriptHost {
public:
    explicit FullScriptHost(const FullSkinParts& parts)
        : parts_(parts) { }

    void scriptWillRun() override { parts_.actions.scriptWillRun(); }
    void scriptDidRun() override { parts_.actions.scriptDidRun(); }
    void bang(const BaseMeasure& script, std::string_view name, const std::vector<std::string>& arguments) override;
    void action(const BaseMeasure& script, std::string_view text) override;

    std::optional<std::string_view> variable(std::string_view name) override;
    std::optional<double> formula(std::string_view text) override;
    std::optional<std::string> option(const BaseMeasure& measure, std::string_view name, bool withSections) override;
    std::optional<std::string> option(std::size_t meter, std::string_view name, bool withSections) override;

    std::optional<std::size_t> meter(std::string_view name) const override;
    const std::string& meterName(std::size_t meter) const override;
    Rect meterOptionFrame(std::size_t meter) const override;
    Rect meterFrame(std::size_t meter) const override;
    void setMeterSide(std::size_t meter, Side side, double value) override;

    Rect windowFrame() const override;
    void moveWindow(double x, double y) override;
    void fadeWindow(double from, double to) override;

private:
    std::optional<std::string> option(const LiveSection& section, std::string_view name, bool withSections) const;

    FullSkinParts parts_;
    std::string lastVariable_;
};

} // namespace Ostrel
