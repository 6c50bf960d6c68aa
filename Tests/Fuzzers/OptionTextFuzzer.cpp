#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Runtime/BracketReferences.h"
#include "OstrelEngine/Runtime/ExpressionText.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

/// Option text: an expression that has a value has a finite one and the same in parentheses, and what is replaced by
/// itself leaves the text as it was.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Ostrel;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto value = ExpressionText::evaluateNormalized(ExpressionText::normalizeExpression(text));
    if (value && !std::isfinite(*value))
        std::abort();
    const auto plain = ExpressionText::evaluateNumericExpression(text);
    if (plain && plain != ExpressionText::evaluateNumericExpression("0?0:(" + std::string(trimmed(text)) + "\n)")
        && text.find(')') == text.npos)
        std::abort();

    std::string name;
    std::string result;
    ExpressionText::appendWithVariables(result, text, [&](std::string_view found) {
        name = "#" + std::string(found) + "#";
        return &name;
    });
    if (result != text)
        std::abort();
    BracketReferences::substituteCoordinates(text, [](std::string_view, char) { return std::string(309, '9'); });
    BracketReferences::names(text);
    return 0;
}
