#include "OstrelDialect/ActionText.h"
#include "OstrelDialect/LiteralMarks.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

/// Splitting is bounded, what stands in brackets alone is one step, and marked data is one argument whatever it holds.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::size_t bytes = 0;
    for (const auto& step : Ostrel::parseActionText(text)) {
        for (const auto& argument : step.arguments)
            bytes += argument.text.size();
        bytes += step.name.size();
    }
    if (bytes > 2 * size)
        std::abort();
    const auto marked = Ostrel::LiteralMarks::marked(Ostrel::LiteralMarks::dropped(text));
    const auto steps = Ostrel::parseActionText("[!Log \"x" + marked + "\" y][!A]");
    const bool isWhole = steps.size() == 2 && steps[0].arguments.size() == 2
        && steps[0].arguments[0].text == "x" + marked && steps[0].arguments[1].text == "y";
    if (!isWhole && size < 1000)
        std::abort();
    return 0;
}
