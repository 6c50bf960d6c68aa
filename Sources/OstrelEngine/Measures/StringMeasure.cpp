#include "OstrelEngine/Measures/StringMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/MeasureHost.h"

#include <algorithm>
#include <utility>

namespace Ostrel {

namespace {

/// A value that holds a reference is resolved in turn, and one that holds a reference to itself would go on for ever:
/// so many of them are followed, and the text grows so far beyond the template.
constexpr int MaximumNestedValues = 1000;
constexpr std::size_t MaximumGrowth = 1 << 20;

std::string formattedValue(const MeasureValue& value, std::string_view specifier) {
    if (specifier == "%")
        return formatFixed(value.percentValue(), 0);
    if (value.preferStringValue || !value.stringValue.empty())
        return value.stringValue;
    return formatGeneral(value.numericValue, 10);
}

/// One run over a template. What stands before the first bracket is final, so it moves from `pending_` to `result_`.
class TemplateResolution {
public:
    TemplateResolution(const MeasureHost& host, std::string_view text)
        : host_(host)
        , pending_(text)
        , maximumLength_(text.size() + MaximumGrowth) { }

    std::string run() {
        while (step()) { }
        result_.append(pending_, position_);
        return std::move(result_);
    }
    std::vector<StringMeasure::Source> takeSources() { return std::move(sources_); }

private:
    /// Handles the next bracketed token; false when there is none, or a limit is reached.
    bool step() {
        const auto open = pending_.find('[', position_);
        const auto close = pending_.find(']', open);
        if (open == std::string::npos || close == std::string::npos)
            return false;
        const auto token = std::string_view(pending_).substr(open + 1, close - open - 1);
        const auto colon = token.find(':');
        const auto* measure = find(token, trimmed(token.substr(0, colon)));
        if (!measure) {
            take(close + 1);
            return true;
        }
        const auto specifier = colon == std::string_view::npos ? "" : trimmed(token.substr(colon + 1));
        const auto text = formattedValue(measure->value(), specifier);
        const bool isNested = text.find('[') != std::string::npos;
        if (result_.size() + pending_.size() - position_ + text.size() > maximumLength_
            || (isNested && ++nestedValues_ > MaximumNestedValues))
            return false;
        take(open);
        position_ = close + 1;
        if (isNested)
            pending_.replace(0, std::exchange(position_, 0), text);
        else
            result_.append(text);
        return true;
    }

    const BaseMeasure* find(std::string_view token, std::string_view name) {
        if (token.starts_with('!') || token.starts_with('#'))
            return nullptr;
        const auto* measure = host_.measure(name);
        if (measure)
            sources_.push_back({measure, measure->valueRevision()});
        return measure;
    }

    void take(std::size_t end) {
        result_.append(pending_, position_, end - position_);
        position_ = end;
    }

    const MeasureHost& host_;
    std::string pending_;
    std::size_t position_ = 0;
    std::string result_;
    std::size_t maximumLength_;
    int nestedValues_ = 0;
    std::vector<StringMeasure::Source> sources_;
};

} // namespace

StringMeasure::StringMeasure(const MeasureDefinition& definition, std::string skinPath, const MeasureHost& host)
    : BaseMeasure(definition, std::move(skinPath))
    , host_(host) { }

bool StringMeasure::isCurrent() const {
    if (readRevision_ != optionsRevision())
        return false;
    return std::ranges::all_of(
        sources_, [](const Source& source) { return source.measure->valueRevision() == source.revision; });
}

void StringMeasure::update() {
    if (isCurrent()) {
        publishUnchanged();
        return;
    }
    auto text = option("String"_key);
    if (!text)
        text = option("Text"_key);
    readRevision_ = optionsRevision();
    TemplateResolution resolution(host_, text.value_or(""));
    const auto resolved = resolution.run();
    sources_ = resolution.takeSources();
    publish(parseDouble(trimmed(resolved)).value_or(0), resolved, true, 0, 0);
}

} // namespace Ostrel
