#pragma once

#include <string_view>

namespace Ostrel {

class FormulaNames;
class SkinScope;

/// Whether a text, resolved but for its escapes, still names a section of this skin or the environment: what would be
/// written into a file for good in place of its value. Unknown names are text like any other.
bool leavesReferences(std::string_view text, const SkinScope& scope, const FormulaNames& measures);

} // namespace Ostrel
