#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// Files and processes as the bootstrap needs them. What can fail says why, in words for the log; absent is success.
class BundleSystem {
public:
    using Failure = std::optional<std::string>;

    virtual ~BundleSystem() = default;
    /// Of the bundle that the process runs from, without the point; empty when it runs from none.
    virtual std::string mainBundleExtension() const = 0;
    virtual std::optional<std::string> mainBundleExecutablePath() const = 0;
    virtual std::optional<std::string> firstArgument() const = 0;
    virtual std::string resolvingSymbolicLinks(const std::string& path) const = 0;

    virtual Failure createDirectories(const std::string& path) = 0;
    virtual bool fileExists(const std::string& path) const = 0;
    virtual Failure removeFile(const std::string& path) = 0;
    virtual Failure copyFile(const std::string& from, const std::string& to) = 0;
    virtual Failure writeAtomically(const std::string& path, std::string_view bytes) = 0;
    virtual Failure setPermissions(const std::string& path, unsigned mode) = 0;

    /// Runs the program to its end, its output thrown away. False when it could not be started.
    virtual bool runSilently(const std::string& program, std::span<const std::string> arguments) = 0;
    /// Starts the program and does not wait. False when it could not be started.
    virtual bool start(const std::string& program, std::span<const std::string> arguments) = 0;
    virtual void openInWorkspace(const std::string& path) = 0;
    virtual void log(const std::string& line) = 0;
    /// Ends the process; a test's returns.
    virtual void exit(int status) = 0;
};

/// Where the desktop ties permissions to an application bundle, a bare executable makes itself into one beside itself
/// and starts anew from there.
namespace AppLaunchBootstrap {
inline constexpr std::string_view executableName = "ostrel-gui";

/// Before anything else is made, since the process may end here. Returns only when it goes on as it is.
void relaunchAsAppBundleIfNeeded(BundleSystem& system);
} // namespace AppLaunchBootstrap

} // namespace Ostrel
