#include "OstrelEngine/Actions/INILineEditor.h"

#include <gtest/gtest.h>

namespace Ostrel::INILineEditor {

TEST(INILineEditor, changesOneLineAndNothingElse) {
    const struct {
        std::string_view content;
        std::string_view section;
        std::string_view key;
        std::string_view value;
        std::string_view updated;
    } rows[] = {
        {"[A]\r\nx=1\r\n", "A", "x", "2", "[A]\r\nx=2\r\n"},
        {"[A]\n  x = 1 ; c\n", "A", "x", "2", "[A]\n  x=2\n"},
        {"[A]\n\t X=1", " a ", " x ", " 2 ", "[A]\n\t x= 2 "},
        {"[A]\n;x=1\n#x=1\n\n[B]\nx=3", "A", "x", "2", "[A]\n;x=1\n#x=1\n\nx=2\n[B]\nx=3"},
        {"", "V", "k", "1", "[V]\nk=1"},
        {"a=1", "V", "k", "1", "a=1\n\n[V]\nk=1"},
        {"a=1\n", "V", "k", "1", "a=1\n\n[V]\nk=1"},
        {"a=1\n \t", "V", "k", "1", "a=1\n \t\n[V]\nk=1"},
        {"[variables]\nk=1\n", "Variables", "K", "2", "[variables]\nK=2\n"},
        {"[A]\nx=1\n[a]\nx=2", "A", "x", "3", "[A]\nx=3\n[a]\nx=2"},
        {"[A]\n[B]\nx=2", "A", "x", "3", "[A]\nx=3\n[B]\nx=2"},
        {"[A]\nx=1\n", "A", "y", "2", "[A]\nx=1\n\ny=2"},
        {"[A]\r\nx=1\ny=2", "A", "y", "3", "[A]\r\nx=1\r\ny=3"},
        {"[ A ] \n x = a=b", "A", "x", "", "[ A ] \n x="},
        {"[]\n[A] x\n[A", "A", "x", "1", "[]\n[A] x\n[A\n\n[A]\nx=1"},
        {"[A]\nx\n=1\ny:2\n", "A", "x", "1", "[A]\nx\n=1\ny:2\n\nx=1"},
        {"[ ]\nx=1", "", "x", "2", "[ ]\nx=2"},
        {"[\xC3\xA4\xC3\x9F]\nx=1", "\xC3\x84SS", "x", "2", "[\xC3\xA4\xC3\x9F]\nx=2"},
        {"\n", "A", "x", "1", "\n\n[A]\nx=1"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(updateINIContent(row.content, row.section, row.key, row.value), row.updated) << row.content;
}

} // namespace Ostrel::INILineEditor
