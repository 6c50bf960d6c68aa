#include "OstrelCLI/JSON.h"

#include "OstrelCore/Numbers.h"

#include <cmath>

namespace Ostrel {

JSON jsonNumber(double value) {
    return std::isfinite(value) ? JSON(value) : JSON(formatGeneral(value));
}

JSON jsonText(const std::optional<std::string>& text) {
    return text ? JSON(*text) : JSON(nullptr);
}

JSON jsonPairs(const Options& options) {
    auto pairs = JSON::array();
    for (const auto& option : options)
        pairs.push_back(JSON::array({option.key, option.value}));
    return pairs;
}

std::string printed(const JSON& json) {
    return json.dump(-1, ' ', false, JSON::error_handler_t::replace);
}

} // namespace Ostrel
