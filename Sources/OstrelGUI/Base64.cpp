#include "OstrelGUI/Base64.h"

#include <array>
#include <cstdint>

namespace Ostrel {

namespace {

constexpr std::string_view Alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t NoDigit = 0xff;

constexpr auto Digits = [] {
    std::array<std::uint8_t, 256> digits{};
    digits.fill(NoDigit);
    for (std::size_t i = 0; i < Alphabet.size(); ++i)
        digits[static_cast<unsigned char>(Alphabet[i])] = static_cast<std::uint8_t>(i);
    return digits;
}();

std::uint32_t byteAt(std::string_view bytes, std::size_t position) {
    return position < bytes.size() ? static_cast<unsigned char>(bytes[position]) : 0;
}

} // namespace

void appendBase64(std::string& text, std::string_view bytes) {
    const auto start = text.size();
    text.resize(start + (bytes.size() + 2) / 3 * 4, '=');
    char* out = text.data() + start;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const auto group = byteAt(bytes, i) << 16 | byteAt(bytes, i + 1) << 8 | byteAt(bytes, i + 2);
        const auto count = std::min<std::size_t>(bytes.size() - i, 3);
        for (std::size_t digit = 0; digit <= count; ++digit)
            out[digit] = Alphabet[group >> (18 - 6 * digit) & 63];
        out += 4;
    }
}

std::optional<std::string> decodedBase64(std::string_view text) {
    if (text.size() % 4 != 0)
        return std::nullopt;
    std::size_t padding = 0;
    while (padding < 2 && text.ends_with('=')) {
        text.remove_suffix(1);
        ++padding;
    }
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3 + 2);
    std::uint32_t group = 0;
    int bits = 0;
    for (const char c : text) {
        const auto digit = Digits[static_cast<unsigned char>(c)];
        if (digit == NoDigit)
            return std::nullopt;
        group = group << 6 | digit;
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            bytes += static_cast<char>(group >> bits & 0xff);
        }
    }
    return bytes;
}

} // namespace Ostrel
