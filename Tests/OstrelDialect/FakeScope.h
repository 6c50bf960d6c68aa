#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelDialect/References.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// Values by name. A call gives its arguments between bars.
class FakeScope : public ReferenceScope {
public:
    CaseInsensitiveDictionary<std::string> variables;
    /// By "Name" or "Name:parameter".
    CaseInsensitiveDictionary<std::string> sections;
    CaseInsensitiveDictionary<std::string> events;
    std::uint64_t changes = 0;
    std::uint64_t variableChanges = 0;
    CaseInsensitiveDictionary<std::uint64_t> sectionChanges;
    mutable int lookUps = 0;

    std::optional<std::string> variable(std::string_view name) const override { return find(variables, name); }
    std::optional<std::string> section(
        std::string_view name, std::optional<std::string_view> parameter) const override {
        return find(sections, parameter ? std::string(name) + ":" + std::string(*parameter) : std::string(name));
    }
    std::optional<std::string> call(
        std::string_view measure, std::string_view function, const std::vector<std::string>& arguments) const override {
        std::string text = std::string(measure) + "." + std::string(function);
        for (const auto& argument : arguments)
            text += "|" + argument;
        return text;
    }
    std::optional<std::string> event(std::string_view name) const override { return find(events, name); }
    std::optional<std::string> environment(std::string_view name) const override {
        return name == "HOME" ? std::optional<std::string>("/home/#A#") : std::nullopt;
    }
    std::uint64_t revision() const override { return changes; }
    std::uint64_t variablesRevision() const override { return variableChanges; }
    std::uint64_t sectionRevision(std::string_view name) const override {
        const auto* const found = sectionChanges.find(name);
        return found ? *found : 1;
    }

private:
    std::optional<std::string> find(const CaseInsensitiveDictionary<std::string>& values, std::string_view name) const {
        ++lookUps;
        const auto* const found = values.find(name);
        return found ? std::optional(*found) : std::nullopt;
    }
};

} // namespace Ostrel
