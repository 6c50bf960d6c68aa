#include "OstrelCore/Packages/PackageEntryPath.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"

#include <unicode/unistr.h>

#include <algorithm>

namespace Ostrel::PackageEntryPath {

namespace {

bool hasDriveLetter(std::string_view path) {
    return path.size() >= 2 && path[1] == ':' && asciiUpper(path[0]) >= 'A' && asciiUpper(path[0]) <= 'Z';
}

bool startsElsewhere(std::string_view normalized) {
    return normalized.starts_with('/') || hasDriveLetter(normalized);
}

} // namespace

std::string decoded(std::string_view bytes) {
    if (isValidUTF8(bytes))
        return std::string(bytes);
    std::string text;
    icu::UnicodeString(bytes.data(), static_cast<int32_t>(bytes.size()), "ibm-437").toUTF8String(text);
    return text;
}

std::optional<std::string> relativePath(std::string_view name) {
    const std::string normalized = normalizeSeparators(name);
    if (normalized.size() > MaxLength || startsElsewhere(normalized))
        return std::nullopt;
    std::string path;
    std::size_t depth = 0;
    for (const auto component : splitDroppingEmpty(normalized, '/')) {
        if (component == ".")
            continue;
        if (component == ".." || component.size() > MaxComponentLength || ++depth > MaxDepth)
            return std::nullopt;
        if (!path.empty())
            path.push_back('/');
        path.append(component);
    }
    return path;
}

bool isLinkOutside(std::string_view path, std::string_view target) {
    const std::string normalized = normalizeSeparators(target);
    if (startsElsewhere(normalized))
        return true;
    auto depth = std::count(path.begin(), path.end(), '/');
    for (const auto component : splitDroppingEmpty(normalized, '/')) {
        if (component == ".")
            continue;
        depth += component == ".." ? -1 : 1;
        if (depth < 0)
            return true;
    }
    return false;
}

} // namespace Ostrel::PackageEntryPath
