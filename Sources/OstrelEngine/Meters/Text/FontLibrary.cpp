#include "OstrelEngine/Meters/Text/FontLibrary.h"

#include "OstrelEngine/Meters/Text/FontRegistry.h"

#include <hb.h>

#include <ft2build.h>
#include FT_FREETYPE_H

#include <QFont>
#include <QGuiApplication>

#include <algorithm>
#include <string>

namespace Ostrel {

namespace {

constexpr std::size_t MostFallbacks = 256;

std::shared_ptr<FT_LibraryRec_> openFreeType() {
    FT_Library library = nullptr;
    FT_Init_FreeType(&library);
    return {library, [](FT_Library opened) { FT_Done_FreeType(opened); }};
}

/// Without an application, as in tools that only measure, the system's default.
std::string interfaceFamily() {
    return qGuiApp ? QGuiApplication::font().family().toStdString() : std::string("sans-serif");
}

bool coversAll(const Typeface& typeface, std::u32string_view characters) {
    return std::all_of(characters.begin(), characters.end(), [&](char32_t c) { return typeface.covers(c); });
}

} // namespace

FontLibrary& FontLibrary::shared() {
    static FontLibrary library;
    return library;
}

FontLibrary::FontLibrary()
    : freetype_(openFreeType())
    , buffer_(hb_buffer_create()) { }

FontLibrary::~FontLibrary() {
    hb_buffer_destroy(buffer_);
}

std::shared_ptr<Typeface> FontLibrary::typeface(const FontLookup::Request& request) {
    forgetLookupsOfOldFonts();
    if (const auto known = lookups_.find(request); known != lookups_.end()) {
        if (auto typeface = known->second.lock())
            return typeface;
    }
    std::erase_if(lookups_, [](const auto& entry) { return entry.second.expired(); });
    const auto file = FontLookup::face(request, interfaceFamily());
    auto typeface = file ? open(*file) : nullptr;
    if (typeface)
        lookups_[request] = typeface;
    return typeface;
}

std::shared_ptr<Typeface> FontLibrary::familyTypeface(const FontLookup::FamilyRequest& request) {
    forgetLookupsOfOldFonts();
    if (const auto known = familyLookups_.find(request); known != familyLookups_.end()) {
        if (auto typeface = known->second.lock())
            return typeface;
    }
    std::erase_if(familyLookups_, [](const auto& entry) { return entry.second.expired(); });
    const auto file = FontLookup::familyFace(request, "Arial");
    auto typeface = file ? open(*file) : nullptr;
    if (typeface)
        familyLookups_[request] = typeface;
    return typeface;
}

std::shared_ptr<Typeface> FontLibrary::fallback(
    std::u32string_view characters, const FontLookup::Request& request, bool isEmoji) {
    forgetLookupsOfOldFonts();
    FallbackKey key{std::u32string(characters), request.isBold, request.isItalic, isEmoji};
    if (const auto known = fallbacks_.find(key); known != fallbacks_.end())
        return known->second;
    if (fallbacks_.size() >= MostFallbacks)
        fallbacks_.clear();
    const auto file = FontLookup::fallbackFace(characters, request, isEmoji);
    auto found = file ? open(*file) : nullptr;
    if (found && !coversAll(*found, characters))
        found = nullptr;
    fallbacks_.emplace(std::move(key), found);
    return found;
}

hb_buffer_t* FontLibrary::shapingBuffer() {
    hb_buffer_clear_contents(buffer_);
    return buffer_;
}

std::shared_ptr<Typeface> FontLibrary::open(const FaceFile& file) {
    if (const auto known = open_.find(file); known != open_.end()) {
        if (auto typeface = known->second.lock())
            return typeface;
    }
    std::erase_if(open_, [](const auto& entry) { return entry.second.expired(); });
    auto typeface = Typeface::open(file, freetype_);
    if (typeface)
        open_[file] = typeface;
    return typeface;
}

void FontLibrary::forgetLookupsOfOldFonts() {
    if (fontsRevision_ == FontRegistry::revision())
        return;
    fontsRevision_ = FontRegistry::revision();
    lookups_.clear();
    familyLookups_.clear();
    fallbacks_.clear();
}

} // namespace Ostrel
