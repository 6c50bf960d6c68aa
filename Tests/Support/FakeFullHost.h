#pragma once

#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Measures/Full/FullMeasureFactory.h"
#include "OstrelEngine/Measures/InputTextPresentation.h"
#include "Support/FakePlatform.h"

#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Ostrel {

/// The measures of one skin of the full dialect, which does what a test says.
class FakeFullHost : public FullMeasureHost {
public:
    using Pairs = std::initializer_list<std::pair<std::string_view, std::string>>;

    FakePlatform fake;
    PackFolders packFolders;
    std::int64_t cycles = 0;
    bool allowsAll = true;
    /// What was logged, asked for and run, one line each.
    std::vector<std::string> lines;

    /// Plugins are written "Plugin:Name".
    BaseMeasure& add(std::string name, std::string_view type, Pairs options = {}) {
        MeasureDefinition definition{std::move(name), std::string(type), std::nullopt, {}};
        if (type.starts_with("Plugin:")) {
            definition.measureType = "Plugin";
            definition.pluginName = std::string(type.substr(7));
        }
        for (const auto& [key, value] : options)
            definition.allOptions.set(key, value);
        measures_.push_back(FullMeasureFactory::create(definition, *this));
        return *measures_.back();
    }
    BaseMeasure& addUpdated(std::string name, std::string_view type, Pairs options = {}) {
        auto& measure = add(std::move(name), type, options);
        measure.update();
        return measure;
    }

    const PackFolders& folders() const override { return packFolders; }
    const Platform& platform() const override { return fake.platform; }
    bool isAllowed(Permission, std::string_view detail) override {
        lines.push_back("allow " + std::string(detail));
        return allowsAll;
    }
    void log(LogLevel, std::string_view section, std::string_view text) override {
        lines.push_back("log " + std::string(section) + " " + std::string(text));
    }
    BaseMeasure* measure(std::string_view name) const override {
        for (const auto& measure : measures_) {
            if (equalsIgnoringCase(measure->name(), name))
                return measure.get();
        }
        return nullptr;
    }
    const std::vector<std::unique_ptr<BaseMeasure>>& allMeasures() const override { return measures_; }
    void runAction(const BaseMeasure&, std::string_view action) override {
        lines.push_back("run " + std::string(action));
    }
    std::string resolved(const BaseMeasure&, std::string_view raw) const override { return std::string(raw); }
    std::int64_t cycleCount() const override { return cycles; }
    void valueDidArrive(BaseMeasure& measure) override { lines.push_back("arrived " + measure.name()); }
    void promptInput(const std::optional<InputTextPresentation>& presentation) override {
        lines.push_back(presentation ? "prompt " + presentation->measureName : "prompt nothing");
        prompted = presentation;
    }
    ScriptHost& scriptHost() override { std::abort(); }

    std::optional<InputTextPresentation> prompted;

private:
    std::vector<std::unique_ptr<BaseMeasure>> measures_;
};

} // namespace Ostrel
