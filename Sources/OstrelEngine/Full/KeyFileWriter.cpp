#include "OstrelEngine/Full/KeyFileWriter.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/TextDecoding.h"
#include "OstrelCore/Files/AtomicFile.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/PackFolders.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

namespace Ostrel::KeyFileWriter {

namespace {

enum class Encoding { UTF8, MarkedUTF8, UTF16Little, UTF16Big, CodePage1252 };

constexpr std::string_view UTF8Mark = "\xEF\xBB\xBF";

Encoding encodingOf(const std::string& bytes, const std::string& text) {
    if (bytes.starts_with("\xFF\xFE") && text != bytes)
        return isValidUTF8(bytes) ? Encoding::UTF8 : Encoding::UTF16Little;
    if (bytes.starts_with("\xFE\xFF"))
        return Encoding::UTF16Big;
    if (bytes.starts_with(UTF8Mark))
        return Encoding::MarkedUTF8;
    return isValidUTF8(bytes) ? Encoding::UTF8 : Encoding::CodePage1252;
}

void appendUnit(std::string& bytes, char32_t unit, Encoding encoding) {
    const auto high = static_cast<char>(unit >> 8U);
    const auto low = static_cast<char>(unit & 0xFFU);
    bytes += encoding == Encoding::UTF16Little ? low : high;
    bytes += encoding == Encoding::UTF16Little ? high : low;
}

std::string encodedUTF16(std::string_view text, Encoding encoding) {
    std::string bytes;
    bytes.reserve(text.size() * 2 + 2);
    appendUnit(bytes, 0xFEFF, encoding);
    for (std::size_t i = 0; i < text.size();) {
        auto [c, length] = decodeCharacter(text, i);
        i += length;
        if (c >= 0x10000) {
            c -= 0x10000;
            appendUnit(bytes, 0xD800 + (c >> 10U), encoding);
            c = 0xDC00 + (c & 0x3FFU);
        }
        appendUnit(bytes, c, encoding);
    }
    return bytes;
}

/// What the code page writes as one byte from 80 to 9F; absent for all others that are not that byte themselves.
std::optional<char> codePageByte(char32_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return static_cast<char>(c);
    for (int byte = 0x80; byte < 0xA0; ++byte) {
        if (decodeCharacter(decodeText(std::string(1, static_cast<char>(byte))), 0).value == c)
            return static_cast<char>(byte);
    }
    return std::nullopt;
}

/// Absent when the code page lacks a character.
std::optional<std::string> encodedCodePage(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size();) {
        const auto [c, length] = decodeCharacter(text, i);
        const auto byte = codePageByte(c);
        if (!byte)
            return std::nullopt;
        bytes += *byte;
        i += length;
    }
    return bytes;
}

std::string encoded(std::string text, Encoding encoding) {
    switch (encoding) {
    case Encoding::UTF16Little:
    case Encoding::UTF16Big:
        return encodedUTF16(text, encoding);
    case Encoding::MarkedUTF8:
        return std::string(UTF8Mark) + text;
    case Encoding::CodePage1252:
        if (auto bytes = encodedCodePage(text); bytes && decodeText(*bytes) == text)
            return std::move(*bytes);
        return text;
    case Encoding::UTF8:
        break;
    }
    return text;
}

/// A line without its end.
struct Line {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t next = 0;
};

Line lineAt(std::string_view text, std::size_t begin) {
    const auto newline = text.find('\n', begin);
    if (newline == std::string_view::npos)
        return {begin, text.size(), text.size()};
    const bool hasReturn = newline > begin && text[newline - 1] == '\r';
    return {begin, newline - (hasReturn ? 1 : 0), newline + 1};
}

std::optional<std::string_view> headOf(std::string_view line) {
    line = trimmed(line);
    const auto close = line.find(']');
    if (!line.starts_with('[') || close == std::string_view::npos)
        return std::nullopt;
    return trimmed(line.substr(1, close - 1));
}

bool hasKey(std::string_view line, std::string_view key) {
    const auto equals = line.find('=');
    return equals != std::string_view::npos && !trimmed(line).starts_with(';')
        && equalsIgnoringCase(trimmed(line.substr(0, equals)), key);
}

std::string editedText(std::string text, std::string_view section, std::string_view key, std::string_view value) {
    const auto firstEnd = text.find('\n');
    const bool hasReturns = firstEnd == std::string::npos ? text.empty() : firstEnd > 0 && text[firstEnd - 1] == '\r';
    const std::string newline = hasReturns ? "\r\n" : "\n";
    const std::string assignment = std::string(key) + "=" + std::string(value);
    bool isInside = false;
    /// Behind the last line of the section that is not empty.
    std::size_t sectionEnd = 0;
    for (std::size_t begin = 0; begin < text.size();) {
        const auto line = lineAt(text, begin);
        const auto content = std::string_view(text).substr(line.begin, line.end - line.begin);
        if (const auto head = headOf(content)) {
            if (isInside)
                break;
            isInside = equalsIgnoringCase(*head, section);
        } else if (isInside && hasKey(content, key)) {
            const auto indent = std::min(content.find_first_not_of(" \t"), content.size());
            return text.replace(line.begin + indent, content.size() - indent, assignment);
        }
        if (isInside && !trimmed(content).empty())
            sectionEnd = line.next;
        begin = line.next;
    }
    const std::string head = isInside ? std::string() : "[" + std::string(section) + "]" + newline;
    const auto place = isInside ? sectionEnd : text.size();
    const bool needsEnd = place > 0 && text[place - 1] != '\n';
    return text.insert(place, (needsEnd ? newline : "") + head + assignment + newline);
}

std::optional<std::string> bytesOf(const std::string& path) {
    std::error_code failed;
    const auto size = std::filesystem::file_size(path, failed);
    if (failed || size > DiskFileProvider::MaxFileSize)
        return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    std::string bytes(size, '\0');
    if (!file.read(bytes.data(), static_cast<std::streamsize>(size)))
        return std::nullopt;
    return bytes;
}

bool isBelow(const std::string& path, const std::string& folder) {
    return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

/// In another pack of the same library: a folder of packs is named so, or the neighbor is one by its resources.
bool isInLibrary(const PackFolders& folders, const std::string& real) {
    std::error_code failed;
    const auto library = std::filesystem::canonical(folders.skins, failed).string();
    if (failed || library == "/" || !isBelow(real, library))
        return false;
    const auto neighborEnd = real.find('/', library.size() + 1);
    if (neighborEnd == std::string::npos)
        return false;
    return equalsIgnoringCase(lastPathComponent(library), "Skins")
        || std::filesystem::is_directory(existingPath(real.substr(0, neighborEnd) + "/@Resources"), failed);
}

bool isOneLine(std::string_view text) {
    return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

} // namespace

std::string edited(const std::string& bytes, std::string_view section, std::string_view key, std::string_view value) {
    auto text = decodeText(bytes);
    const auto encoding = encodingOf(bytes, text);
    return encoded(editedText(std::move(text), section, key, value), encoding);
}

Outcome write(const PackFolders& folders, const std::string& path, std::string_view section, std::string_view key,
    std::string_view value) {
    section = trimmed(section);
    key = trimmed(key);
    const bool isKey = !key.empty() && key.find('=') == std::string_view::npos && key.front() != '['
        && key.front() != ';' && isOneLine(key);
    if (!isKey || section.empty() || section.find(']') != std::string_view::npos || !isOneLine(section)
        || !isOneLine(value) || !isValidUTF8(value))
        return Outcome::Unwritable;
    std::error_code failed;
    const auto real = std::filesystem::canonical(path, failed).string();
    if (failed || !std::filesystem::is_regular_file(real, failed))
        return Outcome::Missing;
    if (!folders.isInPack(real) && !isInLibrary(folders, real))
        return Outcome::Outside;
    const auto bytes = bytesOf(real);
    if (!bytes)
        return Outcome::Failed;
    const auto result = edited(*bytes, section, key, value);
    return result == *bytes || writeFileAtomically(real, result) ? Outcome::Written : Outcome::Failed;
}

} // namespace Ostrel::KeyFileWriter
