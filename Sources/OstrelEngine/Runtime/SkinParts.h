#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"

#include <string>

namespace Ostrel {

class LayoutResolver;
class MeasureTable;
class MeterTable;
class Publication;
class RuntimeExpressions;
class Workspace;

/// The members of a running skin that its actions work on. They outlive whatever holds this.
struct SkinParts {
    const std::string& skinPath;
    Options& variables;
    MeasureTable& measures;
    MeterTable& meters;
    RuntimeExpressions& expressions;
    LayoutResolver& layout;
    Publication& publication;
    /// Null where nothing can be opened.
    Workspace* workspace;
};

} // namespace Ostrel
