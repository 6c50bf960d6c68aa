#include "OstrelEngine/Runtime/RuntimeExpressions.h"

#include "OstrelEngine/Runtime/ExpressionText.h"
#include "OstrelEngine/Runtime/MeasureTable.h"
#include "Support/FakeMeasure.h"

#include <gmock/gmock.h>
#include <unicode/regex.h>

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace Ostrel {
namespace {

struct TextCase {
    std::string text;
    std::string expected;
};
struct NumberCase {
    std::string text;
    std::optional<double> expected;
};

class RuntimeExpressionsTests : public testing::Test {
protected:
    RuntimeExpressionsTests() {
        variables_.set("Width", "200");
        variables_.set("Name", "Load");
        variables_.set("Nested", "#Width#");
        add("Load", 62.5);
        add("Measure1", 1);
        add("Big", 1e20);
        add("Broken", std::numeric_limits<double>::quiet_NaN());
        add("Größe", 3);
    }

    FakeMeasure& add(std::string_view name, double number) {
        auto measure = FakeMeasure::make(name, number);
        auto& result = *measure;
        measures_.add(std::move(measure));
        return result;
    }

    Options variables_;
    MeasureTable measures_;
    RuntimeExpressions expressions_{variables_, measures_};
};

TEST_F(RuntimeExpressionsTests, substitutesVariablesOnce) {
    const std::vector<TextCase> cases{
        {"#WIDTH#x#width#", "200x200"},
        {"#Nested#", "#Width#"},
        {"##Width#", "#200"},
        {"#Unknown#Width#", "#Unknown#Width#"},
        {"#Wi\ndth#Width#", "#Wi\ndth200"},
        {"#Width", "#Width"},
        {"##", "##"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(expressions_.substituteRuntimeVariables(text), expected) << text;
}

TEST_F(RuntimeExpressionsTests, substitutesBareMeasureNames) {
    const std::vector<TextCase> cases{
        {"load*2+other", "62.5*2+other"},
        {"2Load", "262.5"},
        {"Load_1 Load", "Load_1 62.5"},
        {"Größe", "Größe"},
        {"BIG-Broken", "1e+20-nan"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(expressions_.substituteMeasureIdentifiers(text), expected) << text;
}

TEST_F(RuntimeExpressionsTests, resolvesBracketedMeasures) {
    const std::vector<TextCase> cases{
        {"[Load] of [ load : % ]", "62.5 of 62"},
        {"[Unknown] [Measure1]", "[Unknown] 1"},
        {"[!Bang] [#var] [Load:x]", "[!Bang] [#var] 62.5"},
        {"[[Load]]", "[[Load]]"},
        {"][größe][", "]3["},
        {"[Load", "[Load"},
        {"[][:%]", "[][:%]"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(expressions_.resolveMeasureReferences(text), expected) << text;
}

TEST_F(RuntimeExpressionsTests, evaluatesWithVariablesAndMeasures) {
    const std::vector<NumberCase> cases{
        {"#Width#/2 + Measure1", 101},
        {" #Name# ", 62.5},
        {"Measure1=1", 1},
        {"Measure1<>1", 0},
        {"Measure1 AND Load > 60", 1},
        {"Measure1 and not Load", 0},
        {"Measure1 and not (Load)", 0},
        {"1 and 0", 0},
        {"1&&0", 0},
        {"Load % 60", 2.5},
        {"#Nested#", {}},
        {"[Measure1]=1", {}},
        {"foo+1", {}},
        {"Big", {}},
        {"Broken", {}},
        {"1/0", {}},
        {"", {}},
        {"1,2", {}},
    };
    for (const auto& [text, expected] : cases) {
        // The second time from memory.
        EXPECT_EQ(expressions_.evaluateNumericExpressionWithMeasures(text), expected) << text;
        EXPECT_EQ(expressions_.evaluateNumericExpressionWithMeasures(text), expected) << text;
    }
    EXPECT_EQ(expressions_.evaluateBooleanExpressionWithMeasures("Load"), true);
    EXPECT_EQ(expressions_.evaluateBooleanExpressionWithMeasures("Load-62.5"), false);
    EXPECT_EQ(expressions_.evaluateBooleanExpressionWithMeasures("nothing"), std::nullopt);
}

TEST_F(RuntimeExpressionsTests, seesEveryChangeOfWhatItReads) {
    auto& measure = add("Changing", 0);
    for (int i = 0; i < 3000; ++i) {
        measure.setNumber(i);
        ASSERT_EQ(expressions_.evaluateNumericExpressionWithMeasures("Changing*2"), i * 2);
    }
    variables_.set("Width", "5");
    EXPECT_EQ(expressions_.evaluateNumericExpressionWithMeasures("#Width#"), 5);
}

TEST_F(RuntimeExpressionsTests, readsSwitches) {
    for (const char* on : {"1", " True ", "2", "-1", "Load", "Measure1=1", "MAX(0,1)", "#Width#"})
        EXPECT_TRUE(expressions_.isSwitchedOn(on)) << on;
    for (const char* off : {"", " ", "0", "FALSE", "yes", "Load-62.5", "MAX(0,0)", "1/0", "#Unknown#"})
        EXPECT_FALSE(expressions_.isSwitchedOn(off)) << off;
    EXPECT_FALSE(expressions_.isSwitchedOn(std::nullopt));
}

TEST(ExpressionTextTests, normalizesComparisonsAndWords) {
    const std::vector<TextCase> cases{
        {"a=b", "a==b"},
        {"<=>=!===", "<=>=!==="},
        {"1<>2", "1!=2"},
        {"<>=", "!=="},
        {"=", "=="},
        {"1&&0||1", "1&&0||1"},
        {"a&&b||c", "a && b || c"},
        {"a And b OR c not d", "a && b || c !d"},
        {"a and and b", "a && and b"},
        {"band", "band"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(ExpressionText::normalizeExpression(text), expected) << text;
}

TEST(ExpressionTextTests, evaluatesPlainTextWithoutLogic) {
    const std::vector<NumberCase> cases{
        {" 10*2 ", 20}, {"1==1", 1}, {"1=1", {}}, {"1&1", {}}, {"5%2", {}}, {"1?2:3", 2}, {" ", {}}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(ExpressionText::evaluateNumericExpression(text), expected) << text;
    for (const char* arithmetic : {"1+1", "a,b", "(1)", "-x", "a?"})
        EXPECT_TRUE(ExpressionText::shouldAttemptNumericEvaluation(arithmetic)) << arithmetic;
    for (const char* finished : {"", " -1.5 ", "1e+5", "word", "50%", "1:2"})
        EXPECT_FALSE(ExpressionText::shouldAttemptNumericEvaluation(finished)) << finished;
}

/// The scan by hand against the pattern that says what a token is.
TEST(ExpressionTextTests, findsTheTokensOfItsPattern) {
    UErrorCode status = U_ZERO_ERROR;
    icu::RegexMatcher matcher("#([^#\\r\\n]+)#", 0, status);
    std::mt19937 random(7);
    for (int round = 0; round < 5000; ++round) {
        std::string text;
        for (int i = static_cast<int>(random() % 24); i > 0; --i)
            text += "##ab\n\r "[random() % 7];
        const auto unicode = icu::UnicodeString::fromUTF8(text);
        matcher.reset(unicode);
        std::vector<std::string> expected;
        while (matcher.find(status))
            matcher.group(1, status).toUTF8String(expected.emplace_back());
        std::vector<std::string> found;
        std::string result;
        ExpressionText::appendWithVariables(result, text, [&](std::string_view name) -> const std::string* {
            found.emplace_back(name);
            return nullptr;
        });
        ASSERT_EQ(found, expected) << text;
        ASSERT_EQ(result, text);
    }
}

} // namespace
} // namespace Ostrel
