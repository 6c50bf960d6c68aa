#pragma once

#include "OstrelCore/Documents/INIDocument.h"
#include "OstrelCore/Text/CaseInsensitiveDictionary.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace Ostrel {

/// The [Rainmeter] section.
struct RainmeterOptions {
    /// Milliseconds; may be negative as written.
    std::int64_t update = 1000;
    std::optional<std::string> background;
    std::optional<std::int64_t> backgroundMode;
    std::optional<std::string> backgroundMargins;
    Options allOptions;

    friend bool operator==(const RainmeterOptions&, const RainmeterOptions&) = default;
};

/// The [Metadata] section.
struct SkinMetadata {
    std::optional<std::string> name;
    std::optional<std::string> author;
    std::optional<std::string> information;
    std::optional<std::string> license;
    std::optional<std::string> version;

    friend bool operator==(const SkinMetadata&, const SkinMetadata&) = default;
};

struct MeasureDefinition {
    std::string sectionName;
    /// As written.
    std::string measureType;
    /// Only when the type is "Plugin" in any case.
    std::optional<std::string> pluginName;
    Options allOptions;

    friend bool operator==(const MeasureDefinition&, const MeasureDefinition&) = default;
};

struct MeterDefinition {
    std::string sectionName;
    std::string meterType;
    /// As written: names separated by "|".
    std::optional<std::string> meterStyleRef;
    /// The section's own keys, styles not yet merged.
    Options allOptions;

    friend bool operator==(const MeterDefinition&, const MeterDefinition&) = default;
};

struct StyleDefinition {
    std::string sectionName;
    Options allOptions;

    friend bool operator==(const StyleDefinition&, const StyleDefinition&) = default;
};

/// A loaded skin as plain data. All lists are in document order; that of the meters is the drawing order.
struct SkinConfig {
    std::string filePath;
    RainmeterOptions rainmeterOptions;
    SkinMetadata metadata;
    Options variables;
    std::vector<MeasureDefinition> measures;
    std::vector<MeterDefinition> meters;
    std::vector<StyleDefinition> styles;
    std::vector<std::string> unknownSections;
    /// After includes and variable expansion.
    INIDocument rawDocument;

    friend bool operator==(const SkinConfig&, const SkinConfig&) = default;
};

} // namespace Ostrel
