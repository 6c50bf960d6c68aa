#include "OstrelDialect/FullTypes.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace Ostrel {
namespace {

std::string page() {
    const char* source = std::getenv("OSTREL_SOURCE");
    std::ifstream file(std::string(source ? source : ".") + "/Docs/DIALECT.md");
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string supportText(FullType::Support support) {
    switch (support) {
    case FullType::Support::Whole:
        return "yes";
    case FullType::Support::Partly:
        return "partly";
    case FullType::Support::Nothing:
        return "no";
    }
    return {};
}

/// The page for authors has a row for each type, in the order of the code, and no other rows.
TEST(DialectPage, tellsOfEveryTypeWhatTheCodeServes) {
    const auto text = page();
    ASSERT_FALSE(text.empty());
    std::size_t from = text.find("## Measures");
    std::size_t rows = 0;
    for (const auto types : {FullTypes::measures(), FullTypes::plugins(), FullTypes::meters()}) {
        for (const auto& type : types) {
            const auto head = "| `" + std::string(type.name) + "` | ";
            const auto at = text.find(head, from);
            ASSERT_NE(at, std::string::npos) << type.name;
            const auto line = text.substr(at, text.find('\n', at) - at);
            const auto end = "| " + supportText(type.support) + " | " + std::string(type.note) + " |";
            EXPECT_TRUE(line.ends_with(end)) << line << "\n" << end;
            from = at;
            ++rows;
        }
    }
    std::size_t written = 0;
    for (auto at = text.find("## Measures"); (at = text.find("\n| `", at)) != std::string::npos; ++at)
        ++written;
    EXPECT_EQ(written, rows);
}

} // namespace
} // namespace Ostrel
