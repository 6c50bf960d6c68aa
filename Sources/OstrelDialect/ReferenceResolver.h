#pragma once

#include "OstrelDialect/References.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// One resolution of one text. Values that are data are put in between literal marks, which all later steps pass over
/// and the last one drops.
class ReferenceResolver {
public:
    ReferenceResolver(
        const ReferenceScope& scope, std::string_view currentSection, ReferenceKinds kinds, ReferenceInputs* inputs);

    std::string resolve(std::string_view raw);

private:
    /// The forms of references in brackets that one pass replaces.
    enum class Pass { Sigils, Sections };
    /// A variable whose value is being resolved.
    struct Active {
        std::uint32_t hash = 0;
        std::string_view name;
        /// Its value needs it.
        bool isRing = false;
    };
    struct Value {
        std::string text;
        bool isData = false;
    };

    bool wants(ReferenceKinds kind) const { return includes(kinds_, kind); }
    /// Takes `bytes` from the work that is left; false when too little is left.
    bool spend(std::size_t bytes);

    std::string withSigns(std::string_view text);
    std::optional<std::string> signRound(std::string_view text);
    std::optional<std::string> sign(char kind, std::string_view name);
    std::string withBrackets(std::string_view text, Pass pass);
    std::optional<Value> bracket(std::string_view inner, Pass pass);
    std::optional<std::string> section(std::string_view reference, bool mayCall);
    std::optional<std::string> call(std::string_view measure, std::string_view text);
    std::optional<std::string> variable(std::string_view name, bool withBracketForms);
    std::optional<std::string> event(std::string_view name);

    const ReferenceScope& scope_;
    std::string_view currentSection_;
    ReferenceKinds kinds_;
    ReferenceInputs* inputs_;
    std::vector<Active> active_;
    std::size_t work_;
};

} // namespace Ostrel
