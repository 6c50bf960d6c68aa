#pragma once

#include <string>

namespace Ostrel {

/// Makes a font file known to the text system of this process, for its whole life. A file that is no font is ignored.
class FontRegistrar {
public:
    virtual ~FontRegistrar() = default;
    virtual void registerFontFile(const std::string& path) = 0;
};

} // namespace Ostrel
