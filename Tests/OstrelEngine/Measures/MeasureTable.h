#pragma once

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/InputTextPresentation.h"
#include "OstrelEngine/Measures/MeasureFactory.h"
#include "OstrelEngine/Measures/MeasureHost.h"
#include "Support/FakePlatform.h"

#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Ostrel {

/// Measures by name, as a running skin has them. Writes down what they ask for: actions as they are, "?" for a prompt,
/// "x" for its end.
class MeasureTable final : public MeasureHost {
public:
    using Pairs = std::initializer_list<std::pair<std::string_view, std::string>>;

    static std::shared_ptr<MeasureTable> create() { return std::make_shared<MeasureTable>(); }

    BaseMeasure& add(std::string name, std::string type, Pairs options) {
        MeasureDefinition definition{std::move(name), std::move(type), std::nullopt, {}};
        for (const auto& [key, value] : options)
            definition.allOptions.set(key, value);
        if (const auto* plugin = definition.allOptions.find("Plugin"))
            definition.pluginName = *plugin;
        measures_.push_back(MeasureFactory::create(definition, "/skin.ini", fake.platform, *this));
        return *measures_.back();
    }
    /// A number that the test sets through the option Formula.
    BaseMeasure& addNumber(std::string name, std::string number) {
        auto& measure = add(std::move(name), "Calc", {{"Formula", std::move(number)}});
        measure.update();
        return measure;
    }
    /// A measure that sees the others, updated once.
    BaseMeasure& addLinked(std::string name, std::string type, Pairs options) {
        auto& measure = add(std::move(name), std::move(type), options);
        measure.resolveReferences();
        measure.update();
        return measure;
    }
    BaseMeasure* measure(std::string_view name) const override {
        for (const auto& measure : measures_) {
            if (equalsIgnoringCase(measure->name(), name))
                return measure.get();
        }
        return nullptr;
    }

    void runAction(const BaseMeasure&, std::string_view action) override {
        log.emplace_back(action);
        if (onAction)
            onAction(action);
    }
    void promptInput(const std::optional<InputTextPresentation>& presentation) override {
        log.emplace_back(presentation ? "?" : "x");
    }

    FakePlatform fake;
    std::vector<std::string> log;
    std::function<void(std::string_view)> onAction;

private:
    std::vector<std::unique_ptr<BaseMeasure>> measures_;
};

inline void setAndUpdate(BaseMeasure& measure, std::string_view key, std::string_view value) {
    measure.setOption(key, value);
    measure.update();
}

} // namespace Ostrel
