#include "OstrelEngine/Runtime/NumericExpression.h"

#include "OstrelCore/Text/Numbers.h"
#include "Support/MissingTool.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <random>

namespace Ostrel {
namespace {

struct Case {
    std::string text;
    std::optional<double> value;
};

void expectValues(const std::vector<Case>& cases) {
    for (const auto& [text, value] : cases)
        EXPECT_EQ(NumericExpression::evaluate(text), value) << text;
}

TEST(NumericExpressionTests, computesWithScriptPrecedence) {
    expectValues({
        {"1+2*3", 7},
        {"(1+2)*3", 9},
        {"7%-3", 1},
        {"2**3**2", 512},
        {"(-1)**2", 1},
        {"2**-1", 0.5},
        {"1<2<3", 1},
        {"3>2>1", 0},
        {"1==1|2", 3},
        {"5&3|8", 9},
        {"1<<33", 2},
        {"-1>>>28", 15},
        {"-9>>1", -5},
        {"4294967297|0", 1},
        {"0?1:0?2:3", 3},
        {"1?0?1:2:3", 2},
        {"0||5&&0", 0},
        {"0??5", 0},
        {"!0+1", 2},
        {"- -1", 1},
        {"(1==1)===1", 0},
        {"(1==1)!==1", 1},
        {"(1==1)==1", 1},
    });
}

TEST(NumericExpressionTests, readsNumbersAsScriptsDo) {
    expectValues({
        {".5", 0.5},
        {"5.", 5},
        {"010", 8},
        {"08", 8},
        {"08.5", 8.5},
        {"010.5", {}},
        {"0777777777777777777777", 9223372036854775807.0},
        {"1..5", {}},
        {"1?.5:2", 0.5},
        {"1 2", {}},
    });
}

TEST(NumericExpressionTests, hasNoValueForWhatIsNoArithmetic) {
    for (const char* text : {"", " ", "()", "1+", "*1", "1/0", "0/0", "-1**2", "1??2||3", "1&&2??3", "++1", "1--",
             "1=2", "1+=2", "/1/", "!/1/", "1(2)", "(1)(2)", "1?.(2)", "1||2(3)", "()=>1", "...1", ".", "..", "1?2",
             "1:2", "(1", "1)", "1/*", "a", "1,2"})
        EXPECT_EQ(NumericExpression::evaluate(text), std::nullopt) << text;
}

TEST(NumericExpressionTests, seesTheTextAsPartOfAScript) {
    expectValues({
        {"1)+(2", 3},
        {"1)//", 1},
        {"1//\n", 1},
        {"1)<!--2", 1},
        {"1<!-2", 0},
        {"1)\n-->2", 1},
        {"1)\n/*2*/ -->", 1},
        {"1)/*\n*/-->", 1},
        {"1-->0", {}},
        {"1/*2*/+/*\n*/3", 4},
        {"1)\n2+(3", 5},
        {"1)\n!(0", 1},
        {"1)\n-(2", -1},
        {"1)\n(2", {}},
        {"1)\n++(2", {}},
        {"1\n2", {}},
    });
}

TEST(NumericExpressionTests, givesUpOnDeepNestingAndNotOnLongChains) {
    const auto nested = [](int depth) { return std::string(depth, '(') + "1" + std::string(depth, ')'); };
    EXPECT_EQ(NumericExpression::evaluate(nested(900)), 1);
    for (const auto* piece : {"(", "- ", "!", "1**", "1?"}) {
        std::string text;
        for (int i = 0; i < 100000; ++i)
            text += piece;
        EXPECT_EQ(NumericExpression::evaluate(text + "1"), std::nullopt) << piece;
    }
    std::string chain;
    for (int i = 0; i < 5000; ++i)
        chain += "0?1:";
    EXPECT_EQ(NumericExpression::evaluate(chain + "7"), 7);
}

/// Texts between grammar and noise: pieces that may stand next to each other, and single characters put in or taken
/// out.
class TextGenerator {
public:
    std::string next() {
        std::string text = expression(3);
        for (int i = pick(4); i > 0; --i) {
            const auto at = static_cast<std::size_t>(pick(static_cast<int>(text.size()) + 1));
            if (pick(3) == 0 && at < text.size())
                text.erase(at, 1);
            else
                text.insert(at, noise());
        }
        return text;
    }

private:
    int pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(random_); }

    std::string noise() {
        constexpr std::string_view Admitted = "0123456789.+-*/()<>!=?:&|% \t\r\n";
        static const std::vector<std::string> pieces{"//", "/*", "*/", "<!--", "\n-->", ")\n", "**", "?.", "??", "&&"};
        if (pick(4) == 0)
            return pieces[static_cast<std::size_t>(pick(static_cast<int>(pieces.size())))];
        return std::string(1, Admitted[static_cast<std::size_t>(pick(static_cast<int>(Admitted.size())))]);
    }

    std::string expression(int depth) {
        static const std::vector<std::string> operators{"+", "-", "*", "/", "%", "**", "<", ">",
            "<=", ">=", "==", "!=", "===", "!==", "&", "|", "&&", "||", "??", "<<", ">>", ">>>", " + ", "\n-", ")+(",
            ")\n("};
        switch (depth == 0 ? 0 : pick(7)) {
        case 0:
        case 1:
            return number();
        case 2:
            return "(" + expression(depth - 1) + ")";
        case 3:
            return std::string(1, "-+!"[pick(3)]) + (pick(2) ? " " : "") + expression(depth - 1);
        case 4:
            return expression(depth - 1) + "?" + expression(depth - 1) + ":" + expression(depth - 1);
        default:
            return expression(depth - 1) + operators[static_cast<std::size_t>(pick(static_cast<int>(operators.size())))]
                + expression(depth - 1);
        }
    }

    std::string number() {
        static const std::vector<std::string> odd{"010", "08", "0", "00", ".5", "5.", "4294967296", "2147483648",
            "1.50", "123456789012345678901234567890", "0777777777777777777777777", "0.1", "07.5", "09.25",
            "1.7976931348623157"};
        return pick(3) == 0 ? odd[static_cast<std::size_t>(pick(static_cast<int>(odd.size())))]
                            : formatNumeric(pick(40));
    }

    std::mt19937 random_{20240607};
};

std::string readAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(NumericExpressionTests, agreesWithAScriptEngineOnGeneratedTexts) {
    if (std::system("node --expose-internals -e \"require('internal/deps/acorn/acorn/dist/acorn')\" 2>/dev/null") != 0)
        OSTREL_SKIP_FOR_WANT_OF("node");
    TextGenerator generator;
    nlohmann::json texts = nlohmann::json::array();
    for (int i = 0; i < 40000; ++i)
        texts.push_back(generator.next());

    const TemporaryFolder folder;
    const auto input = folder.write("texts.json", texts.dump());
    const auto output = folder.path() + "/values.json";
    const std::string script = std::string(std::getenv("OSTREL_SOURCE")) + "/Tests/OstrelEngine/Runtime/evaluate.js";
    ASSERT_EQ(std::system(("node --expose-internals '" + script + "' <'" + input + "' >'" + output + "'").c_str()), 0);
    const auto values = nlohmann::json::parse(readAll(output));
    ASSERT_EQ(values.size(), texts.size());

    int withValue = 0;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const auto text = texts[i].get<std::string>();
        const auto ours = NumericExpression::evaluate(text);
        ASSERT_EQ(ours.has_value(), !values[i].is_null()) << text << " gives " << values[i];
        if (!ours)
            continue;
        ++withValue;
        const double theirs = *parseDouble(values[i].get<std::string>());
        // Engines differ in the last digits of a power, which comparisons and bits of it enlarge.
        const bool hasPower = text.find("**") != std::string::npos;
        if (hasPower && text.find_first_of("&|%<>=?") != std::string::npos)
            continue;
        const double tolerance = hasPower ? std::abs(theirs) * 1e-13 : 0;
        EXPECT_NEAR(*ours, theirs, tolerance) << text;
        EXPECT_EQ(std::signbit(*ours), std::signbit(theirs)) << text;
    }
    EXPECT_GT(withValue, 10000);
}

} // namespace
} // namespace Ostrel
