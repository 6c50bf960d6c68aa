#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelDialect/Formula.h"
#include "OstrelDialect/LiteralMarks.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelDialect/References.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

class Scope : public Ostrel::ReferenceScope {
public:
    Ostrel::Options variables;
    std::string data;

    std::optional<std::string> variable(std::string_view name) const override {
        const auto* const found = variables.find(name);
        return found ? std::optional(*found) : std::nullopt;
    }
    std::optional<std::string> section(std::string_view name, std::optional<std::string_view>) const override {
        return name == "M" ? std::optional(data) : std::nullopt;
    }
    std::optional<std::string> call(
        std::string_view, std::string_view, const std::vector<std::string>& arguments) const override {
        return arguments.empty() ? std::string("none") : arguments.back();
    }
    std::optional<std::string> event(std::string_view) const override { return data; }
    std::optional<std::string> environment(std::string_view) const override { return data; }
};

void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

/// The first line is a text, the second a measure's value, the others are variables. Results are bounded, and a value
/// that was stored comes out as it was put in, whatever it holds. The text as a formula is finite or has no value.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using Ostrel::ReferenceKinds;
    constexpr std::size_t MaximumLength = 1 << 20;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const auto lines = Ostrel::split(input, '\n');
    Scope scope;
    if (lines.size() > 1)
        scope.data = Ostrel::LiteralMarks::dropped(lines[1]);
    for (std::size_t i = 2; i < lines.size(); ++i) {
        const auto equals = lines[i].find('=');
        if (equals != std::string_view::npos)
            scope.variables.set(lines[i].substr(0, equals), std::string(lines[i].substr(equals + 1)));
    }
    for (const auto kinds : {ReferenceKinds::All, ReferenceKinds::AtLoad, ReferenceKinds::ActionAtLoad}) {
        const auto result = Ostrel::resolveReferences(lines[0], scope, "Here", kinds);
        require(result.size() <= lines[0].size() + 2 * MaximumLength);
    }
    const auto stored = Ostrel::resolveReferences("[&M]", scope, "Here", ReferenceKinds::Stored);
    require(Ostrel::resolveReferences(stored, scope, "Here", ReferenceKinds::All) == scope.data);

    const auto formula = Ostrel::Formula::compile(lines[0]);
    const auto value = formula ? formula->evaluate() : std::nullopt;
    require(!value || std::isfinite(*value));
    if (value)
        require(Ostrel::OptionValues::number("\t(" + std::string(lines[0]) + ") ;") == value || lines[0].size() > 200);
    Ostrel::OptionValues::color(lines[0]);
    return 0;
}
