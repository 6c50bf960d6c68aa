// What a tick of the full dialect asks of its language: a formula compiled and run, references resolved, and a text
// found current again. Allocations are counted, since they do not depend on the machine.

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelDialect/ActionText.h"
#include "OstrelDialect/Formula.h"
#include "OstrelDialect/References.h"
#include "Support/AllocationCounter.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

namespace {

/// Ten operators.
constexpr std::string_view TenOperators = "(1-0.62)*(250-2*18)+36/4-(7%3)+2**3";
constexpr double TenOperatorsValue = (1 - 0.62) * (250 - 2 * 18) + 9 - 1 + 8;

void compileFormula(benchmark::State& state) {
    const auto formula = Formula::compile(TenOperators);
    if (!formula || formula->evaluate() != TenOperatorsValue)
        state.SkipWithError("another result");
    for (auto _ : state)
        benchmark::DoNotOptimize(Formula::compile(TenOperators));
}
BENCHMARK(compileFormula);

void evaluateFormula(benchmark::State& state) {
    const auto formula = Formula::compile(TenOperators);
    const auto before = allocationCount();
    for (auto _ : state)
        benchmark::DoNotOptimize(formula->evaluate());
    if (allocationCount() - before > 16)
        state.SkipWithError("evaluation allocates");
}
BENCHMARK(evaluateFormula);

class Scope : public ReferenceScope {
public:
    Options variables;
    Options sections;
    std::uint64_t changes = 1;

    std::optional<std::string> variable(std::string_view name) const override { return find(variables, name); }
    std::optional<std::string> section(std::string_view name, std::optional<std::string_view>) const override {
        return find(sections, name);
    }
    std::optional<std::string> call(
        std::string_view, std::string_view, const std::vector<std::string>&) const override {
        return std::nullopt;
    }
    std::optional<std::string> event(std::string_view) const override { return std::nullopt; }
    std::optional<std::string> environment(std::string_view) const override { return std::nullopt; }
    std::uint64_t revision() const override { return changes; }
    std::uint64_t variablesRevision() const override { return 1; }
    std::uint64_t sectionRevision(std::string_view) const override { return 1; }

private:
    static std::optional<std::string> find(const Options& values, std::string_view name) {
        const auto* const found = values.find(name);
        return found ? std::optional(*found) : std::nullopt;
    }
};

/// Ten references, each found at once.
constexpr std::string_view TenReferences = "#A# [#A] [M] [M:] #A# [#A] [M] [&M] #A#,[#A]";

Scope makeScope() {
    Scope scope;
    scope.variables.set("A", "12");
    scope.sections.set("M", "34");
    return scope;
}

void resolveTenReferences(benchmark::State& state) {
    const auto scope = makeScope();
    const auto text = ReferenceText::parse(TenReferences);
    if (text.resolve(scope, "Here", ReferenceKinds::All) != "12 12 34 34 12 12 34 34 12,12")
        state.SkipWithError("another result");
    for (auto _ : state)
        benchmark::DoNotOptimize(text.resolve(scope, "Here", ReferenceKinds::All));
}
BENCHMARK(resolveTenReferences);

/// `state.range(0)`: whether something else changes between two updates.
void followUnchangedText(benchmark::State& state) {
    auto scope = makeScope();
    LiveText text(TenReferences, ReferenceKinds::All);
    text.update(scope, "Here");
    const auto before = allocationCount();
    for (auto _ : state) {
        scope.changes += static_cast<std::uint64_t>(state.range(0));
        benchmark::DoNotOptimize(text.update(scope, "Here"));
    }
    if (allocationCount() - before > 16)
        state.SkipWithError("an unchanged text allocates");
}
BENCHMARK(followUnchangedText)->Arg(0)->Arg(1);

void splitAction(benchmark::State& state) {
    constexpr std::string_view Action = "[!SetVariable Page \"two\"][!SetOption Title Text \"[Name] x\"][!Redraw]";
    if (parseActionText(Action).size() != 3)
        state.SkipWithError("another result");
    for (auto _ : state)
        benchmark::DoNotOptimize(parseActionText(Action));
}
BENCHMARK(splitAction);

} // namespace

} // namespace Ostrel
