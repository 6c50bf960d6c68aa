#include "OstrelEngine/Actions/BangTable.h"

#include <gtest/gtest.h>

namespace Ostrel {

namespace {

using Step = std::pair<std::string_view, std::optional<bool>>;
constexpr auto Missing = std::nullopt;

/// "h", "r" and "c" for the flags that stand after bangs of these names and results.
std::string flagsAfter(const std::vector<Step>& steps) {
    ActionFlags flags;
    for (const auto& [name, result] : steps)
        flags = flags.after(findBang(name)->effect, result);
    return std::string(flags.handled ? "h" : "") + (flags.redraw ? "r" : "") + (flags.changed ? "c" : "");
}

} // namespace

TEST(BangTable, movesTheFlagsOfAnActionString) {
    const struct {
        std::vector<Step> steps;
        std::string_view flags;
    } rows[] = {
        {{}, ""},
        {{{"LOG", true}}, "h"},
        {{{"HIDEMETER", true}}, "hrc"},
        {{{"HIDEMETER", false}}, "h"},
        {{{"TOGGLEMETER", Missing}}, "h"},
        {{{"REDRAW", true}, {"HIDEMETER", false}}, "hrc"},
        {{{"UPDATEMEASURE", false}}, "hr"},
        {{{"UPDATEMEASURE", Missing}}, "hr"},
        {{{"UPDATEMEASUREGROUP", true}}, "hrc"},
        {{{"UPDATEMEASURE", false}, {"HIDEMETER", false}}, "h"},
        {{{"UPDATEMEASURE", false}, {"HIDEMETER", Missing}}, "hr"},
        {{{"SETVARIABLE", true}}, "h"},
        {{{"SETVARIABLE", false}}, ""},
        {{{"WRITEKEYVALUE", Missing}}, ""},
        {{{"SETOPTION", true}}, "hrc"},
        {{{"SETOPTION", false}}, ""},
        {{{"SETVARIABLE", true}, {"SETOPTION", false}}, "hr"},
        {{{"LOG", true}, {"SETOPTIONGROUP", Missing}}, "hr"},
        {{{"SETVARIABLE", true}, {"HIDEMETER", false}}, "h"},
        {{{"SETOPTION", true}, {"HIDEMETER", false}, {"PAUSEMEASURE", true}}, "hrc"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(flagsAfter(row.steps), row.flags) << row.steps.size() << " steps to " << row.flags;
}

TEST(BangTable, knowsOnlyWholeUpperCasedNames) {
    EXPECT_EQ(findBang("SHOWFADEGROUP")->bang, Bang::showMeterGroup);
    EXPECT_EQ(findBang("SHOW"), nullptr);
    EXPECT_EQ(findBang("showmeter"), nullptr);
    EXPECT_EQ(findBang(""), nullptr);
}

} // namespace Ostrel
