#include "Support/CommandLine.h"

#include <gtest/gtest.h>

namespace Ostrel {

TEST(Calc, printsALineForEachText) {
    const auto result = runOstrel({"calc", "0.1+0.2", "--3", "1>0", "MAX(1)5", "0*-1"});
    EXPECT_EQ(result.output, "0.30000000000000004\n3\ninvalid\n5\n-0\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(runOstrel({"calc"}, "1+1\r\n\n2e1").output, "2\ninvalid\n20\n");
    EXPECT_EQ(runOstrel({"calc", "--expression"}, "1 = 1 and 2\n--3\n1/0\n").output, "2\ninvalid\ninvalid\n");
}

TEST(Calc, evaluatesTheFullGrammar) {
    const auto result = runOstrel({"calc", "--dialect", "full", "--allow", "web", "--3", "2**3=8", "1e3", "0?1/0:PI"});
    EXPECT_EQ(result.output, "3\n1\ninvalid\n3.1415926535897931\n");
    EXPECT_EQ(runOstrel({"calc", "--dialect", "full"}, "-2**2\r\n\n--root\n").output, "4\ninvalid\ninvalid\n");
    EXPECT_EQ(runOstrel({"calc", "--dialect", "base", "2e1", "--dialect"}).output, "20\ninvalid\n");
    EXPECT_EQ(runOstrel({"calc", "--dialect", "full", "--expression", "1"}).status, 2);
    EXPECT_EQ(runOstrel({"calc", "--dialect", "other", "1"}).status, 2);
    EXPECT_EQ(runOstrel({"calc", "--dialect", "full", "--screen", "0,1", "1"}).status, 2);
}

TEST(Calc, keepsWhatWasPrintedBeforeAFatalFormula) {
    const auto result = runOstrel({"calc"}, "1+1\nTRUNC(1e19)\n2\n");
    EXPECT_EQ(result.output, "2\n");
    EXPECT_TRUE(result.messages.starts_with("ostrel: Double value cannot be converted to Int because the result would "
                                            "be greater than Int.max\n"))
        << result.messages;
    EXPECT_LT(result.status, 0);
}

} // namespace Ostrel
