#pragma once

#include "OstrelEngine/Meters/Text/Typeface.h"

#include <optional>
#include <string>
#include <string_view>

/// Which face of which file stands for a font that a skin names. Every answer is a face that exists; none is made bold
/// or oblique by force.
namespace Ostrel::FontLookup {

/// 100 (thinnest) to 900 (blackest).
using Weight = int;
constexpr Weight RegularWeight = 400;

struct Request {
    /// A full name, PostScript name or family; empty for the desktop's interface font.
    std::string name;
    /// Of the interface font; a named font has its own.
    Weight weight = RegularWeight;
    bool isBold = false;
    bool isItalic = false;

    friend auto operator<=>(const Request&, const Request&) = default;
};

/// In this order: the exact face, its family, a metric-compatible family, the family `interfaceFamily`. Absent only on
/// a machine without fonts.
std::optional<FaceFile> face(const Request& request, std::string_view interfaceFamily);
/// A face that may draw the characters, in the style of the request; emoji in color where the system can.
std::optional<FaceFile> fallbackFace(std::u32string_view characters, const Request& request, bool isEmoji);

} // namespace Ostrel::FontLookup
