#include "OstrelEngine/Runtime/LiveExpression.h"

#include "OstrelEngine/Runtime/ExpressionText.h"
#include "OstrelEngine/Runtime/MeasureTable.h"
#include "OstrelEngine/Runtime/RuntimeExpressions.h"

#include <utility>

namespace Ostrel {

LiveExpression::LiveExpression(std::string_view text, const MeasureTable& measures)
    : text_(text)
    , hasVariables_(text.find('#') != std::string_view::npos) {
    for (auto name = ExpressionText::nextIdentifier(text, 0); name.begin < text.size();
         name = ExpressionText::nextIdentifier(text, name.end)) {
        if (const auto* measure = measures.find(text.substr(name.begin, name.end - name.begin)))
            sources_.push_back({measure, 0});
    }
}

bool LiveExpression::isStale() {
    bool stale = !std::exchange(isEvaluated_, true) || hasVariables_;
    for (auto& source : sources_) {
        const auto revision = source.measure->valueRevision();
        stale = std::exchange(source.revision, revision) != revision || stale;
    }
    return stale;
}

std::optional<double> LiveExpression::value(RuntimeExpressions& expressions) {
    if (isStale())
        value_ = expressions.evaluateNumericExpressionWithMeasures(text_);
    return value_;
}

} // namespace Ostrel
