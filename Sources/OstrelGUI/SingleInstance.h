#pragma once

#include "OstrelCore/Files/FileDescriptor.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class QSocketNotifier;

namespace Ostrel {

/// Keeps one process of the application for each user and display. The first holds a lock for as long as it lives and
/// listens on a socket beside it; later ones hand their paths to it. The system lets go of the lock of a process that
/// was killed, so the next start takes its place.
class SingleInstance {
public:
    enum class Role {
        /// This process is the one.
        First,
        /// There is another, and it has taken the paths.
        HandedOver,
        /// There is another, and it does not answer.
        Unanswered,
    };

    /// How long a running instance may take to answer.
    static constexpr double PatienceSeconds = 2;

    /// `folder` is private to the user, `display` what the instance shows itself on.
    SingleInstance(std::string folder, std::string_view display);
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    /// Absolute paths; without any the running instance is asked to come forward. Where no lock can be had at all, this
    /// process is the first.
    Role start(const std::vector<std::string>& paths);
    /// Answers later starts, each of which calls `onStart` once; those that came since `start` have waited. Needs an
    /// event loop of Qt's. Of the first process only.
    void listen(std::function<void(const std::vector<std::string>& paths)> onStart);

    /// The user's runtime folder; where there is none, a private folder below the temporary one, made when it is
    /// missing. Absent when neither can be trusted.
    static std::optional<std::string> privateFolder(
        const std::optional<std::string>& runtimeFolder, const std::string& temporaryFolder);
    /// The X display of this process, else the Wayland one; empty when there is neither.
    static std::string displayName();

private:
    class Visitor;

    bool takeLock();
    void openSocket();
    /// What the other instance answered; absent when there is none to talk to, or it did not answer in time.
    bool handOver(const std::string& request, double deadline) const;
    void acceptVisitors();
    void dismiss(const Visitor& visitor);

    std::string lockPath_;
    std::string socketPath_;
    FileDescriptor lock_;
    FileDescriptor socket_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::vector<std::unique_ptr<Visitor>> visitors_;
    std::function<void(const std::vector<std::string>&)> onStart_;
};

} // namespace Ostrel
