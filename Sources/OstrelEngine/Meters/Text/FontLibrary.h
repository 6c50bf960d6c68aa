#pragma once

#include "OstrelEngine/Meters/Text/FontLookup.h"
#include "OstrelEngine/Meters/Text/Typeface.h"

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>

struct hb_buffer_t;

namespace Ostrel {

/// The faces that this process has open, one for each face however many texts use it. Main thread.
class FontLibrary {
public:
    static FontLibrary& shared();
    ~FontLibrary();

    /// Null only on a machine without fonts. Closed when nobody holds it any longer.
    std::shared_ptr<Typeface> typeface(const FontLookup::Request& request);
    /// The same for a font of the full dialect; Arial or its like stands in for a family that is missing.
    std::shared_ptr<Typeface> familyTypeface(const FontLookup::FamilyRequest& request);
    /// A face that covers all the characters, which `request`'s own does not; null when there is none.
    std::shared_ptr<Typeface> fallback(
        std::u32string_view characters, const FontLookup::Request& request, bool isEmoji);

    /// Emptied for the next user; shaping needs one at a time.
    hb_buffer_t* shapingBuffer();

private:
    struct FallbackKey {
        std::u32string characters;
        bool isBold = false;
        bool isItalic = false;
        bool isEmoji = false;

        friend auto operator<=>(const FallbackKey&, const FallbackKey&) = default;
    };
    struct FileOrder {
        bool operator()(const FaceFile& a, const FaceFile& b) const {
            return std::tie(a.path, a.index, a.isEmboldened, a.isSlanted)
                < std::tie(b.path, b.index, b.isEmboldened, b.isSlanted);
        }
    };

    FontLibrary();
    std::shared_ptr<Typeface> open(const FaceFile& file);
    void forgetLookupsOfOldFonts();

    std::shared_ptr<FT_LibraryRec_> freetype_;
    hb_buffer_t* buffer_;
    std::map<FaceFile, std::weak_ptr<Typeface>, FileOrder> open_;
    std::map<FontLookup::Request, std::weak_ptr<Typeface>> lookups_;
    std::map<FontLookup::FamilyRequest, std::weak_ptr<Typeface>> familyLookups_;
    /// Null for characters that no font has.
    std::map<FallbackKey, std::shared_ptr<Typeface>> fallbacks_;
    /// The fonts of skins that the lookups knew of.
    std::uint64_t fontsRevision_ = 0;
};

} // namespace Ostrel
