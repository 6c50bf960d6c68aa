#include "OstrelEngine/Meters/Text/FontLookup.h"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <vector>

namespace Ostrel::FontLookup {

namespace {

template <auto destroy> struct Release {
    template <typename Thing> void operator()(Thing* thing) const { destroy(thing); }
};
using Pattern = std::unique_ptr<FcPattern, Release<FcPatternDestroy>>;
using FontSet = std::unique_ptr<FcFontSet, Release<FcFontSetDestroy>>;
using ObjectSet = std::unique_ptr<FcObjectSet, Release<FcObjectSetDestroy>>;
using CharSet = std::unique_ptr<FcCharSet, Release<FcCharSetDestroy>>;

const FcChar8* bytes(const char* text) {
    return reinterpret_cast<const FcChar8*>(text);
}

std::string stringOf(FcPattern* pattern, const char* object, int position = 0) {
    FcChar8* text = nullptr;
    if (FcPatternGetString(pattern, object, position, &text) != FcResultMatch)
        return {};
    return reinterpret_cast<const char*>(text);
}

int integerOf(FcPattern* pattern, const char* object, int missing) {
    int value = missing;
    return FcPatternGetInteger(pattern, object, 0, &value) == FcResultMatch ? value : missing;
}

struct Candidate {
    FaceFile file;
    std::string family;
    Weight weight = RegularWeight;
    bool isItalic = false;
    int width = FC_WIDTH_NORMAL;
};

Candidate candidateOf(FcPattern* pattern, bool isSkinFont) {
    Candidate candidate;
    candidate.file = {stringOf(pattern, FC_FILE), integerOf(pattern, FC_INDEX, 0), isSkinFont};
    candidate.family = stringOf(pattern, FC_FAMILY);
    double weight = FC_WEIGHT_REGULAR;
    FcPatternGetDouble(pattern, FC_WEIGHT, 0, &weight);
    candidate.weight = static_cast<Weight>(FcWeightToOpenTypeDouble(weight));
    candidate.isItalic = integerOf(pattern, FC_SLANT, FC_SLANT_ROMAN) != FC_SLANT_ROMAN;
    candidate.width = integerOf(pattern, FC_WIDTH, FC_WIDTH_NORMAL);
    return candidate;
}

Pattern usableFonts() {
    Pattern pattern(FcPatternCreate());
    FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
    // Of a variable font the named instances are listed, which have one weight each.
    FcPatternAddBool(pattern.get(), FC_VARIABLE, FcFalse);
    return pattern;
}

/// Of a kind that can be shaped; fonts of older kinds have twins among these.
bool isShapeable(FcPattern* pattern) {
    const auto format = stringOf(pattern, FC_FONTFORMAT);
    return format == "TrueType" || format == "CFF";
}

void appendMatches(std::vector<Candidate>& candidates, FcSetName set, FcPattern* pattern) {
    FcFontSet* fonts = FcConfigGetFonts(nullptr, set);
    if (!fonts)
        return;
    const ObjectSet objects(FcObjectSetBuild(
        FC_FILE, FC_INDEX, FC_FAMILY, FC_WEIGHT, FC_SLANT, FC_WIDTH, FC_FONTFORMAT, static_cast<const char*>(nullptr)));
    const FontSet matches(FcFontSetList(nullptr, &fonts, 1, pattern, objects.get()));
    for (int i = 0; matches && i < matches->nfont; ++i) {
        if (isShapeable(matches->fonts[i]))
            candidates.push_back(candidateOf(matches->fonts[i], set == FcSetApplication));
    }
}

/// The faces whose property has this value in any case, those that skins brought along first.
std::vector<Candidate> facesWith(const char* object, std::string_view value) {
    const Pattern pattern = usableFonts();
    FcPatternAddString(pattern.get(), object, bytes(std::string(value).c_str()));
    std::vector<Candidate> candidates;
    appendMatches(candidates, FcSetApplication, pattern.get());
    appendMatches(candidates, FcSetSystem, pattern.get());
    return candidates;
}

struct Wanted {
    Weight weight = RegularWeight;
    bool isItalic = false;
    int width = FC_WIDTH_NORMAL;
};

const Candidate* nearest(const std::vector<Candidate>& candidates, const Wanted& wanted) {
    const auto distance = [&](const Candidate& candidate) {
        const int slant = candidate.isItalic == wanted.isItalic ? 0 : 10'000;
        return slant + std::abs(candidate.width - wanted.width) * 20 + std::abs(candidate.weight - wanted.weight);
    };
    const auto best = std::min_element(candidates.begin(), candidates.end(),
        [&](const Candidate& a, const Candidate& b) { return distance(a) < distance(b); });
    return best == candidates.end() ? nullptr : &*best;
}

std::optional<Candidate> nearestOfFamily(std::string_view family, const Wanted& wanted) {
    const auto faces = facesWith(FC_FAMILY, family);
    const auto* found = nearest(faces, wanted);
    return found ? std::optional(*found) : std::nullopt;
}

std::optional<Candidate> exactFace(std::string_view name) {
    for (const auto* object : {FC_POSTSCRIPT_NAME, FC_FULLNAME}) {
        const auto faces = facesWith(object, name);
        if (!faces.empty())
            return faces.front();
    }
    return std::nullopt;
}

/// The first installed family that fontconfig binds to the name as strongly as the name itself, which it does where the
/// metrics are equal.
std::optional<Candidate> metricCompatibleFace(std::string_view name) {
    const Pattern pattern(FcPatternCreate());
    FcPatternAddString(pattern.get(), FC_FAMILY, bytes(std::string(name).c_str()));
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcValue family;
    FcValueBinding binding = FcValueBindingWeak;
    for (int i = 1; FcPatternGetWithBinding(pattern.get(), FC_FAMILY, i, &family, &binding) == FcResultMatch; ++i) {
        if (binding == FcValueBindingWeak || family.type != FcTypeString)
            continue;
        if (auto found = nearestOfFamily(reinterpret_cast<const char*>(family.u.s), {}))
            return found;
    }
    return std::nullopt;
}

Pattern matched(const Pattern& pattern) {
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    return Pattern(FcFontMatch(nullptr, pattern.get(), &result));
}

std::optional<Candidate> interfaceFace(std::string_view family, Weight weight) {
    const Pattern pattern = usableFonts();
    FcPatternAddString(pattern.get(), FC_FAMILY, bytes(std::string(family).c_str()));
    const Pattern match = matched(pattern);
    if (!match)
        return std::nullopt;
    if (auto found = nearestOfFamily(stringOf(match.get(), FC_FAMILY), {weight, false}))
        return found;
    return candidateOf(match.get(), false);
}

std::optional<Candidate> namedFace(std::string_view name) {
    if (auto found = exactFace(name))
        return found;
    if (auto found = nearestOfFamily(name, {}))
        return found;
    return metricCompatibleFace(name);
}

constexpr Weight LightestBold = 600;
constexpr Weight BoldWeight = 700;

/// The face of the same family that has the traits as well; the base where there is none.
Candidate withTraits(const Candidate& base, const Request& request) {
    if (!request.isBold && !request.isItalic)
        return base;
    const bool isItalic = request.isItalic || base.isItalic;
    auto faces = facesWith(FC_FAMILY, base.family);
    std::erase_if(faces, [&](const Candidate& face) {
        return face.isItalic != isItalic || (request.isBold && face.weight < LightestBold);
    });
    const auto* found = nearest(faces, {request.isBold ? std::max(BoldWeight, base.weight) : base.weight, isItalic});
    return found ? *found : base;
}

/// The faces that a name of the full dialect chooses from, and what the name itself says of the style.
struct Family {
    std::vector<Candidate> faces;
    Wanted style;
};

Family familyNamed(std::string_view name) {
    Family family{facesWith(FC_FAMILY, name), {}};
    if (!family.faces.empty())
        return family;
    if (const auto exact = exactFace(name))
        return {facesWith(FC_FAMILY, exact->family), {exact->weight, exact->isItalic, exact->width}};
    if (const auto compatible = metricCompatibleFace(name))
        return {facesWith(FC_FAMILY, compatible->family), {}};
    return family;
}

int widthOfStretch(int stretch) {
    constexpr std::array Widths
        = {FC_WIDTH_ULTRACONDENSED, FC_WIDTH_EXTRACONDENSED, FC_WIDTH_CONDENSED, FC_WIDTH_SEMICONDENSED,
            FC_WIDTH_NORMAL, FC_WIDTH_SEMIEXPANDED, FC_WIDTH_EXPANDED, FC_WIDTH_EXTRAEXPANDED, FC_WIDTH_ULTRAEXPANDED};
    return Widths[static_cast<std::size_t>(std::clamp(stretch, 1, 9) - 1)];
}

} // namespace

std::optional<FaceFile> familyFace(const FamilyRequest& request, std::string_view substituteFamily) {
    auto family = familyNamed(request.name.empty() ? substituteFamily : std::string_view(request.name));
    if (family.faces.empty())
        family = familyNamed(substituteFamily);
    if (family.faces.empty()) {
        const auto any = interfaceFace(substituteFamily, RegularWeight);
        return any ? std::optional(any->file) : std::nullopt;
    }
    auto wanted = family.style;
    wanted.weight = request.weight.value_or(request.isBold ? std::max(BoldWeight, wanted.weight) : wanted.weight);
    wanted.isItalic = wanted.isItalic || request.isItalic;
    if (request.stretch != 5)
        wanted.width = widthOfStretch(request.stretch);
    const auto* found = nearest(family.faces, wanted);
    // One name may stand for a single weight of a larger family.
    if (wanted.weight >= LightestBold && found->weight < LightestBold) {
        for (auto& face : facesWith(FC_FAMILY, std::string(found->family)))
            family.faces.push_back(std::move(face));
        found = nearest(family.faces, wanted);
    }
    FaceFile file = found->file;
    file.isEmboldened = wanted.weight >= LightestBold && found->weight < LightestBold;
    file.isSlanted = wanted.isItalic && !found->isItalic;
    return file;
}

std::optional<FaceFile> face(const Request& request, std::string_view interfaceFamily) {
    auto base = request.name.empty() ? std::nullopt : namedFace(request.name);
    if (!base)
        base = interfaceFace(interfaceFamily, request.weight);
    return base ? std::optional(withTraits(*base, request).file) : std::nullopt;
}

std::optional<FaceFile> fallbackFace(std::u32string_view characters, const Request& request, bool isEmoji) {
    const CharSet wanted(FcCharSetCreate());
    for (const char32_t c : characters)
        FcCharSetAddChar(wanted.get(), c);
    const Pattern pattern = usableFonts();
    FcPatternAddCharSet(pattern.get(), FC_CHARSET, wanted.get());
    if (isEmoji)
        FcPatternAddString(pattern.get(), FC_FAMILY, bytes("emoji"));
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, request.isBold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern.get(), FC_SLANT, request.isItalic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    const Pattern match = matched(pattern);
    return match ? std::optional(candidateOf(match.get(), false).file) : std::nullopt;
}

} // namespace Ostrel::FontLookup
