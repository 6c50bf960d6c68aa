#include "OstrelGUI/Session/Base64.h"

#include <array>
#include <cstdint>

namespace Ostrel {

namespace {

constexpr std::string_view Alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t NoDigit = 0xff;
constexpr std::uint32_t NoGroup = 0xffffffff;

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

/// Four digits as 24 bits; `NoGroup` when one is none.
std::uint32_t groupAt(const char* digits) {
    std::uint32_t group = 0;
    for (int i = 0; i < 4; ++i) {
        const auto digit = Digits[static_cast<unsigned char>(digits[i])];
        if (digit == NoDigit)
            return NoGroup;
        group = group << 6 | digit;
    }
    return group;
}

void writeBytes(std::uint32_t group, int count, char* out) {
    for (int i = 0; i < count; ++i)
        out[i] = static_cast<char>(group >> (16 - 8 * i) & 0xff);
}

} // namespace

void appendBase64(std::string& text, std::string_view bytes) {
    const auto start = text.size();
    text.resize(start + (bytes.size() + 2) / 3 * 4, '=');
    char* out = text.data() + start;
    for (std::size_t i = 0; i < bytes.size(); i += 3, out += 4) {
        const auto group = byteAt(bytes, i) << 16 | byteAt(bytes, i + 1) << 8 | byteAt(bytes, i + 2);
        out[0] = Alphabet[group >> 18 & 63];
        out[1] = Alphabet[group >> 12 & 63];
        if (i + 1 < bytes.size())
            out[2] = Alphabet[group >> 6 & 63];
        if (i + 2 < bytes.size())
            out[3] = Alphabet[group & 63];
    }
}

std::optional<std::string> decodedBase64(std::string_view text) {
    if (text.size() % 4 != 0)
        return std::nullopt;
    if (text.empty())
        return std::string();
    const int padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    std::string bytes(text.size() / 4 * 3 - padding, '\0');
    char* out = bytes.data();
    const char* in = text.data();
    for (const char* const last = in + text.size() - 4; in < last; in += 4, out += 3) {
        const auto group = groupAt(in);
        if (group == NoGroup)
            return std::nullopt;
        writeBytes(group, 3, out);
    }
    char ending[4] = {in[0], in[1], in[2], in[3]};
    for (int i = 0; i < padding; ++i)
        ending[3 - i] = 'A';
    const auto group = groupAt(ending);
    if (group == NoGroup)
        return std::nullopt;
    writeBytes(group, 3 - padding, out);
    return bytes;
}

} // namespace Ostrel
