#pragma once

#include "OstrelGUI/Window/SymbolIcons.h"

#include <span>
#include <string_view>

/// What the media player page tells about players.
namespace Ostrel::MediaPlayerTexts {

struct Section {
    std::string_view title;
    Symbol symbol = Symbol::none;
    std::span<const std::string_view> items;
};

extern const std::string_view DefaultSubtitle;
extern const std::string_view MusicSubtitle;
extern const std::string_view SpotifySubtitle;
extern const std::string_view CustomSubtitle;

std::span<const Section> sections();

} // namespace Ostrel::MediaPlayerTexts
