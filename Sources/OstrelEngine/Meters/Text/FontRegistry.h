#pragma once

#include <cstdint>
#include <string_view>

namespace Ostrel {
class FontRegistrar;
}

/// The fonts that skins bring along, known to this process until it ends.
namespace Ostrel::FontRegistry {

/// Hands the font files of the nearest "@Resources" to the registrar: those below its folder "Fonts", in any case, or
/// without such a folder all below itself. A folder is walked and a file handed over once in the life of the process.
/// Any thread.
void registerResourceFontsIfNeeded(std::string_view skinPath, FontRegistrar& registrar);
/// Grows with every font that was handed over, so that a lookup that failed before can be made again.
std::uint64_t revision();

} // namespace Ostrel::FontRegistry
