#pragma once

#include "OstrelEngine/Measures/MeasureHost.h"
#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class FullMeasureHost;
class ScriptHost;
struct PackFolders;
struct Platform;

/// What a pack may do beyond drawing and its own files.
enum class Permission { Scripts, Web, Programs, Files };

enum class LogLevel { Notice, Error, Warning, Debug };

/// What a measure of the full dialect may ask of its skin. Outlives the measure. Main thread.
class FullMeasureHost : public MeasureHost {
public:
    virtual const PackFolders& folders() const = 0;
    virtual const Platform& platform() const = 0;
    /// `detail` is what is asked for: a host, a command line, a path. A refusal is recorded.
    virtual bool isAllowed(Permission permission, std::string_view detail) = 0;
    /// One line with skin and section, each text once a minute.
    virtual void log(LogLevel level, std::string_view section, std::string_view text) = 0;
    /// In file order.
    virtual const std::vector<std::unique_ptr<BaseMeasure>>& allMeasures() const = 0;
    /// `runAction` while `$UserInput$` is what the user has typed: data, which is never read as a reference or a bang.
    virtual void runActionWithInput(const BaseMeasure& measure, std::string_view action, std::string_view input);
    /// The text with all references replaced as they are now.
    virtual std::string resolved(const BaseMeasure& measure, std::string_view raw) const = 0;
    /// Seconds since the skin was loaded, and update cycles since then, refreshes included.
    virtual std::int64_t cycleCount() const = 0;
    /// A background measure's value has arrived: it is taken over and what hangs on it runs at its next update.
    virtual void valueDidArrive(BaseMeasure& measure) = 0;
    /// What scripts may do with the skin.
    virtual ScriptHost& scriptHost() = 0;
};

/// Base of the measures of the full dialect: options as numbers and switches, and the two kinds of value. The general
/// options (range, average, inversion, substitution) are applied to what is published, not by the measures.
class FullMeasure : public BaseMeasure {
public:
    FullMeasure(const MeasureDefinition& definition, FullMeasureHost& host);

protected:
    FullMeasureHost& host() const { return host_; }
    /// True at the first call, and once after each change of an option: the measure then reads its options.
    bool optionsDidChange();
    /// The number of an option, else the fallback.
    double number(const CaseKey& key, double fallback) const;
    int integer(const CaseKey& key, int fallback) const;
    bool isOn(const CaseKey& key, bool fallback) const;
    std::string_view text(const CaseKey& key, std::string_view fallback = {}) const;

    /// A number without a text of its own; its range is the smallest and largest value seen.
    void publishNumber(double number);
    /// The same with the range that its kind has.
    void publishNumber(double number, double minimum, double maximum);
    /// A text of its own, and a number.
    void publishText(std::string_view text, double number);
    void publishText(std::string_view text, double number, double minimum, double maximum);

private:
    FullMeasureHost& host_;
    std::optional<std::uint64_t> readRevision_;
};

} // namespace Ostrel
