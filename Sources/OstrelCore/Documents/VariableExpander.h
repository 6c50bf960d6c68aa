#pragma once

#include "OstrelCore/Documents/Diagnostic.h"
#include "OstrelCore/Documents/VariableStore.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// Rewrites "#Name#" and "[#Name]" by a store's values until nothing changes, then takes the protection off "#*Name*#"
/// and "[*Name*]". Serves one load: its work over all texts is bounded.
class VariableExpander {
public:
    /// Passes over one text.
    static constexpr int MaxReplacements = 1000;
    /// Bytes. A text that has grown to more is left as it is then.
    static constexpr std::size_t MaxTextSize = 1U << 20;
    /// Bytes read and written in all passes over all texts. After that no variable is replaced any more. Everything
    /// else counts as so many bytes as take the same time: a pass, a look-up, each byte of a name that is hashed, or
    /// that is beyond ASCII and has to be folded first, and each place that looks like a mark. What is kept counts
    /// several times: it needs memory for as long as the skin is loaded.
    static constexpr std::size_t MaxTotalWork = 512U << 20;
    static constexpr std::size_t PassWork = 160;
    static constexpr std::size_t LookUpWork = 24;
    static constexpr std::size_t HashWork = 3;
    static constexpr std::size_t FoldingWork = 48;
    static constexpr std::size_t SearchWork = 8;
    static constexpr std::size_t KeepingWork = 16;

    /// Both outlive the expander. The store may change between two calls.
    VariableExpander(const VariableStore& store, DiagnosticCollector& diagnostics)
        : store_(store)
        , diagnostics_(diagnostics) { }

    /// Meeting one of the limits is recorded as a warning, and the text reached so far is kept.
    std::string expand(std::string_view text);
    /// The same for an owned text, untouched when there is nothing to do.
    void expandInPlace(std::string& text);

private:
    enum class Outcome { Settled, LimitReached };

    Outcome expandToFixedPoint(std::string& text);
    bool isSpent() const { return work_ > MaxTotalWork; }
    /// One pass: the bracket form, then the hash form. Absent when there was nothing to replace.
    std::optional<std::string> expandOnce(std::string_view text);
    std::optional<std::string> expandNewStyle(std::string_view text);
    std::optional<std::string> expandOldStyle(std::string_view text);
    const std::string* lookUp(std::string_view name);

    const VariableStore& store_;
    DiagnosticCollector& diagnostics_;
    std::size_t work_ = 0;
};

} // namespace Ostrel
