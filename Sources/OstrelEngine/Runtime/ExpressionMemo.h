#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Ostrel {

/// Remembers the values of expressions by their final text, in which variables and measures are numbers already: the
/// value follows from the text alone, so that nothing remembered ever grows stale. Bounded.
class ExpressionMemo {
public:
    using Value = std::optional<double>;

    /// The value of `text`, from memory or else from `evaluate`. A text that is remembered costs no allocation.
    template <typename Evaluate> Value value(std::string_view text, const Evaluate& evaluate) {
        if (const auto found = values_.find(text); found != values_.end())
            return found->second;
        const Value result = evaluate(text);
        remember(text, result);
        return result;
    }

private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    static constexpr std::size_t MaxCount = 1024;
    static constexpr std::size_t MaxLength = 1024;

    void remember(std::string_view text, Value value) {
        if (text.size() > MaxLength)
            return;
        if (values_.size() >= MaxCount)
            values_.clear();
        values_.emplace(text, value);
    }

    std::unordered_map<std::string, Value, Hash, std::equal_to<>> values_;
};

} // namespace Ostrel
