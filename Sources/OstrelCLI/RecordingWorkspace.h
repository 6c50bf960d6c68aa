#pragma once

#include "OstrelPlatform/Workspace.h"

#include <functional>
#include <string>
#include <vector>

namespace Ostrel {

/// Opens and starts nothing and tells what it was asked for, which counts as done.
class RecordingWorkspace final : public Workspace {
public:
    bool openURL(const std::string& url) override { return record(url); }
    bool openFile(const std::string& path) override { return record(path); }

    bool launch(const std::string& program, const std::vector<std::string>& arguments) override {
        if (onLaunch)
            onLaunch(program, arguments);
        return true;
    }

    std::function<void(const std::string& target)> onOpen;
    std::function<void(const std::string& program, const std::vector<std::string>& arguments)> onLaunch;

private:
    bool record(const std::string& target) const {
        if (onOpen)
            onOpen(target);
        return true;
    }
};

} // namespace Ostrel
