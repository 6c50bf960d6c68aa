#include "OstrelPlatform/Mac/AppleScriptText.h"

#include "OstrelCore/Text/Text.h"

namespace Ostrel {

std::string appleScriptStringLiteral(std::string_view text) {
    return replacingOccurrences(replacingOccurrences(text, "\\", "\\\\"), "\"", "\\\"");
}

} // namespace Ostrel
