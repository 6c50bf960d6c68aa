#pragma once

#include "OstrelPlatform/Linux/Desktop/DetachedPrograms.h"
#include "OstrelPlatform/Workspace.h"

#include <string>
#include <vector>

namespace Ostrel {

/// Opens through the desktop's URL handlers and file associations. Destroyed before the application object.
class LinuxWorkspace final : public Workspace {
public:
    bool openURL(const std::string& url) override;
    bool openFile(const std::string& path) override;
    bool launch(const std::string& program, const std::vector<std::string>& arguments) override;

private:
    DetachedPrograms programs_;
};

} // namespace Ostrel
