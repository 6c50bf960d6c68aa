#include "OstrelEngine/Runtime/BracketReferences.h"

#include <gmock/gmock.h>
#include <unicode/regex.h>

#include <gtest/gtest.h>

#include <random>

namespace Ostrel {
namespace {

/// Texts full of brackets, so that nearly every one holds a reference and several near misses.
class BracketReferencesTests : public testing::Test {
protected:
    std::string nextText() {
        static const std::vector<std::string> pieces{
            "[", "]", ":", "!", "#", "[A:X]", "[b_1]", "a", "9", "x", "Z", "é", " ", "[a:", "h]", "[[", "]]"};
        std::string text;
        for (auto i = random_() % 14; i > 0; --i)
            text += pieces[random_() % pieces.size()];
        return text;
    }

    static std::vector<std::vector<std::string>> matches(const char* pattern, const std::string& text, int groups) {
        UErrorCode status = U_ZERO_ERROR;
        const auto unicode = icu::UnicodeString::fromUTF8(text);
        icu::RegexMatcher matcher(icu::UnicodeString::fromUTF8(pattern), unicode, 0, status);
        std::vector<std::vector<std::string>> result;
        while (matcher.find(status)) {
            auto& match = result.emplace_back();
            for (int group = 1; group <= groups; ++group)
                matcher.group(group, status).toUTF8String(match.emplace_back());
        }
        EXPECT_TRUE(U_SUCCESS(status));
        return result;
    }

    std::mt19937 random_{11};
};

TEST_F(BracketReferencesTests, replacesCoordinates) {
    const auto lookup = [](std::string_view name, char property) { return std::string(name) + property; };
    EXPECT_EQ(BracketReferences::substituteCoordinates("([A:x]+[A:Y])r", lookup), "(AX+AY)r");
    EXPECT_EQ(BracketReferences::substituteCoordinates("[B:W][A][A:Q][!A:X]", lookup), "BW[A][A:Q][!A:X]");
}

TEST_F(BracketReferencesTests, findsTheReferencesOfTheirPatterns) {
    for (int round = 0; round < 20000; ++round) {
        const auto text = nextText();
        std::vector<std::vector<std::string>> coordinates;
        BracketReferences::substituteCoordinates(text, [&](std::string_view name, char property) {
            coordinates.push_back({std::string(name), std::string(1, property)});
            return "";
        });
        auto expected = matches("\\[(?![!#])([A-Za-z0-9_]+):([XYZWHxyzwh])\\]", text, 2);
        for (auto& match : expected)
            match[1][0] = static_cast<char>(std::toupper(match[1][0]));
        ASSERT_EQ(coordinates, expected) << text;

        std::vector<std::vector<std::string>> names;
        for (const auto name : BracketReferences::names(text))
            names.push_back({std::string(name)});
        ASSERT_EQ(names, matches("\\[(?![!#])([A-Za-z0-9_]+)\\]", text, 1)) << text;
    }
}

} // namespace
} // namespace Ostrel
