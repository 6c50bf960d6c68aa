#pragma once

#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Meters/Text/GlyphBitmaps.h"
#include "OstrelEngine/Meters/Text/GlyphPages.h"

#include <bitset>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QPainterPath;
class QPointF;
struct FT_FaceRec_;
struct FT_LibraryRec_;
struct hb_blob_t;
struct hb_font_t;

namespace Ostrel {

/// Where a face lies: the low 16 bits of the index count the faces of a collection, the high ones the named instances
/// of a variable font from 1.
struct FaceFile {
    std::string path;
    int index = 0;
    /// Read into memory rather than mapped: a skin's files may be rewritten in place while it runs.
    bool isSkinFont = false;
    /// Made by the renderer where the family has no such face.
    bool isEmboldened = false;
    bool isSlanted = false;

    friend bool operator==(const FaceFile&, const FaceFile&) = default;
};

/// A face of a font file, open for shaping and drawing. Lengths are in em, so that they hold at every size. Main
/// thread.
class Typeface {
public:
    struct Metrics {
        double ascent = 0;
        /// Positive.
        double descent = 0;
        double leading = 0;
        /// Middle of the underline, below the baseline.
        double underlineOffset = 0;
        double underlineThickness = 0;
        /// Middle of the line through the letters, above the baseline.
        double strikeOffset = 0;
        double strikeThickness = 0;
    };

    /// Null when the file is no font.
    static std::shared_ptr<Typeface> open(const FaceFile& file, const std::shared_ptr<FT_LibraryRec_>& library);
    ~Typeface();
    Typeface(const Typeface&) = delete;
    Typeface& operator=(const Typeface&) = delete;

    const Metrics& metrics() const { return metrics_; }
    /// Scaled to `unitsPerEm`.
    hb_font_t* shaper() const { return shaper_.get(); }
    double unitsPerEm() const { return unitsPerEm_; }
    bool covers(char32_t c) const;
    /// False for a font of pictures, such as most emoji.
    bool hasOutlines() const;

    /// Around the glyph's origin, y downward.
    const Rect& inkBox(std::uint32_t glyph);
    /// Adds the glyph's outline; a glyph that is a bitmap adds nothing.
    void addOutline(QPainterPath& path, std::uint32_t glyph, const QPointF& origin, double size);
    /// The pictures of one size in device pixels; the least recently used size of several is dropped.
    GlyphBitmaps& bitmaps(double pixelSize, bool antiAlias);

private:
    struct Release {
        void operator()(hb_blob_t* blob) const;
        void operator()(hb_font_t* font) const;
        void operator()(FT_FaceRec_* face) const;
    };
    using Blob = std::unique_ptr<hb_blob_t, Release>;
    using Shaper = std::unique_ptr<hb_font_t, Release>;
    using Face = std::unique_ptr<FT_FaceRec_, Release>;

    Typeface(std::shared_ptr<FT_LibraryRec_> library, Blob bytes, Face face, Shaper shaper, const FaceFile& file);
    bool hasGlyph(char32_t c) const;

    /// Below this the coverage is known without asking the font.
    static constexpr char32_t CommonCharacters = 0x590;

    // In the order in which they need each other.
    std::shared_ptr<FT_LibraryRec_> library_;
    Blob bytes_;
    Face face_;
    Shaper shaper_;
    GlyphSynthesis synthesis_;
    Metrics metrics_;
    double unitsPerEm_ = 1000;
    std::bitset<CommonCharacters> commonCoverage_;
    GlyphPages<std::optional<Rect>> inkBoxes_;
    /// Most recently used first.
    std::vector<std::unique_ptr<GlyphBitmaps>> sizes_;
};

} // namespace Ostrel
