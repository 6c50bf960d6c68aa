#pragma once

#include "OstrelDialect/References.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class FullLayout;
class FullMeasureTable;
class SkinVariables;
struct MeasureValue;
struct PackFolders;

/// The text of a value where no meter formats it.
std::string measureText(const MeasureValue& value);

/// What a resolved text was made of: while nothing of it changes, it would come out the same.
struct ReferenceDependencies {
    struct Item {
        enum class Kind : std::uint8_t { Variable, UnknownName, Measure, Meter } kind;
        std::size_t position = 0;
        std::uint64_t revision = 0;
    };
    std::vector<Item> items;
    /// A call into a script or a value that follows the clock: must be resolved each time.
    bool isVolatile = false;

    void clear() {
        items.clear();
        isVolatile = false;
    }
};

/// The values of an event whose action runs: the pointer's place, an input.
class EventValues {
public:
    virtual ~EventValues() = default;
    virtual std::optional<std::string> value(std::string_view name) const = 0;
};

/// Variables, measures and meters of a running skin, as references in texts see them.
class SkinScope final : public ReferenceScope {
public:
    /// All must outlive this.
    SkinScope(const SkinVariables& variables, const FullMeasureTable& measures, FullLayout& layout,
        const PackFolders& folders);

    std::optional<std::string> variable(std::string_view name) const override;
    std::optional<std::string> section(std::string_view name, std::optional<std::string_view> parameter) const override;
    std::optional<std::string> call(
        std::string_view measure, std::string_view function, const std::vector<std::string>& arguments) const override;
    std::optional<std::string> event(std::string_view name) const override;
    std::optional<std::string> environment(std::string_view name) const override;

    /// Resolves and notes what the text was made of.
    std::string resolve(const ReferenceText& text, std::string_view section, ReferenceKinds kinds,
        ReferenceDependencies& dependencies) const;
    bool isCurrent(const ReferenceDependencies& dependencies) const;

    /// A text that is not kept, with an event's values where one is going on.
    std::string resolveNow(std::string_view text, std::string_view section, ReferenceKinds kinds,
        const EventValues* events = nullptr) const;

private:
    std::optional<std::string> measureReference(std::size_t position, std::optional<std::string_view> parameter) const;
    void note(ReferenceDependencies::Item::Kind kind, std::size_t position, std::uint64_t revision) const;
    void noteVolatile() const;

    const SkinVariables& variables_;
    const FullMeasureTable& measures_;
    FullLayout& layout_;
    const PackFolders& folders_;
    mutable ReferenceDependencies* recorded_ = nullptr;
    mutable const EventValues* events_ = nullptr;
};

} // namespace Ostrel
