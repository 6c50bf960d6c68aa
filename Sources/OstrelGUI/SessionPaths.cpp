#include "OstrelGUI/SessionPaths.h"

#include "OstrelCore/Files/FolderTree.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"

#include <filesystem>
#include <optional>

namespace Ostrel {

namespace {

using Components = std::vector<std::string_view>;

int hexadecimalDigit(char c) {
    if (isASCIIDigit(c))
        return c - '0';
    c = asciiUpper(c);
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

std::string percentDecoded(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape = text[i] == '%' && i + 2 < text.size();
        const int high = isEscape ? hexadecimalDigit(text[i + 1]) : -1;
        const int low = isEscape ? hexadecimalDigit(text[i + 2]) : -1;
        if (high >= 0 && low >= 0) {
            result += static_cast<char>(high << 4 | low);
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

/// The path that a "file:" URL names; absent for any other text.
std::optional<std::string> pathOfFileURL(std::string_view text) {
    constexpr std::string_view Scheme = "FILE:";
    if (!hasPrefixIgnoringCase(text, Scheme))
        return std::nullopt;
    text.remove_prefix(Scheme.size());
    if (text.starts_with("//")) {
        text.remove_prefix(2);
        const auto path = text.find('/');
        text = path == std::string_view::npos ? std::string_view() : text.substr(path);
    }
    return percentDecoded(text.substr(0, text.find_first_of("?#")));
}

/// How many components lead to the last "Skins" and beyond it to the pack; absent without a component behind it.
std::optional<std::size_t> countToPack(const Components& components) {
    for (auto i = components.size(); i-- > 0;) {
        if (equalsIgnoringCase(components[i], "SKINS"))
            return i + 1 < components.size() ? std::optional(i + 2) : std::nullopt;
    }
    return std::nullopt;
}

std::string joined(std::span<const std::string_view> components, std::string_view start) {
    std::string result;
    for (const auto component : components)
        result.append(result.empty() ? start : "/").append(component);
    return result;
}

bool isFolder(const std::string& path) {
    std::error_code failed;
    return std::filesystem::is_directory(path, failed);
}

} // namespace

std::string normalizeSkinPath(std::string_view text) {
    text = trimmed(text);
    if (text.empty())
        return {};
    return standardizedPath(pathOfFileURL(text).value_or(std::string(text)));
}

PackageInfo packageInfoForPath(std::string_view path) {
    const auto components = splitDroppingEmpty(path, '/');
    if (const auto count = countToPack(components))
        return {std::string(components[*count - 1]), joined(std::span(components).subspan(*count), "")};
    const auto folder = lastPathComponent(deletingLastPathComponent(path));
    return {folder.empty() ? "Unknown Package" : folder, lastPathComponent(path)};
}

std::string packageRootPath(std::string_view text) {
    const auto path = standardizedPath(text);
    const auto components = splitDroppingEmpty(path, '/');
    if (const auto count = countToPack(components))
        return joined(std::span(components).first(*count), "/");
    return deletingLastPathComponent(path);
}

std::set<std::string> SkinPacks::withRelated(std::span<const std::string> paths) {
    std::set<std::string> result;
    for (const auto& path : paths) {
        const auto normalized = normalizeSkinPath(path);
        if (normalized.empty())
            continue;
        result.insert(normalized);
        addRelated(normalized, result);
    }
    return result;
}

void SkinPacks::addRelated(const std::string& path, std::set<std::string>& result) {
    const auto components = splitDroppingEmpty(path, '/');
    const auto count = countToPack(components);
    if (!count || *count == components.size())
        return;
    const auto root = joined(std::span(components).first(*count), "/");
    if (!readRoots_.insert(root).second || !isFolder(root))
        return;
    forEachEntryBelow(root, [&](std::string_view entry) {
        if (equalsIgnoringCase(pathExtension(entry), "INI"))
            result.insert(appendingPathComponent(root, entry));
    });
}

} // namespace Ostrel
