#pragma once

#include "OstrelGUI/AppLaunchBootstrap.h"

namespace Ostrel {

/// A desktop without application bundles: every program runs as if it were inside one, and nothing is touched.
class BundlelessSystem final : public BundleSystem {
public:
    std::string mainBundleExtension() const override { return "app"; }
    std::optional<std::string> mainBundleExecutablePath() const override { return std::nullopt; }
    std::optional<std::string> firstArgument() const override { return std::nullopt; }
    std::string resolvingSymbolicLinks(const std::string& path) const override { return path; }

    Failure createDirectories(const std::string&) override { return NoBundles; }
    bool fileExists(const std::string&) const override { return false; }
    Failure removeFile(const std::string&) override { return NoBundles; }
    Failure copyFile(const std::string&, const std::string&) override { return NoBundles; }
    Failure writeAtomically(const std::string&, std::string_view) override { return NoBundles; }
    Failure setPermissions(const std::string&, unsigned) override { return NoBundles; }

    bool runSilently(const std::string&, std::span<const std::string>) override { return false; }
    bool start(const std::string&, std::span<const std::string>) override { return false; }
    void openInWorkspace(const std::string&) override { }
    void log(const std::string&) override { }
    void exit(int) override { }

private:
    static constexpr const char* NoBundles = "there are no bundles here";
};

} // namespace Ostrel
