#include "OstrelGUI/Window/PreviewCache.h"
#include "OstrelGUI/Window/PreviewDecoder.h"
#include "Support/EventLoop.h"
#include "Support/FakeWidgetLibrary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {

namespace {

constexpr QSize Box(180, 104);

std::shared_ptr<const std::string> filledPNG(int width, int height) {
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(Qt::darkCyan);
    return pngOf(image);
}

void putNumber(std::string& bytes, std::size_t offset, std::uint32_t number) {
    for (std::size_t i = 0; i < 4; ++i)
        bytes[offset + i] = static_cast<char>(number >> (24 - 8 * i));
}

/// As PNG checks its chunks.
std::uint32_t checksum(std::string_view bytes) {
    std::uint32_t sum = 0xffffffff;
    for (const char byte : bytes) {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xedb88320 : 0);
    }
    return ~sum;
}

/// A picture whose header says another size than it has, and is whole otherwise.
std::string withSize(std::string png, std::uint32_t width, std::uint32_t height) {
    constexpr std::size_t Header = 12, HeaderLength = 17;
    putNumber(png, Header + 4, width);
    putNumber(png, Header + 8, height);
    putNumber(png, Header + HeaderLength, checksum(std::string_view(png).substr(Header, HeaderLength)));
    return png;
}

} // namespace

TEST(PreviewDecoder, fitsThePictureIntoItsPlace) {
    EXPECT_EQ(decodePreview(*filledPNG(420, 100), Box).size(), QSize(180, 42));
    EXPECT_EQ(decodePreview(*filledPNG(20, 400), Box).size(), QSize(5, 104));
    EXPECT_EQ(decodePreview(*filledPNG(30, 20), Box).size(), QSize(30, 20)) << "never larger than it is";
}

TEST(PreviewDecoder, refusesWhatIsHostile) {
    const std::string good = *filledPNG(40, 40);
    ASSERT_FALSE(decodePreview(withSize(good, 40, 40), Box).isNull());
    const std::pair<const char*, std::string> cases[] = {
        {"nothing", ""},
        {"no picture", "hello"},
        {"another format", "GIF89a\x01\x01\x01\x01"},
        {"an SVG", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>"},
        {"truncated in its header", good.substr(0, 20)},
        {"a bomb", withSize(good, 60000, 60000)},
        {"wider than allowed", withSize(good, MaximumPreviewSide + 1, 1)},
        {"negative", withSize(good, 0xffffffff, 0xffffffff)},
        {"empty", withSize(good, 0, 40)},
        {"too many bytes", good + std::string(MaximumPreviewBytes, '\0')},
    };
    for (const auto& [name, bytes] : cases)
        EXPECT_TRUE(decodePreview(bytes, Box).isNull()) << name;
}

TEST(PreviewCache, decodesWhatIsWantedAndToldOnce) {
    int told = 0;
    PreviewCache cache([&] { ++told; });
    const auto good = filledPNG(50, 50);
    const auto bad = std::make_shared<const std::string>("broken");
    EXPECT_EQ(cache.find(good, Box), nullptr);
    cache.want({good, bad, nullptr}, Box);
    ASSERT_TRUE(runLoopUntil([&] { return told == 2; }));
    EXPECT_EQ(cache.find(good, Box)->size(), QSize(50, 50));
    ASSERT_NE(cache.find(bad, Box), nullptr);
    EXPECT_TRUE(cache.find(bad, Box)->isNull()) << "known to be none, not asked again";
    EXPECT_EQ(cache.find(good, Box * 2), nullptr) << "decoded for another scale";
}

TEST(PreviewCache, keepsALimitedNumberAndTheRecentOnes) {
    PreviewCache cache([] {});
    constexpr QSize Large(2000, 1000);
    constexpr int MoreThanFit = 10;
    std::vector<PreviewCache::Data> data;
    for (int i = 0; i < MoreThanFit; ++i) {
        data.push_back(filledPNG(Large.width(), Large.height()));
        cache.want({data.back()}, Large);
        ASSERT_TRUE(runLoopUntil([&] { return cache.find(data.back(), Large) != nullptr; }));
        ASSERT_NE(cache.find(data.front(), Large), nullptr) << "used again and again";
    }
    EXPECT_LE(cache.bytes(), PreviewCache::MaximumBytes);
    EXPECT_EQ(cache.find(data[1], Large), nullptr);
}

TEST(PreviewCache, endsWhileItDecodes) {
    for (int i = 0; i < 20; ++i) {
        PreviewCache cache([] { FAIL() << "told after its end"; });
        cache.want({filledPNG(800, 800), filledPNG(800, 801)}, Box);
    }
    QCoreApplication::processEvents();
}

} // namespace Ostrel
