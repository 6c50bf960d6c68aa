#pragma once

#include "OstrelEngine/Meters/Text/Typeface.h"

#include <compare>
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

/// A font by its family, as skins of the full dialect name it.
struct FamilyRequest {
    /// A family, or family and style as one name.
    std::string name;
    /// 1 to 999; absent for that of the name. It beats `isBold`.
    std::optional<Weight> weight;
    bool isBold = false;
    bool isItalic = false;
    /// 1 (narrowest) to 9, 5 for normal.
    int stretch = 5;

    friend auto operator<=>(const FamilyRequest&, const FamilyRequest&) = default;
};

/// The nearest face of the family, of a metric-compatible one, of `substituteFamily`, or any. What the family lacks of
/// boldness and slant is asked of the renderer. Absent only on a machine without fonts.
std::optional<FaceFile> familyFace(const FamilyRequest& request, std::string_view substituteFamily);

/// In this order: the exact face, its family, a metric-compatible family, the family `interfaceFamily`. Absent only on
/// a machine without fonts.
std::optional<FaceFile> face(const Request& request, std::string_view interfaceFamily);
/// A face that may draw the characters, in the style of the request; emoji in color where the system can.
std::optional<FaceFile> fallbackFace(std::u32string_view characters, const Request& request, bool isEmoji);

} // namespace Ostrel::FontLookup
