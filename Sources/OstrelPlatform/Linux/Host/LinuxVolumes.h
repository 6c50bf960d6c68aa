#pragma once

#include "OstrelPlatform/HostDetails.h"
#include "OstrelPlatform/Linux/Host/HostTexts.h"
#include "OstrelPlatform/Linux/Host/ProcFile.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// The mounted file systems, with letters as skins name them: C: is the one of the home folder, further letters are the
/// other disks in mounting order. A server is asked on a thread of its own.
class LinuxVolumes {
public:
    /// `root` stands before the paths of /proc, /sys and /dev.
    explicit LinuxVolumes(const std::string& root);

    Volume volume(const std::string& drive);
    std::string diskOf(const std::string& drive);

    /// The path that a drive stands for; empty when there is no such letter.
    static std::string pathOf(
        std::string_view drive, const std::vector<HostTexts::Mount>& mounts, std::string_view home);

private:
    const std::vector<HostTexts::Mount>& mounts();
    const HostTexts::Mount* mountOf(const std::string& path);
    /// Without figures.
    Volume describe(const HostTexts::Mount& mount) const;
    bool isRemovable(std::string_view source) const;
    std::string label(std::string_view source) const;
    void askServer(const std::string& path, Volume& volume);

    struct ServerAnswers {
        std::mutex mutex;
        std::map<std::string, Volume> volumes;
        std::map<std::string, bool> asked;
    };

    std::string root_;
    ProcFile mountInfo_;
    std::string text_;
    std::vector<HostTexts::Mount> mounts_;
    /// By source, until the mounts change.
    std::map<std::string, Volume> known_;
    std::shared_ptr<ServerAnswers> answers_ = std::make_shared<ServerAnswers>();
};

} // namespace Ostrel
