#include "OstrelPlatform/Mac/AppLaunchBootstrap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Writes down every step; one of them may fail.
class FakeBundleSystem final : public BundleSystem {
public:
    std::string extension;
    std::optional<std::string> executable = "/opt/link";
    std::optional<std::string> argument;
    bool hasOldCopy = false;
    std::string failing;
    std::vector<std::string> steps;
    std::string written;

    std::string mainBundleExtension() const override { return extension; }
    std::optional<std::string> mainBundleExecutablePath() const override { return executable; }
    std::optional<std::string> firstArgument() const override { return argument; }
    std::string resolvingSymbolicLinks(const std::string& path) const override {
        return path == "/opt/link" ? "/home/me/bin/ostrel" : path;
    }

    Failure createDirectories(const std::string& path) override { return take("mkdir " + path); }
    bool fileExists(const std::string&) const override { return hasOldCopy; }
    Failure removeFile(const std::string& path) override { return take("rm " + path); }
    Failure copyFile(const std::string& from, const std::string& to) override { return take("cp " + from + " " + to); }
    Failure writeAtomically(const std::string& path, std::string_view bytes) override {
        written = bytes;
        return take("write " + path);
    }
    Failure setPermissions(const std::string& path, unsigned mode) override {
        return take("chmod " + std::to_string(mode) + " " + path);
    }
    bool runSilently(const std::string& program, std::span<const std::string> arguments) override {
        return !take(joined("run " + program, arguments));
    }
    bool start(const std::string& program, std::span<const std::string> arguments) override {
        return !take(joined("start " + program, arguments));
    }
    void openInWorkspace(const std::string& path) override { take("open " + path); }
    void log(const std::string& line) override { take("log " + line); }
    void exit(int status) override { take("exit " + std::to_string(status)); }

private:
    static std::string joined(std::string text, std::span<const std::string> words) {
        for (const auto& word : words)
            text += " " + word;
        return text;
    }
    Failure take(const std::string& step) {
        steps.push_back(step);
        return !failing.empty() && step.starts_with(failing) ? Failure("no luck") : std::nullopt;
    }
};

const std::string Bundle = "/home/me/bin/Ostrel.app";
const std::string Copy = Bundle + "/Contents/MacOS/ostrel-gui";

TEST(AppLaunchBootstrap, makesABundleBesideTheBareExecutableAndStartsIt) {
    FakeBundleSystem system;
    AppLaunchBootstrap::relaunchAsAppBundleIfNeeded(system);
    EXPECT_THAT(system.steps,
        ElementsAre("mkdir " + Bundle + "/Contents/MacOS", "cp /home/me/bin/ostrel " + Copy,
            "write " + Bundle + "/Contents/Info.plist", "chmod 493 " + Copy, "run /usr/bin/xattr -cr " + Bundle,
            "run /usr/bin/xattr -d com.apple.FinderInfo " + Bundle,
            "run /usr/bin/codesign --force --deep --sign - " + Bundle,
            "run /usr/bin/xattr -d com.apple.FinderInfo " + Bundle, "start /usr/bin/open -n " + Bundle, "exit 0"));
    EXPECT_EQ(system.written,
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist version=\"1.0\">\n<dict>\n"
        "\t<key>CFBundleDisplayName</key>\n\t<string>Ostrel</string>\n"
        "\t<key>CFBundleExecutable</key>\n\t<string>ostrel-gui</string>\n"
        "\t<key>CFBundleIdentifier</key>\n\t<string>dev.ostrel.gui</string>\n"
        "\t<key>CFBundleName</key>\n\t<string>Ostrel</string>\n"
        "\t<key>CFBundlePackageType</key>\n\t<string>APPL</string>\n"
        "\t<key>NSAudioCaptureUsageDescription</key>\n"
        "\t<string>Ostrel captures system audio to drive beat-accurate visualizers.</string>\n"
        "\t<key>NSPrincipalClass</key>\n\t<string>NSApplication</string>\n"
        "</dict>\n</plist>\n");
}

TEST(AppLaunchBootstrap, touchesNothingInsideABundleOrWithoutAnExecutable) {
    for (const auto* extension : {"app", "APP", "App"}) {
        FakeBundleSystem system;
        system.extension = extension;
        AppLaunchBootstrap::relaunchAsAppBundleIfNeeded(system);
        EXPECT_THAT(system.steps, IsEmpty()) << extension;
    }
    FakeBundleSystem nameless;
    nameless.executable.reset();
    AppLaunchBootstrap::relaunchAsAppBundleIfNeeded(nameless);
    EXPECT_THAT(nameless.steps, IsEmpty());
    nameless.argument = "/opt/argument/x";
    AppLaunchBootstrap::relaunchAsAppBundleIfNeeded(nameless);
    EXPECT_EQ(nameless.steps.front(), "mkdir /opt/argument/Ostrel.app/Contents/MacOS");
}

TEST(AppLaunchBootstrap, replacesAnOldCopy) {
    FakeBundleSystem system;
    system.hasOldCopy = true;
    AppLaunchBootstrap::relaunchAsAppBundleIfNeeded(system);
    EXPECT_EQ(system.steps[1], "rm " + Copy);
    EXPECT_EQ(system.steps[2], "cp /home/me/bin/ostrel " + Copy);
    EXPECT_EQ(system.steps.back(), "exit 0");
}

TEST(AppLaunchBootstrap, goesOnBareWhenTheBundleCannotBeMade) {
    for (const auto* step : {"mkdir", "rm", "cp", "write", "chmod"}) {
        FakeBundleSystem system;
        system.hasOldCopy = true;
        system.failing = step;
        AppLaunchBootstrap::relaunchAsAppBundleIfNeeded(system);
        ASSERT_GE(system.steps.size(), 2u);
        EXPECT_TRUE(system.steps[system.steps.size() - 2].starts_with(step));
        EXPECT_EQ(system.steps.back(), "log [OstrelGUI] App bundle relaunch bootstrap failed: no luck");
    }
}

TEST(AppLaunchBootstrap, opensTheBundleWithoutSignatureOrOpener) {
    FakeBundleSystem unsignable;
    unsignable.failing = "run /usr/bin/codesign";
    AppLaunchBootstrap::relaunchAsAppBundleIfNeeded(unsignable);
    EXPECT_THAT(std::vector(unsignable.steps.end() - 3, unsignable.steps.end()),
        ElementsAre(
            "run /usr/bin/codesign --force --deep --sign - " + Bundle, "start /usr/bin/open -n " + Bundle, "exit 0"));

    FakeBundleSystem unopenable;
    unopenable.failing = "start";
    AppLaunchBootstrap::relaunchAsAppBundleIfNeeded(unopenable);
    EXPECT_THAT(
        std::vector(unopenable.steps.end() - 2, unopenable.steps.end()), ElementsAre("open " + Bundle, "exit 0"));
}

} // namespace
} // namespace Ostrel
