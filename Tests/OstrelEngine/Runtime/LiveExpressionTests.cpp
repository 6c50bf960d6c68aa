#include "OstrelEngine/Runtime/LiveExpression.h"

#include "OstrelEngine/Runtime/MeasureTable.h"
#include "OstrelEngine/Runtime/RuntimeExpressions.h"
#include "Support/FakeMeasure.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace Ostrel {

TEST(LiveExpression, alwaysHasTheValueOfAFreshEvaluation) {
    Options variables;
    MeasureTable measures;
    std::vector<FakeMeasure*> sources;
    for (const auto* name : {"A", "B", "_c9"}) {
        auto measure = FakeMeasure::make(name, 0);
        sources.push_back(measure.get());
        measures.add(std::move(measure));
    }
    RuntimeExpressions expressions(variables, measures);
    const std::string_view texts[]
        = {"A > B", "a*2+_C9", "#V#+B", "1+1", "Gone+1", "2A", "A/B", "", "#V", "_c9 <> #V#"};
    std::vector<LiveExpression> live;
    for (const auto text : texts)
        live.emplace_back(text, measures);

    std::mt19937 random(3);
    const double numbers[] = {0, 1, 2.5, -3, 1e20, std::numeric_limits<double>::quiet_NaN()};
    for (int round = 0; round < 2000; ++round) {
        if (random() % 2 == 0)
            sources[random() % sources.size()]->setNumber(numbers[random() % std::size(numbers)]);
        if (random() % 5 == 0)
            variables.set("V", random() % 2 == 0 ? "A" : "4");
        const auto chosen = random() % std::size(texts);
        RuntimeExpressions fresh(variables, measures);
        EXPECT_EQ(live[chosen].value(expressions), fresh.evaluateNumericExpressionWithMeasures(texts[chosen]))
            << texts[chosen] << " in round " << round;
    }
}

} // namespace Ostrel
