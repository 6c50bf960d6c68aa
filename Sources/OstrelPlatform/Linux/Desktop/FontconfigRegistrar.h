#pragma once

#include "OstrelPlatform/FontRegistrar.h"

#include <string>

namespace Ostrel {

/// Registers with fontconfig, every named instance of a variable font included.
class FontconfigRegistrar final : public FontRegistrar {
public:
    void registerFontFile(const std::string& path) override;
};

} // namespace Ostrel
