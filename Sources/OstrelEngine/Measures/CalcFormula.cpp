#include "OstrelEngine/Measures/CalcFormula.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/RegularExpression.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/CalcMeasure.h"
#include "OstrelEngine/Measures/MeasureHost.h"

namespace Ostrel {

namespace {

/// As "%.10g" prints the number of a measure.
constexpr int Precision = 10;

bool isWordCharacter(char c) {
    return c == '_' || isASCIIDigit(c) || (asciiUpper(c) >= 'A' && asciiUpper(c) <= 'Z');
}

/// Words of ASCII letters, digits and underscores that do not begin with a digit.
std::vector<std::string_view> identifiersOfASCII(std::string_view text) {
    std::vector<std::string_view> found;
    for (std::size_t i = 0; i < text.size();) {
        const auto start = i;
        while (i < text.size() && isWordCharacter(text[i]))
            ++i;
        if (i == start)
            ++i;
        else if (!isASCIIDigit(text[start]))
            found.push_back(text.substr(start, i - start));
    }
    return found;
}

/// The same where letters of other scripts, which never belong to such a word, may touch one and so spoil it.
std::vector<std::string_view> identifiers(std::string_view text) {
    if (isASCII(text))
        return identifiersOfASCII(text);
    std::vector<std::string_view> found;
    const auto expression = RegularExpression::compile("\\b[A-Za-z_][A-Za-z0-9_]*\\b");
    for (const auto& match : expression->matches(text))
        found.push_back(match[0]);
    return found;
}

} // namespace

CalcFormula::CalcFormula(std::string_view text, const MeasureHost* host)
    : text_(text) {
    if (!host)
        return;
    for (const auto name : identifiers(text_)) {
        const auto start = static_cast<std::size_t>(name.data() - text_.data());
        if (const auto* measure = host->measure(name))
            slots_.push_back({start, start + name.size(), measure});
    }
}

bool CalcFormula::update() {
    bool changed = !isEvaluated_;
    for (auto& slot : slots_) {
        const auto revision = slot.measure->valueRevision();
        changed = changed || slot.seenRevision != revision;
        slot.seenRevision = revision;
    }
    if (changed)
        value_ = CalcMeasure::evaluate(substitutedText());
    isEvaluated_ = true;
    return changed;
}

const std::string& CalcFormula::substitutedText() {
    if (slots_.empty())
        return text_;
    buffer_.clear();
    std::size_t copied = 0;
    for (const auto& slot : slots_) {
        buffer_.append(text_, copied, slot.start - copied);
        appendGeneral(buffer_, slot.measure->value().numericValue, Precision);
        copied = slot.end;
    }
    buffer_.append(text_, copied);
    return buffer_;
}

} // namespace Ostrel
