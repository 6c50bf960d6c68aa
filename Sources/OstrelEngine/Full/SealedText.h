#pragma once

#include <string>
#include <string_view>

/// Data that measures, players, the web or users gave and that an action stores in an option or a variable is never
/// scanned for references again. It is stored sealed: a mark stands before each sign that could begin or end a
/// reference, so that no name matches. The marks fall when the text is finally used.
namespace Ostrel::SealedText {

/// Cannot be typed in a skin file's name of anything.
inline constexpr char Mark = '\x01';

std::string sealed(std::string_view data);
inline bool isSealed(std::string_view text) {
    return text.find(Mark) != std::string_view::npos;
}
/// Without the marks.
std::string opened(std::string text);

} // namespace Ostrel::SealedText
