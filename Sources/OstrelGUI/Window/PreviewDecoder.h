#pragma once

#include <QImage>

#include <string_view>

namespace Ostrel {

/// What a picture may be at most to be decoded at all: the bytes come from a store that anybody may have written.
inline constexpr std::size_t MaximumPreviewBytes = 16 << 20;
inline constexpr int MaximumPreviewSide = 4096;

/// A PNG, made smaller where it does not fit `box`, a size in pixels; never larger. A null image when it does not
/// decode. Any thread.
QImage decodePreview(std::string_view bytes, QSize box);

} // namespace Ostrel
