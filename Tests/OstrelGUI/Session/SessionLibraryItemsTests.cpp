#include "OstrelGUI/Session/SessionLibraryItems.h"

#include <gtest/gtest.h>

#include <random>

namespace Ostrel {
namespace {

std::string listed(SessionLibraryItems& items) {
    std::string text;
    for (const auto& item : items.items())
        text += item.packageName + "/" + item.displayName + (item.isRendered ? "*" : "") + " ";
    return text;
}

OstrelSessionState sessionOf(std::initializer_list<const char*> paths) {
    OstrelSessionState state;
    for (const char* path : paths)
        state.upsert({.path = std::string("/Skins/") + path});
    return state;
}

TEST(SessionLibraryItems, sortsByPackageThenNameWithoutRegardToCase) {
    SessionLibraryItems items;
    EXPECT_TRUE(items.update(sessionOf({"b/z.ini", "B/a.ini", "c/Zeta.ini", "c/alpha.ini", "c/éclair.ini",
        "c/sub/beta.2.ini", "Äpfel/x.ini", "apfel/y.ini", "c/Eclipse.ini"})));
    EXPECT_EQ(listed(items), "apfel/y Äpfel/x B/a b/z c/alpha c/beta.2 c/éclair c/Eclipse c/Zeta ");
    EXPECT_EQ(items.items()[5].relativePath, "sub/beta.2.ini");
}

TEST(SessionLibraryItems, changesOnlyWhenACardShowsIt) {
    auto state = sessionOf({"a/1.ini", "a/2.ini"});
    SessionLibraryItems items;
    items.update(state);
    EXPECT_FALSE(items.update(state));
    state.widgets[0].origin = Point{1, 2};
    state.widgets[1].runtime = std::make_shared<WidgetRuntimeState>();
    EXPECT_FALSE(items.update(state));
    state.widgets[1].isRendered = true;
    EXPECT_TRUE(items.update(state));
    EXPECT_EQ(listed(items), "a/1 a/2* ");
    state.widgets[0].snapshotData = std::make_shared<SnapshotPicture>("png");
    EXPECT_TRUE(items.update(state));
    EXPECT_EQ(items.items()[0].snapshotData, state.widgets[0].snapshotData->bytes());
    state.remove("/Skins/a/1.ini");
    EXPECT_TRUE(items.update(state));
    EXPECT_EQ(listed(items), "a/2* ");
}

TEST(SessionLibraryItems, equalsThoseMadeAnew) {
    std::mt19937 random(3);
    OstrelSessionState state;
    SessionLibraryItems kept;
    for (int i = 0; i < 400; ++i) {
        const auto path
            = "/Skins/" + std::string(1, "aAbÖ"[random() % 4]) + "/" + std::to_string(random() % 20) + ".ini";
        if (random() % 4 == 0)
            state.remove(path);
        else
            state.upsert({.path = path, .isRendered = random() % 2 == 0});
        const auto before = kept.items();
        const bool isChanged = kept.update(state);
        SessionLibraryItems anew;
        anew.update(state);
        ASSERT_EQ(kept.items(), anew.items());
        EXPECT_TRUE(isChanged || before == kept.items());
    }
}

} // namespace
} // namespace Ostrel
