#include "OstrelEngine/Meters/Text/GlyphBitmaps.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <QImage>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Ostrel {

namespace {

constexpr std::size_t MostPixelBytes = 4 << 20;
/// No glyph of an honest font comes near it; a hostile one may claim any extent.
constexpr double MostPixelsOfAGlyph = 4 << 20;

std::size_t byteCount(const GlyphBitmap& bitmap) {
    const auto pixels = static_cast<std::size_t>(bitmap.width) * static_cast<std::size_t>(bitmap.height);
    return pixels * (bitmap.isColored ? 4 : 1);
}

/// The strike whose size is nearest to the wanted one from above, or else the largest.
int nearestStrike(FT_Face face, double pixelSize) {
    int best = 0;
    for (int i = 1; i < face->num_fixed_sizes; ++i) {
        const double size = static_cast<double>(face->available_sizes[i].y_ppem) / 64;
        const double bestSize = static_cast<double>(face->available_sizes[best].y_ppem) / 64;
        const bool isBetter = bestSize < pixelSize ? size > bestSize : size >= pixelSize && size < bestSize;
        best = isBetter ? i : best;
    }
    return best;
}

FT_Int32 loadFlags(FT_Face face, bool antiAlias) {
    FT_Int32 flags = antiAlias ? FT_LOAD_TARGET_LIGHT : FT_LOAD_TARGET_MONO;
    if (FT_HAS_COLOR(face))
        flags |= FT_LOAD_COLOR;
    else if (FT_IS_SCALABLE(face))
        flags |= FT_LOAD_NO_BITMAP;
    return flags;
}

std::uint8_t coverageAt(const FT_Bitmap& bitmap, const std::uint8_t* row, unsigned x) {
    if (bitmap.pixel_mode == FT_PIXEL_MODE_MONO)
        return (row[x / 8] & (0x80 >> (x % 8))) ? 255 : 0;
    return row[x];
}

const std::uint8_t* rowOf(const FT_Bitmap& bitmap, unsigned y) {
    // With a negative pitch the buffer begins with the last row.
    const auto* first
        = bitmap.pitch < 0 ? bitmap.buffer - bitmap.pitch * (static_cast<int>(bitmap.rows) - 1) : bitmap.buffer;
    return first + static_cast<std::ptrdiff_t>(y) * bitmap.pitch;
}

bool isReasonable(FT_Outline& outline) {
    FT_BBox box{};
    FT_Outline_Get_CBox(&outline, &box);
    const double width = static_cast<double>(box.xMax - box.xMin) / 64;
    const double height = static_cast<double>(box.yMax - box.yMin) / 64;
    return width * height <= MostPixelsOfAGlyph;
}

} // namespace

void GlyphSynthesis::apply(FT_Outline_& outline, double em) const {
    if (isEmboldened) {
        const auto strength = static_cast<FT_Pos>(std::lround(em * BoldStrength));
        FT_Outline_Embolden(&outline, strength);
        FT_Outline_Translate(&outline, -strength / 2, -strength / 2);
    }
    if (isSlanted) {
        const FT_Matrix shear{0x10000, static_cast<FT_Fixed>(Slant * 0x10000), 0, 0x10000};
        FT_Outline_Transform(&outline, &shear);
    }
}

GlyphBitmaps::GlyphBitmaps(FT_FaceRec_* face, double pixelSize, bool antiAlias, const GlyphSynthesis& synthesis)
    : face_(face)
    , pixelSize_(pixelSize)
    , antiAlias_(antiAlias)
    , synthesis_(synthesis) { }

const GlyphBitmap& GlyphBitmaps::bitmap(std::uint32_t glyph, int phase) {
    Entry& entry = entries_[glyph][static_cast<std::size_t>(phase)];
    if (!entry.isRendered) {
        entry = render(glyph, phase);
        entry.isRendered = true;
        entry.bitmap.pixels = entry.pixels.get();
        pixelBytes_ += byteCount(entry.bitmap);
    }
    return entry.bitmap;
}

void GlyphBitmaps::makeRoom() {
    if (pixelBytes_ <= MostPixelBytes)
        return;
    entries_.clear();
    pixelBytes_ = 0;
}

void GlyphBitmaps::selectSize() const {
    if (FT_IS_SCALABLE(face_))
        FT_Set_Char_Size(face_, 0, static_cast<FT_F26Dot6>(std::lround(pixelSize_ * 64)), 72, 72);
    else if (face_->num_fixed_sizes > 0)
        FT_Select_Size(face_, nearestStrike(face_, pixelSize_));
}

GlyphBitmaps::Entry GlyphBitmaps::render(std::uint32_t glyph, int phase) const {
    selectSize();
    if (FT_Load_Glyph(face_, glyph, loadFlags(face_, antiAlias_)) != 0)
        return {};
    const auto slot = face_->glyph;
    if (slot->format == FT_GLYPH_FORMAT_OUTLINE) {
        synthesis_.apply(slot->outline, pixelSize_ * 64);
        if (!isReasonable(slot->outline))
            return {};
        if (antiAlias_)
            FT_Outline_Translate(&slot->outline, phase * 64 / Phases, 0);
        if (FT_Render_Glyph(slot, antiAlias_ ? FT_RENDER_MODE_NORMAL : FT_RENDER_MODE_MONO) != 0)
            return {};
    }
    if (slot->format != FT_GLYPH_FORMAT_BITMAP || !slot->bitmap.buffer)
        return {};
    const double strike = FT_IS_SCALABLE(face_) ? pixelSize_ : static_cast<double>(face_->size->metrics.y_ppem);
    if (slot->bitmap.pixel_mode == FT_PIXEL_MODE_BGRA)
        return coloredEntry(strike > 0 ? pixelSize_ / strike : 1);
    return coverageEntry();
}

GlyphBitmaps::Entry GlyphBitmaps::coloredEntry(double scale) const {
    const auto& bitmap = face_->glyph->bitmap;
    const auto scaledLength
        = [&](unsigned length) { return std::max(1, static_cast<int>(std::lround(length * scale))); };
    const QImage strike(rowOf(bitmap, 0), static_cast<int>(bitmap.width), static_cast<int>(bitmap.rows), bitmap.pitch,
        QImage::Format_ARGB32_Premultiplied);
    const QImage picture = strike
                               .scaled(scaledLength(bitmap.width), scaledLength(bitmap.rows), Qt::IgnoreAspectRatio,
                                   Qt::SmoothTransformation)
                               .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    Entry entry;
    entry.bitmap.left = static_cast<int>(std::lround(face_->glyph->bitmap_left * scale));
    entry.bitmap.top = -static_cast<int>(std::lround(face_->glyph->bitmap_top * scale));
    entry.bitmap.width = picture.width();
    entry.bitmap.height = picture.height();
    entry.bitmap.isColored = true;
    entry.pixels = std::make_unique<std::uint8_t[]>(byteCount(entry.bitmap));
    const auto rowBytes = static_cast<std::size_t>(picture.width()) * 4;
    for (int y = 0; y < picture.height(); ++y)
        std::memcpy(entry.pixels.get() + rowBytes * static_cast<std::size_t>(y), picture.constScanLine(y), rowBytes);
    return entry;
}

GlyphBitmaps::Entry GlyphBitmaps::coverageEntry() const {
    const auto& bitmap = face_->glyph->bitmap;
    Entry entry;
    if (bitmap.pixel_mode != FT_PIXEL_MODE_GRAY && bitmap.pixel_mode != FT_PIXEL_MODE_MONO)
        return entry;
    entry.bitmap.left = face_->glyph->bitmap_left;
    entry.bitmap.top = -face_->glyph->bitmap_top;
    entry.bitmap.width = static_cast<int>(bitmap.width);
    entry.bitmap.height = static_cast<int>(bitmap.rows);
    entry.pixels = std::make_unique<std::uint8_t[]>(byteCount(entry.bitmap));
    auto* to = entry.pixels.get();
    for (unsigned y = 0; y < bitmap.rows; ++y) {
        for (unsigned x = 0; x < bitmap.width; ++x)
            *to++ = coverageAt(bitmap, rowOf(bitmap, y), x);
    }
    return entry;
}

} // namespace Ostrel
