#pragma once

#include "OstrelPlatform/Workspace.h"

namespace Ostrel {

/// Opens through the desktop's URL handlers and file associations.
class LinuxWorkspace final : public Workspace {
public:
    bool openURL(const std::string& url) override;
    bool openFile(const std::string& path) override;
};

} // namespace Ostrel
