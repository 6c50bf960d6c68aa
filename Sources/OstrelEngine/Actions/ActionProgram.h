#pragma once

#include "OstrelEngine/Actions/BangTable.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Ostrel {

/// One command of an action string, ready to run.
struct ActionStep {
    /// Null for something to open, which is the first word.
    const BangDescription* bang = nullptr;
    std::string arguments;
    std::vector<std::string> words;
};

using ActionProgram = std::vector<ActionStep>;

/// Programs by the text of their action string: the same few strings come back on every tick and click. Bounded.
class ActionPrograms {
public:
    /// Never null. What does nothing, such as an unknown bang, is left out. Kept alive by whoever runs it.
    std::shared_ptr<const ActionProgram> program(std::string_view action);

private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };

    std::unordered_map<std::string, std::shared_ptr<const ActionProgram>, Hash, std::equal_to<>> programs_;
    std::size_t rememberedBytes_ = 0;
};

} // namespace Ostrel
