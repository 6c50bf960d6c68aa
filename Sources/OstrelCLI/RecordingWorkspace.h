#pragma once

#include "OstrelPlatform/Workspace.h"

#include <functional>

namespace Ostrel {

/// Opens nothing and tells what it was asked to open, which counts as opened.
class RecordingWorkspace final : public Workspace {
public:
    bool openURL(const std::string& url) override { return record(url); }
    bool openFile(const std::string& path) override { return record(path); }

    std::function<void(const std::string& target)> onOpen;

private:
    bool record(const std::string& target) const {
        if (onOpen)
            onOpen(target);
        return true;
    }
};

} // namespace Ostrel
