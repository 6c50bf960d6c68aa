#include "OstrelCore/Text/CaseInsensitiveDictionary.h"

#include <gtest/gtest.h>

namespace Ostrel {

namespace {

std::string text(const Options& options) {
    std::string result;
    for (const auto& entry : options)
        result += entry.key + "=" + entry.value + " ";
    return result;
}

} // namespace

TEST(CaseInsensitiveDictionary, keepsFirstSpellingAndPlaceOfAKey) {
    Options options;
    options.set("Update", "1");
    options.set("", "empty key");
    options.set("UPDATE", "2");
    EXPECT_EQ(text(options), "Update=2 =empty key ");
    EXPECT_FALSE(options.insertIfAbsent("update", "3"));
    EXPECT_EQ(*options.find("uPDATE"_key), "2");
    options.remove("update");
    options.set("UPDATE", "4");
    EXPECT_EQ(text(options), "=empty key UPDATE=4 ");
}

TEST(CaseInsensitiveDictionary, comparesByFullUpperCasing) {
    Options options;
    options.set("Straße", "1");
    options.set("großÄ", "2");
    EXPECT_TRUE(options.contains("STRASSE"));
    EXPECT_TRUE(options.contains("GROSSä"));
    EXPECT_FALSE(options.contains("grossa"));
}

TEST(CaseInsensitiveDictionary, mergesEitherWay) {
    Options a, b;
    a.set("X", "1");
    b.set("y", "2");
    b.set("x", "3");
    auto first = a;
    first.merge(b);
    EXPECT_EQ(text(first), "X=1 y=2 ");
    a.merge(b, false);
    EXPECT_EQ(text(a), "X=3 y=2 ");
    EXPECT_FALSE(a == first);
}

TEST(CaseInsensitiveDictionary, findsEveryKeyOfAGrowingAndShrinkingTable) {
    CaseInsensitiveDictionary<int> table;
    for (int i = 0; i < 500; ++i)
        table.set("Key" + std::to_string(i), i);
    for (int i = 0; i < 500; i += 3)
        table.remove("kEY" + std::to_string(i));
    for (int i = 0; i < 500; ++i) {
        const int* value = table.find("KEY" + std::to_string(i));
        ASSERT_EQ(value != nullptr, i % 3 != 0) << i;
        if (value) {
            EXPECT_EQ(*value, i);
        }
    }
}

} // namespace Ostrel
