#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// What one measure takes of a page. Parents stand before their children.
struct WebPart {
    /// Of the measure.
    std::string name;
    /// Empty: the captures are those of the parent.
    std::string pattern = {};
    int index = 0;
    int index2 = 0;
    /// 1 numeric and named, 2 numeric, 3 named.
    int decodedReferences = 0;
    bool decodesCodePoints = false;
    /// Of the measure that the captures come from; absent for the page's own.
    std::optional<std::size_t> parent = {};

    // Results.

    std::string text = {};
    /// The pattern did not compile or match.
    bool hasFailed = false;
    /// There is no such capture.
    bool isMissing = false;
    /// With an own pattern, or for a page without one: what its children choose from.
    std::vector<std::string> captures = {};
    std::string error = {};
};

/// A page cut into parts: plain data, so that a worker can do it.
namespace WebPage {

/// The bytes as UTF-8: by their mark, else as the code page with this number, else (0) UTF-8 or code page 1252.
std::string decoded(std::string bytes, int codePage);
/// Matches each pattern once and fills the results.
void take(std::string_view page, std::vector<WebPart>& parts);
/// "&amp;", "&#38;", "&#x26;".
std::string withoutReferences(std::string_view text, int mode);
/// "\u0041", "\U00000041"; surrogate pairs are joined.
std::string withoutCodePoints(std::string_view text);
/// Percent-encodes what an address may not hold, behind the host.
std::string encodedAddress(std::string_view url);
/// The host of an http or https address in lower case, without user and port; empty for what is none.
std::string hostOf(std::string_view url);

} // namespace WebPage

} // namespace Ostrel
