#include "OstrelCLI/CalcCommand.h"

#include "OstrelCLI/DialectOptions.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelDialect/Formula.h"
#include "OstrelEngine/Measures/CalcMeasure.h"
#include "OstrelEngine/Runtime/MeasureTable.h"
#include "OstrelEngine/Runtime/RuntimeExpressions.h"

#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

namespace Ostrel::CalcCommand {

namespace {

using Evaluator = std::function<std::optional<double>(std::string_view text)>;

/// Enough digits to tell any two doubles apart.
constexpr int Precision = 17;

/// As a running skin without variables and measures evaluates an expression.
Evaluator expressionEvaluator() {
    struct EmptySkin {
        Options variables;
        MeasureTable measures;
        RuntimeExpressions expressions{variables, measures};
    };
    return [skin = std::make_shared<EmptySkin>()](
               std::string_view text) { return skin->expressions.evaluateNumericExpressionWithMeasures(text); };
}

std::optional<double> evaluateFull(std::string_view text) {
    const auto formula = Formula::compile(text);
    return formula ? formula->evaluate() : std::nullopt;
}

void printResult(const Evaluator& evaluate, std::string_view text) {
    const auto value = evaluate(text);
    std::cout << (value ? formatGeneral(*value, Precision) : "invalid") << "\n";
}

} // namespace

int run(Arguments allArguments) {
    const auto options = DialectOptions::parse(allArguments, DialectOptions::Place::Leading);
    if (!options)
        return wrongUsage(Usage);
    Arguments arguments = options->rest;
    // A text may begin with dashes: "--3" is 3.
    const bool isExpression = !arguments.empty() && arguments.front() == "--expression";
    if (isExpression)
        arguments = arguments.subspan(1);
    if (isExpression && options->isFull)
        return wrongUsage(Usage);
    const Evaluator evaluate = options->isFull ? evaluateFull
        : isExpression                         ? expressionEvaluator()
                                               : CalcMeasure::evaluateIfValid;
    for (const auto text : arguments)
        printResult(evaluate, text);
    if (!arguments.empty())
        return Done;
    for (std::string line; std::getline(std::cin, line);)
        printResult(evaluate, line);
    return Done;
}

} // namespace Ostrel::CalcCommand
