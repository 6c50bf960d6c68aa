#pragma once

#include "OstrelEngine/Meters/Text/GlyphPages.h"

#include <array>
#include <cstdint>
#include <memory>

struct FT_FaceRec_;
struct FT_Outline_;

namespace Ostrel {

/// What the renderer adds to the outlines of a face.
struct GlyphSynthesis {
    bool isEmboldened = false;
    bool isSlanted = false;

    /// Of the em, by which a stroke gains width.
    static constexpr double BoldStrength = 1.0 / 24;
    /// To the right for each unit of height.
    static constexpr double Slant = 0.21;

    /// `em` is in the outline's own units.
    void apply(FT_Outline_& outline, double em) const;
};

/// The picture of a glyph. The pixels live until `makeRoom`.
struct GlyphBitmap {
    /// From the glyph's origin to the left and top edge of the picture, y downward.
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    /// Row by row: premultiplied ARGB words of 4 bytes in an emoji, else 1 byte of coverage.
    const std::uint8_t* pixels = nullptr;
    bool isColored = false;
};

/// Glyphs of one face at one size in device pixels, drawn once. Hinted in height only, so that the advances of the
/// unhinted outlines hold.
class GlyphBitmaps {
public:
    /// Places within a pixel at which a glyph may begin.
    static constexpr int Phases = 4;

    GlyphBitmaps(FT_FaceRec_* face, double pixelSize, bool antiAlias, const GlyphSynthesis& synthesis = {});

    double pixelSize() const { return pixelSize_; }
    bool antiAlias() const { return antiAlias_; }
    /// `phase` counts quarters of a pixel to the right, 0 to 3.
    const GlyphBitmap& bitmap(std::uint32_t glyph, int phase);
    /// Drops all pictures when they have become many, as texts in scripts of many characters make them.
    void makeRoom();

private:
    struct Entry {
        bool isRendered = false;
        GlyphBitmap bitmap;
        std::unique_ptr<std::uint8_t[]> pixels;
    };

    void selectSize() const;
    Entry render(std::uint32_t glyph, int phase) const;
    Entry coloredEntry(double scale) const;
    Entry coverageEntry() const;

    FT_FaceRec_* face_;
    double pixelSize_;
    bool antiAlias_;
    GlyphSynthesis synthesis_;
    GlyphPages<std::array<Entry, Phases>> entries_;
    std::size_t pixelBytes_ = 0;
};

} // namespace Ostrel
