#include "OstrelEngine/Meters/Text/FontLibrary.h"
#include "OstrelEngine/Meters/Text/TextLine.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel::TextShaper {

namespace {

/// A text that is spaced apart shows its letters one by one.
constexpr std::array<hb_feature_t, 2> SpacedFeatures = {{
    {HB_TAG('l', 'i', 'g', 'a'), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END},
    {HB_TAG('c', 'l', 'i', 'g'), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END},
}};

struct ShapedRun {
    const hb_glyph_info_t* infos = nullptr;
    const hb_glyph_position_t* positions = nullptr;
    unsigned count = 0;

    /// The last glyph of a character, or of several that became one.
    bool endsCluster(unsigned i) const { return i + 1 == count || infos[i + 1].cluster != infos[i].cluster; }
};

/// Valid until the next run is shaped.
ShapedRun shapeRun(std::u16string_view text, const TextRun& run, std::span<const hb_feature_t> features) {
    hb_buffer_t* buffer = FontLibrary::shared().shapingBuffer();
    hb_buffer_add_utf16(buffer, reinterpret_cast<const uint16_t*>(text.data()), static_cast<int>(text.size()),
        static_cast<unsigned>(run.start), static_cast<int>(run.length));
    hb_buffer_set_direction(buffer, run.isRightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb_buffer_set_script(buffer, run.script);
    hb_buffer_set_language(buffer, hb_language_get_default());
    hb_shape(run.typeface->shaper(), buffer, features.data(), static_cast<unsigned>(features.size()));
    ShapedRun shaped;
    shaped.infos = hb_buffer_get_glyph_infos(buffer, &shaped.count);
    shaped.positions = hb_buffer_get_glyph_positions(buffer, &shaped.count);
    return shaped;
}

std::span<const hb_feature_t> featuresOf(const TextSetting& setting) {
    return setting.spacing != 0 ? std::span<const hb_feature_t>(SpacedFeatures) : std::span<const hb_feature_t>();
}

void takeInMetrics(TextLine& line, const Typeface::Metrics& metrics, double size) {
    line.ascent = std::max(line.ascent, metrics.ascent * size);
    line.descent = std::max(line.descent, metrics.descent * size);
    line.leading = std::max(line.leading, metrics.leading * size);
}

void appendRun(TextLine& line, const ShapedRun& shaped, const TextRun& run, const TextSetting& setting) {
    const double unit = setting.size / run.typeface->unitsPerEm();
    for (unsigned i = 0; i < shaped.count; ++i) {
        const auto& position = shaped.positions[i];
        const PlacedGlyph glyph{shaped.infos[i].codepoint, static_cast<float>(line.width + position.x_offset * unit),
            static_cast<float>(-position.y_offset * unit)};
        takeInInk(line, *run.typeface, glyph, setting.size);
        line.glyphs.push_back(glyph);
        line.width += position.x_advance * unit + (shaped.endsCluster(i) ? setting.spacing : 0);
    }
    if (line.spans.empty() || line.spans.back().typeface != run.typeface)
        line.spans.push_back({run.typeface, 0});
    line.spans.back().end = line.glyphs.size();
    takeInMetrics(line, run.typeface->metrics(), setting.size);
}

} // namespace

void takeInInk(TextLine& line, Typeface& typeface, const PlacedGlyph& glyph, double size) {
    const Rect& box = typeface.inkBox(glyph.glyph);
    if (box.isEmpty())
        return;
    const Rect ink{glyph.x + box.x * size, glyph.y + box.y * size, box.width * size, box.height * size};
    line.ink = line.ink.isEmpty() ? ink : line.ink.united(ink);
}

TextLine shape(std::u16string_view text, const TextSetting& setting, TextDirection direction) {
    TextLine line;
    line.glyphs.reserve(text.size());
    for (const auto& run : TextRuns::visualRuns(text, setting.font, direction))
        appendRun(line, shapeRun(text, run, featuresOf(setting)), run, setting);
    if (line.spans.empty())
        takeInMetrics(line, setting.font.typeface->metrics(), setting.size);
    return line;
}

std::vector<double> advances(std::u16string_view text, const TextSetting& setting, TextDirection direction) {
    std::vector<double> result(text.size(), 0);
    for (const auto& run : TextRuns::visualRuns(text, setting.font, direction)) {
        const double unit = setting.size / run.typeface->unitsPerEm();
        const auto shaped = shapeRun(text, run, featuresOf(setting));
        for (unsigned i = 0; i < shaped.count; ++i)
            result[shaped.infos[i].cluster]
                += shaped.positions[i].x_advance * unit + (shaped.endsCluster(i) ? setting.spacing : 0);
    }
    return result;
}

ShapedText glyphs(std::u16string_view text, const TextSetting& setting, TextDirection direction, bool isSpaced,
    std::span<const TextFeature> features) {
    std::vector<hb_feature_t> wanted;
    if (isSpaced)
        wanted.assign(SpacedFeatures.begin(), SpacedFeatures.end());
    for (const auto& feature : features)
        wanted.push_back({feature.tag, feature.value, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END});
    ShapedText result{TextRuns::visualRuns(text, setting.font, direction), {}};
    result.glyphs.reserve(text.size());
    for (std::uint32_t number = 0; number < result.runs.size(); ++number) {
        const auto& run = result.runs[number];
        const double unit = setting.size / run.typeface->unitsPerEm();
        const auto shaped = shapeRun(text, run, wanted);
        for (unsigned i = 0; i < shaped.count; ++i) {
            const auto& position = shaped.positions[i];
            result.glyphs.push_back({shaped.infos[i].codepoint, number, shaped.infos[i].cluster, shaped.endsCluster(i),
                position.x_advance * unit, position.x_offset * unit, -position.y_offset * unit});
        }
    }
    return result;
}

} // namespace Ostrel::TextShaper
