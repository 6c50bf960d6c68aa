#include "OstrelEngine/Meters/Text/Typeface.h"

#include <hb-ot.h>
#include <hb.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <QPainterPath>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace Ostrel {

namespace {

/// A text that grows or shrinks step by step keeps this many of its sizes.
constexpr std::size_t MostSizes = 6;

hb_blob_t* blobOf(const FaceFile& file) {
    if (!file.isSkinFont)
        return hb_blob_create_from_file_or_fail(file.path.c_str());
    std::ifstream stream(file.path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    return hb_blob_create_or_fail(
        bytes.data(), static_cast<unsigned>(bytes.size()), HB_MEMORY_MODE_DUPLICATE, nullptr, nullptr);
}

hb_font_t* shaperOf(hb_blob_t* bytes, int index, int unitsPerEm) {
    hb_face_t* face = hb_face_create(bytes, static_cast<unsigned>(index) & 0xFFFF);
    hb_font_t* font = hb_font_create(face);
    hb_face_destroy(face);
    hb_ot_font_set_funcs(font);
    hb_font_set_scale(font, unitsPerEm, unitsPerEm);
    if (const auto instance = static_cast<unsigned>(index) >> 16; instance > 0)
        hb_font_set_var_named_instance(font, instance - 1);
    return font;
}

struct OutlineSink {
    QPainterPath& path;
    QPointF origin;
    double scale;

    QPointF at(const FT_Vector* v) const {
        return origin + QPointF(static_cast<double>(v->x), -static_cast<double>(v->y)) * scale;
    }
    static OutlineSink& of(void* user) { return *static_cast<OutlineSink*>(user); }
};

const FT_Outline_Funcs OutlineFunctions = {
    [](const FT_Vector* to, void* user) {
        OutlineSink::of(user).path.moveTo(OutlineSink::of(user).at(to));
        return 0;
    },
    [](const FT_Vector* to, void* user) {
        OutlineSink::of(user).path.lineTo(OutlineSink::of(user).at(to));
        return 0;
    },
    [](const FT_Vector* control, const FT_Vector* to, void* user) {
        const auto& sink = OutlineSink::of(user);
        sink.path.quadTo(sink.at(control), sink.at(to));
        return 0;
    },
    [](const FT_Vector* first, const FT_Vector* second, const FT_Vector* to, void* user) {
        const auto& sink = OutlineSink::of(user);
        sink.path.cubicTo(sink.at(first), sink.at(second), sink.at(to));
        return 0;
    },
    0,
    0,
};

} // namespace

void Typeface::Release::operator()(hb_blob_t* blob) const {
    hb_blob_destroy(blob);
}

void Typeface::Release::operator()(hb_font_t* font) const {
    hb_font_destroy(font);
}

void Typeface::Release::operator()(FT_FaceRec_* face) const {
    FT_Done_Face(face);
}

std::shared_ptr<Typeface> Typeface::open(const FaceFile& file, const std::shared_ptr<FT_LibraryRec_>& library) {
    Blob bytes(blobOf(file));
    if (!bytes)
        return nullptr;
    unsigned length = 0;
    const char* data = hb_blob_get_data(bytes.get(), &length);
    FT_Face opened = nullptr;
    if (FT_New_Memory_Face(library.get(), reinterpret_cast<const FT_Byte*>(data), length, file.index, &opened) != 0)
        return nullptr;
    Face face(opened);
    if (!FT_IS_SFNT(opened) || (!FT_IS_SCALABLE(opened) && opened->num_fixed_sizes == 0))
        return nullptr;
    const int unitsPerEm = opened->units_per_EM > 0 ? opened->units_per_EM : 1000;
    Shaper shaper(shaperOf(bytes.get(), file.index, unitsPerEm));
    return std::shared_ptr<Typeface>(new Typeface(library, std::move(bytes), std::move(face), std::move(shaper), file));
}

Typeface::Typeface(std::shared_ptr<FT_LibraryRec_> library, Blob bytes, Face face, Shaper shaper, const FaceFile& file)
    : library_(std::move(library))
    , bytes_(std::move(bytes))
    , face_(std::move(face))
    , shaper_(std::move(shaper))
    , synthesis_{file.isEmboldened, file.isSlanted} {
    int scale = 0;
    hb_font_get_scale(shaper_.get(), &scale, nullptr);
    unitsPerEm_ = scale;
    hb_font_extents_t extents{};
    hb_font_get_h_extents(shaper_.get(), &extents);
    metrics_.ascent = extents.ascender / unitsPerEm_;
    metrics_.descent = -extents.descender / unitsPerEm_;
    metrics_.leading = extents.line_gap / unitsPerEm_;
    metrics_.underlineOffset = -face_->underline_position / unitsPerEm_;
    metrics_.underlineThickness = face_->underline_thickness / unitsPerEm_;
    hb_position_t strike = 0;
    if (hb_ot_metrics_get_position(shaper_.get(), HB_OT_METRICS_TAG_STRIKEOUT_SIZE, &strike))
        metrics_.strikeThickness = strike / unitsPerEm_;
    if (hb_ot_metrics_get_position(shaper_.get(), HB_OT_METRICS_TAG_STRIKEOUT_OFFSET, &strike))
        metrics_.strikeOffset = strike / unitsPerEm_ - metrics_.strikeThickness / 2;
    else
        metrics_.strikeOffset = metrics_.ascent * 0.3;
    for (char32_t c = 0; c < CommonCharacters; ++c)
        commonCoverage_[c] = hasGlyph(c);
}

Typeface::~Typeface() = default;

bool Typeface::hasGlyph(char32_t c) const {
    hb_codepoint_t glyph = 0;
    return hb_font_get_nominal_glyph(shaper_.get(), c, &glyph);
}

bool Typeface::covers(char32_t c) const {
    return c < CommonCharacters ? commonCoverage_[c] : hasGlyph(c);
}

bool Typeface::hasOutlines() const {
    return FT_IS_SCALABLE(face_.get());
}

const Rect& Typeface::inkBox(std::uint32_t glyph) {
    auto& box = inkBoxes_[glyph];
    if (!box) {
        hb_glyph_extents_t extents{};
        hb_font_get_glyph_extents(shaper_.get(), glyph, &extents);
        box = {extents.x_bearing / unitsPerEm_, -extents.y_bearing / unitsPerEm_, extents.width / unitsPerEm_,
            -extents.height / unitsPerEm_};
        if (synthesis_.isEmboldened)
            box = box->expanded(GlyphSynthesis::BoldStrength);
        if (synthesis_.isSlanted)
            box = box->united(box->translated(-box->minY() * GlyphSynthesis::Slant, 0))
                      .united(box->translated(-box->maxY() * GlyphSynthesis::Slant, 0));
    }
    return *box;
}

void Typeface::addOutline(QPainterPath& path, std::uint32_t glyph, const QPointF& origin, double size) {
    if (FT_Load_Glyph(face_.get(), glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP) != 0)
        return;
    if (face_->glyph->format != FT_GLYPH_FORMAT_OUTLINE)
        return;
    synthesis_.apply(face_->glyph->outline, unitsPerEm_);
    OutlineSink sink{path, origin, size / unitsPerEm_};
    FT_Outline_Decompose(&face_->glyph->outline, &OutlineFunctions, &sink);
    path.closeSubpath();
}

GlyphBitmaps& Typeface::bitmaps(double pixelSize, bool antiAlias) {
    const auto found = std::find_if(sizes_.begin(), sizes_.end(),
        [&](const auto& bitmaps) { return bitmaps->pixelSize() == pixelSize && bitmaps->antiAlias() == antiAlias; });
    if (found != sizes_.end()) {
        std::rotate(sizes_.begin(), found, found + 1);
    } else {
        if (sizes_.size() == MostSizes)
            sizes_.pop_back();
        sizes_.insert(sizes_.begin(), std::make_unique<GlyphBitmaps>(face_.get(), pixelSize, antiAlias, synthesis_));
    }
    return *sizes_.front();
}

} // namespace Ostrel
