#include "OstrelEngine/Players/MediaPlayerPayload.h"

#include <gtest/gtest.h>

#include <string>

namespace Ostrel {
namespace {

using MediaPlayerPayload::parseJSONState;
using MediaPlayerPayload::parseLegacyDelimitedState;

constexpr std::int64_t Largest = 9223372036854775807;

TEST(MediaPlayerPayloadTests, readsEveryField) {
    MediaPlayerState expected{.artist = "A \"quoted\"\nartist",
        .title = "\u202eT",
        .album = "Al",
        .genre = "G",
        .lyrics = "la|~|la",
        .duration = 200,
        .position = 61,
        .progress = 30,
        .state = 2,
        .status = 1,
        .volume = 55,
        .shuffle = 1,
        .repeatMode = 1,
        .rating = 4,
        .coverArtPath = "/c.jpg",
        .filePath = "/f.mp3",
        .trackNumber = 7,
        .year = 1999,
        .trackIdentifier = "id"};
    EXPECT_EQ(parseJSONState(R"({"artist":"A \"quoted\"\nartist","title":"\u202eT","album":"Al","genre":"G",
        "lyrics":"la|~|la","duration":"200","position":"61","progress":"30","state":"2","volume":"55","shuffle":"1",
        "repeatMode":"2","rating":"4","coverArtPath":"/c.jpg","filePath":"/f.mp3","trackNumber":"7","year":"1999",
        "trackIdentifier":"id"})"),
        expected);
    expected.artist = "A";
    expected.title = "T";
    expected.lyrics = "la";
    expected.repeatMode = 2; // this form is not held to a range
    EXPECT_EQ(parseLegacyDelimitedState(
                  "A|~|T|~|Al|~|G|~|200|~|61|~|30|~|2|~|55|~|1|~|2|~|7|~|1999|~|4|~|/c.jpg|~|/f.mp3|~|la|~|id"),
        expected);
}

TEST(MediaPlayerPayloadTests, holdsNumbersToTheirRange) {
    const struct {
        const char* value;
        double duration, progress, volume;
        std::int64_t state, shuffle, rating, year;
    } rows[] = {
        {R"("7")", 7, 7, 7, 2, 1, 5, 7},
        {R"("-1")", 0, 0, 0, 0, 1, 0, 0},
        {R"("3,5")", 3.5, 3.5, 3.5, 2, 1, 3, 3},
        {R"(" 1.9 ")", 1.9, 1.9, 1.9, 1, 1, 1, 1},
        {R"("101")", 101, 100, 100, 2, 1, 5, 101},
        {"0.5", 0.5, 0.5, 0.5, 0, 0, 0, 0},
        {"2", 2, 2, 2, 2, 1, 2, 2},
        {"true", 1, 1, 1, 1, 1, 1, 1},
        {"1e30", 1e30, 100, 100, 2, 1, 5, Largest},
        {R"("99999999999999999999")", 1e20, 100, 100, 2, 1, 5, Largest},
        {R"("inf")", 0, 0, 0, 0, 0, 0, 0},
        {R"("nan")", 0, 0, 0, 0, 0, 0, 0},
        {R"("1e999")", 0, 0, 0, 0, 0, 0, 0},
        {R"("")", 0, 0, 0, 0, 0, 0, 0},
        {R"("1,2,3")", 0, 0, 0, 0, 0, 0, 0},
        {"null", 0, 0, 0, 0, 0, 0, 0},
        {"[1]", 0, 0, 0, 0, 0, 0, 0},
        {R"({"a":1})", 0, 0, 0, 0, 0, 0, 0},
    };
    for (const auto& row : rows) {
        std::string text = "{\"artist\":\"x\"";
        for (const char* key : {"duration", "progress", "volume", "state", "shuffle", "rating", "year"})
            text += std::string(",\"") + key + "\":" + row.value;
        const auto state = parseJSONState(text + "}");
        ASSERT_TRUE(state) << row.value;
        EXPECT_DOUBLE_EQ(state->duration, row.duration) << row.value;
        EXPECT_DOUBLE_EQ(state->progress, row.progress) << row.value;
        EXPECT_DOUBLE_EQ(state->volume, row.volume) << row.value;
        EXPECT_EQ(state->state, row.state) << row.value;
        EXPECT_EQ(state->shuffle, row.shuffle) << row.value;
        EXPECT_EQ(state->rating, row.rating) << row.value;
        EXPECT_EQ(state->year, row.year) << row.value;
    }
}

TEST(MediaPlayerPayloadTests, derivesAProgressThatIsNotTold) {
    const struct {
        const char* text;
        double progress;
    } rows[] = {
        {R"({"progress":"0","position":"30","duration":"120"})", 25},
        {R"({"position":"30","duration":"120"})", 25},
        {R"({"progress":"-5","position":"300","duration":"120"})", 100},
        {R"({"progress":"40","position":"30","duration":"120"})", 40},
        {R"({"position":"30"})", 0},
        {R"({"position":"1e308","duration":"1e-300"})", 100},
    };
    for (const auto& row : rows)
        EXPECT_DOUBLE_EQ(parseJSONState(row.text).value_or(MediaPlayerState()).progress, row.progress) << row.text;
}

TEST(MediaPlayerPayloadTests, readsTextsOfOtherTypes) {
    const auto title = [](const std::string& value) {
        return parseJSONState("{\"title\":" + value + "}").value_or(MediaPlayerState()).title;
    };
    EXPECT_EQ(title("17"), "17");
    EXPECT_EQ(title("-1.5"), "-1.5");
    EXPECT_EQ(title("3.0"), "3");
    EXPECT_EQ(title("[\"x\"]"), "");
    EXPECT_EQ(title("null"), "");
    EXPECT_EQ(title("\"" + std::string(1 << 20, 'l') + "\"").size(), 1U << 20);
}

TEST(MediaPlayerPayloadTests, refusesWhatIsNoPayload) {
    for (const char* text : {"", "x", "[]", "\"text\"", "12", "{", R"({"title":"a"} x)", R"({"title":1e999})",
             "{\"title\":\"\xff\"}", R"({"title":"a",})"})
        EXPECT_FALSE(parseJSONState(text)) << text;
    EXPECT_FALSE(parseJSONState(std::string(200000, '[')));
    EXPECT_FALSE(parseLegacyDelimitedState("1|~|2|~|3|~|4|~|5|~|6|~|7|~|8|~|9|~|10"));
}

TEST(MediaPlayerPayloadTests, readsTheShortestOlderForm) {
    MediaPlayerState expected{.artist = "a", .duration = 1.5, .progress = 100, .state = -4, .status = 1};
    EXPECT_EQ(parseLegacyDelimitedState("a|~||~||~||~|1,5|~|inf|~|250|~|-4|~|-9|~|x|~| 1"), expected);
}

} // namespace
} // namespace Ostrel
