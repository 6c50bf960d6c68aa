#pragma once

#include "OstrelGUI/Window/Page.h"

namespace Ostrel {

/// Which plugins of Windows work here.
class DLLCompatibilityMenuView final : public Page {
public:
    DLLCompatibilityMenuView();
};

} // namespace Ostrel
