#pragma once

#include "OstrelCore/Documents/SkinModel.h"
#include "OstrelEngine/Measures/MeasureValue.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Ostrel {

class SkinScript;
class Substitution;
struct Platform;

/// What general options make of each value that a measure takes. One a measure; may keep state, such as an average.
class ValueShaping {
public:
    virtual ~ValueShaping() = default;
    /// Called at each update with the value as the measure took it, after every change of an option first with
    /// `optionsDidChange`.
    virtual void shape(MeasureValue& value) = 0;
    virtual void optionsDidChange(const Options& options) = 0;
};

/// Base of all measures: name, options, the value and its substitution.
class BaseMeasure {
public:
    BaseMeasure(const MeasureDefinition& definition, std::string skinPath);
    virtual ~BaseMeasure();
    BaseMeasure(const BaseMeasure&) = delete;
    BaseMeasure& operator=(const BaseMeasure&) = delete;

    const std::string& name() const { return definition_.sectionName; }
    const MeasureDefinition& definition() const { return definition_; }
    const std::string& skinPath() const { return skinPath_; }

    const MeasureValue& value() const { return value_; }
    /// Grows whenever an assignment changed the value.
    std::uint64_t valueRevision() const { return valueRevision_; }

    /// Ticks between two updates; negative: on the first tick only. Never 0.
    int updateDivider() const { return updateDivider_; }
    void setUpdateDivider(int divider) { updateDivider_ = divider; }
    /// 1 when the text is no integer; a negative number becomes -1, 0 becomes 1.
    static int parseUpdateDivider(std::optional<std::string_view> text);

    const Options& options() const { return options_; }
    /// Grows with every change of an option, so that what was parsed from them can be kept until then.
    std::uint64_t optionsRevision() const { return optionsRevision_; }
    void setOption(std::string_view key, std::string_view value);
    /// The option is as if it had never been there.
    void removeOption(std::string_view key);

    /// Takes the place of `Substitute` from the next update on.
    void setShaping(std::unique_ptr<ValueShaping> shaping);
    /// A disabled measure: the number reads 0, the text stays.
    virtual void readAsZero();

    /// Recomputes the value. The base keeps what it has.
    virtual void update() { }
    /// The moment that a measure of time shows, in seconds since 1601; absent for all others.
    virtual std::optional<double> timeStamp() const { return std::nullopt; }
    /// Carries out a command; false when this kind of measure takes none.
    virtual bool executeCommand(std::string_view) { return false; }
    /// The answer to the field that this measure had its skin show, and its end without one.
    virtual void submitInput(std::string_view) { }
    virtual void dismissInput() { }
    /// Called once, when all measures of the skin exist: a measure that refers to others looks them up.
    virtual void resolveReferences() { }
    /// Whether the options name actions for what the pointer does over the widget.
    virtual bool takesMouseEvents() const { return false; }
    /// Null for all measures but scripts of the full dialect.
    virtual SkinScript* script() { return nullptr; }

protected:
    /// The live option, else absent. The view lives until the option changes.
    std::optional<std::string_view> option(const CaseKey& key) const { return Ostrel::option(options_, key); }
    /// Assigns the value: `Substitute` acts on its text, and a change is noted. Nothing is allocated when nothing
    /// changes.
    void publish(double number, std::string_view text, bool preferText, double minimum, double maximum);
    /// Assigns the value that stands, for a measure whose inputs are the same: only a NaN counts as changed.
    void publishUnchanged();

private:
    void publishShaped(double number, std::string_view text, bool preferText, double minimum, double maximum);

    MeasureDefinition definition_;
    std::string skinPath_;
    Options options_;
    std::unique_ptr<Substitution> substitution_;
    std::unique_ptr<ValueShaping> shaping_;
    /// With a shaping: the value as the measure took it, and the options that the shaping has seen.
    MeasureValue taken_;
    std::uint64_t shapedOptionsRevision_ = 0;
    MeasureValue value_;
    std::uint64_t valueRevision_ = 0;
    std::uint64_t optionsRevision_ = 0;
    int updateDivider_ = 1;
};

/// Stands for a measure that cannot work here: 0 and the empty text, while its actions and groups still work.
class StubMeasure final : public BaseMeasure {
public:
    using BaseMeasure::BaseMeasure;
};

} // namespace Ostrel
