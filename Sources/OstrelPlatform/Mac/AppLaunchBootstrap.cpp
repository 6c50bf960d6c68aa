#include "OstrelPlatform/Mac/AppLaunchBootstrap.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"

namespace Ostrel::AppLaunchBootstrap {

namespace {

constexpr unsigned ExecutablePermissions = 0755;

/// What the desktop is told of the application, in the order of its keys, as its own tools write such files.
constexpr std::string_view InfoPlist = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>CFBundleDisplayName</key>
	<string>Ostrel</string>
	<key>CFBundleExecutable</key>
	<string>ostrel-gui</string>
	<key>CFBundleIdentifier</key>
	<string>dev.ostrel.gui</string>
	<key>CFBundleName</key>
	<string>Ostrel</string>
	<key>CFBundlePackageType</key>
	<string>APPL</string>
	<key>NSAudioCaptureUsageDescription</key>
	<string>Ostrel captures system audio to drive beat-accurate visualizers.</string>
	<key>NSPrincipalClass</key>
	<string>NSApplication</string>
</dict>
</plist>
)";

/// Every step with the system it works on.
class Bootstrap {
public:
    explicit Bootstrap(BundleSystem& system)
        : system_(system) { }

    bool isRunningInsideAppBundle() const { return equalsIgnoringCase(system_.mainBundleExtension(), "app"); }

    std::optional<std::string> executableURL() const {
        auto path = system_.mainBundleExecutablePath();
        if (!path)
            path = system_.firstArgument();
        return path ? std::optional(system_.resolvingSymbolicLinks(*path)) : std::nullopt;
    }

    BundleSystem::Failure copyExecutable(const std::string& from, const std::string& to) {
        if (system_.fileExists(to))
            if (auto failure = system_.removeFile(to))
                return failure;
        return system_.copyFile(from, to);
    }

    BundleSystem::Failure writeInfoPlist(const std::string& path) { return system_.writeAtomically(path, InfoPlist); }

    BundleSystem::Failure makeExecutable(const std::string& path) {
        return system_.setPermissions(path, ExecutablePermissions);
    }

    void adHocSignIfPossible(const std::string& bundle) {
        static const std::string attributes = "/usr/bin/xattr";
        const std::vector<std::string> removeFinderInfo{"-d", "com.apple.FinderInfo", bundle};
        const std::pair<std::string, std::vector<std::string>> commands[] = {
            {attributes, {"-cr", bundle}},
            {attributes, removeFinderInfo},
            {"/usr/bin/codesign", {"--force", "--deep", "--sign", "-", bundle}},
            // Signing can bring the attribute back.
            {attributes, removeFinderInfo},
        };
        for (const auto& [program, arguments] : commands)
            if (!system_.runSilently(program, arguments))
                return;
    }

    void openAppBundle(const std::string& bundle) {
        const std::string arguments[] = {"-n", bundle};
        if (!system_.start("/usr/bin/open", arguments))
            system_.openInWorkspace(bundle);
    }

    BundleSystem::Failure makeBundle(const std::string& executable, const std::string& bundle) {
        const auto contents = appendingPathComponent(bundle, "Contents");
        const auto programs = appendingPathComponent(contents, "MacOS");
        const auto copy = appendingPathComponent(programs, executableName);
        if (auto failure = system_.createDirectories(programs))
            return failure;
        if (auto failure = copyExecutable(executable, copy))
            return failure;
        if (auto failure = writeInfoPlist(appendingPathComponent(contents, "Info.plist")))
            return failure;
        return makeExecutable(copy);
    }

private:
    BundleSystem& system_;
};

} // namespace

void relaunchAsAppBundleIfNeeded(BundleSystem& system) {
    Bootstrap bootstrap(system);
    // Also what keeps the copy from starting a copy of its own.
    if (bootstrap.isRunningInsideAppBundle())
        return;
    const auto executable = bootstrap.executableURL();
    if (!executable)
        return;
    const auto bundle = appendingPathComponent(deletingLastPathComponent(*executable), "Ostrel.app");
    if (const auto failure = bootstrap.makeBundle(*executable, bundle))
        return system.log("[OstrelGUI] App bundle relaunch bootstrap failed: " + *failure);
    bootstrap.adHocSignIfPossible(bundle);
    bootstrap.openAppBundle(bundle);
    system.exit(0);
}

} // namespace Ostrel::AppLaunchBootstrap
