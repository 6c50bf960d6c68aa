#include "OstrelCore/Documents/TextDecoding.h"

#include "OstrelCore/Text/Text.h"

#include <array>
#include <optional>
#include <string_view>

namespace Ostrel {

namespace {

constexpr std::string_view UTF8Mark = "\xEF\xBB\xBF";

enum class ByteOrder { Little, Big };

char16_t codeUnit(std::string_view bytes, std::size_t offset, ByteOrder order) {
    const auto first = static_cast<unsigned char>(bytes[offset]);
    const auto second = static_cast<unsigned char>(bytes[offset + 1]);
    return static_cast<char16_t>(order == ByteOrder::Little ? second << 8 | first : first << 8 | second);
}

/// Absent for an odd number of bytes and for a surrogate without its partner.
std::optional<std::string> decodedUTF16(std::string_view bytes, ByteOrder order) {
    if (bytes.size() % 2 != 0)
        return std::nullopt;
    std::string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
        char32_t c = codeUnit(bytes, i, order);
        if (c >= 0xD800 && c <= 0xDFFF) {
            i += 2;
            const char32_t low = i < bytes.size() ? codeUnit(bytes, i, order) : 0;
            if (c > 0xDBFF || low < 0xDC00 || low > 0xDFFF)
                return std::nullopt;
            c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
        }
        appendCharacter(text, c);
    }
    return text;
}

/// Bytes 80 to 9F; the five that the code page leaves open stay the control characters of their number.
constexpr std::array<char16_t, 32> CodePage1252 = {0x20AC, 0x81, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6,
    0x2030, 0x0160, 0x2039, 0x0152, 0x8D, 0x017D, 0x8F, 0x90, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D, 0x017E, 0x0178};

std::string decodedCodePage1252(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 4);
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        appendCharacter(text, value >= 0x80 && value < 0xA0 ? CodePage1252[value - 0x80U] : char32_t(value));
    }
    return text;
}

} // namespace

std::string decodeText(std::string bytes) {
    if (bytes.starts_with("\xFF\xFE")) {
        if (auto text = decodedUTF16(std::string_view(bytes).substr(2), ByteOrder::Little))
            return std::move(*text);
    } else if (bytes.starts_with("\xFE\xFF")) {
        if (auto text = decodedUTF16(std::string_view(bytes).substr(2), ByteOrder::Big))
            return std::move(*text);
    }
    if (!isValidUTF8(bytes))
        return decodedCodePage1252(bytes);
    if (bytes.starts_with(UTF8Mark))
        bytes.erase(0, UTF8Mark.size());
    return bytes;
}

} // namespace Ostrel
