#include "OstrelCore/Text/CaseInsensitiveDictionary.h"

namespace Ostrel::CaseFolding {

std::uint32_t hash(std::string_view key) {
    std::uint32_t result = HashSeed;
    for (const char c : key) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            result = HashSeed;
            for (const char upper : upperCased(key))
                result = step(result, upper);
            return result;
        }
        result = step(result, asciiUpper(c));
    }
    return result;
}

} // namespace Ostrel::CaseFolding
