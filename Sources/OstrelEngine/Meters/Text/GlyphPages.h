#pragma once

#include <array>
#include <cstdint>
#include <memory>

namespace Ostrel {

/// A value for each glyph of a face, in pages that come when they are needed: a text uses few glyphs of few
/// neighbourhoods, and is looked up glyph by glyph at every change.
template <typename Value> class GlyphPages {
public:
    /// Made by default at its first use. References hold until `clear`. Glyph numbers have 16 bits.
    Value& operator[](std::uint32_t glyph) {
        auto& page = pages_[(glyph >> PageBits) & (PageCount - 1)];
        if (!page)
            page = std::make_unique<Page>();
        return (*page)[glyph & (PageSize - 1)];
    }
    void clear() { pages_ = {}; }

private:
    static constexpr unsigned PageBits = 6;
    static constexpr std::size_t PageSize = 1 << PageBits;
    static constexpr std::size_t PageCount = 65'536 / PageSize;
    using Page = std::array<Value, PageSize>;

    std::array<std::unique_ptr<Page>, PageCount> pages_;
};

} // namespace Ostrel
