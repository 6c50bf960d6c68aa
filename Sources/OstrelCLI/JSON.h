#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

// What the commands share when they print JSON.
namespace Ostrel {

/// Members keep the order in which they are added.
using JSON = nlohmann::ordered_json;

/// Not a number and the infinities, for which JSON has no number, are the strings "nan", "inf" and "-inf".
JSON jsonNumber(double value);
/// Null when absent.
JSON jsonText(const std::optional<std::string>& text);
/// Pairs of key and value in order.
JSON jsonPairs(const Options& options);

/// On one line, without the line's end; doubles with the fewest digits that read back as the same, bytes that are no
/// UTF-8 as U+FFFD.
std::string printed(const JSON& json);

} // namespace Ostrel
