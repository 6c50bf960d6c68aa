#include "Support/CommandLine.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

namespace Ostrel {

TEST(Inspect, printsTheLoadedSkin) {
    const TemporaryFolder folder;
    const auto path = folder.write("skin.ini",
        "[Rainmeter]\r\nUpdate=50\r\n;note\r\n[Metadata]\r\nAuthor=Me\r\n[Variables]\r\nB=#A#\r\nA=1\r\n"
        "[M]\r\nMeasure=Calc\r\nformula=#B#+1\r\nFORMULA=2\r\n[P]\r\nMeasure=Plugin\r\nPlugin=x.dll\r\n[T]\r\nMeter="
        "String\r\n"
        "MeterStyle=S\r\n[S]\r\nText=\xC3\xA9\r\n[U]\r\n@Include=none.inc\r\n");
    const auto result = runOstrel({"inspect", path});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.messages, "");
    auto expected = nlohmann::ordered_json::parse(R"({"filePath": "",
        "rainmeter": {"update": 50, "background": null, "backgroundMode": null, "backgroundMargins": null,
                      "options": [["Update", "50"]]},
        "metadata": {"name": null, "author": "Me", "information": null, "license": null, "version": null},
        "variables": [["B", "1"], ["A", "1"]],
        "measures": [{"name": "M", "type": "Calc", "plugin": null, "options": [["Measure", "Calc"], ["formula", "1+1"]]},
                     {"name": "P", "type": "Plugin", "plugin": "x.dll",
                      "options": [["Measure", "Plugin"], ["Plugin", "x.dll"]]}],
        "meters": [{"name": "T", "type": "String", "style": "S", "options": [["Meter", "String"], ["MeterStyle", "S"]]}],
        "styles": [{"name": "S", "options": [["Text", "é"]]}],
        "unknownSections": ["U"],
        "sections": [{"name": "Rainmeter", "line": 1, "entries": [["Update", "50", 3], [";note"]]},
                     {"name": "Metadata", "line": 7, "entries": [["Author", "Me", 9]]},
                     {"name": "Variables", "line": 11, "entries": [["B", "1", 13], ["A", "1", 15]]},
                     {"name": "M", "line": 17, "entries": [["Measure", "Calc", 19], ["formula", "1+1", 21],
                                                           ["FORMULA", "2", 23]]},
                     {"name": "P", "line": 25, "entries": [["Measure", "Plugin", 27], ["Plugin", "x.dll", 29]]},
                     {"name": "T", "line": 31, "entries": [["Meter", "String", 33], ["MeterStyle", "S", 35]]},
                     {"name": "S", "line": 37, "entries": [["Text", "é", 39]]},
                     {"name": "U", "line": 41, "entries": []}],
        "diagnostics": []})");
    expected["filePath"] = path;
    expected["diagnostics"].push_back("error: Cannot read file: " + folder.path() + "/none.inc");
    EXPECT_EQ(nlohmann::ordered_json::parse(result.output), expected);
}

TEST(Inspect, tellsWhyASkinCannotBeLoaded) {
    const TemporaryFolder folder;
    for (const auto& path : {folder.path(), folder.path() + "/none.ini"}) {
        const auto result = runOstrel({"inspect", path});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.messages, "ostrel: cannot load " + path + "\nostrel: error: Cannot read file: " + path + "\n");
    }
}

TEST(Inspect, takesOneSkin) {
    for (const auto& arguments : {std::vector<std::string>{"inspect"}, {"inspect", "a", "b"}, {"inspect", "--json"}}) {
        const auto result = runOstrel(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.messages, "ostrel: usage: ostrel inspect SKIN\n");
    }
}

} // namespace Ostrel
