#include "OstrelCore/Documents/SectionClassifier.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"

#include <optional>
#include <string>
#include <vector>

namespace Ostrel::SectionClassifier {

namespace {

using StyleNames = CaseInsensitiveDictionary<bool>;

std::optional<std::string> optionalText(const std::string* value) {
    return value ? std::optional(*value) : std::nullopt;
}

Options optionsOf(const INISection& section) {
    const auto& [lines, index] = section.keyValues;
    std::vector<Options::Entry> entries;
    entries.reserve(lines.size());
    for (const auto& [hash, position] : lines) {
        const auto& line = section.keyValue(position);
        entries.emplace_back(line.key, line.value, hash);
    }
    return {std::move(entries), index};
}

/// Every name that any section, meter or not, gives as its style; a style may stand after its users.
StyleNames styleNames(const INIDocument& document) {
    StyleNames names;
    for (const auto& section : document.sections) {
        const auto* styles = section.value("MeterStyle"_key);
        if (!styles)
            continue;
        for (const auto name : splitDroppingEmpty(*styles, '|'))
            names.insertIfAbsent(trimmedWhitespace(name), true);
    }
    return names;
}

RainmeterOptions parseRainmeterOptions(const INISection& section) {
    const auto integer = [&](const CaseKey& key) {
        const auto* value = section.value(key);
        return value ? parseInteger(*value) : std::nullopt;
    };
    RainmeterOptions options;
    options.update = integer("Update"_key).value_or(options.update);
    options.background = optionalText(section.value("Background"_key));
    options.backgroundMode = integer("BackgroundMode"_key);
    options.backgroundMargins = optionalText(section.value("BackgroundMargins"_key));
    options.allOptions = optionsOf(section);
    return options;
}

SkinMetadata parseMetadata(const INISection& section) {
    return {optionalText(section.value("Name"_key)), optionalText(section.value("Author"_key)),
        optionalText(section.value("Information"_key)), optionalText(section.value("License"_key)),
        optionalText(section.value("Version"_key))};
}

MeasureDefinition measureDefinition(const INISection& section, const std::string& type) {
    auto plugin = equalsIgnoringCase(type, "PLUGIN") ? optionalText(section.value("Plugin"_key)) : std::nullopt;
    return {section.name, type, std::move(plugin), optionsOf(section)};
}

MeterDefinition meterDefinition(const INISection& section, const std::string& type) {
    return {section.name, type, optionalText(section.value("MeterStyle"_key)), optionsOf(section)};
}

/// The order of the tests matters: what has both keys is a measure, and a meter stays one when it is used as a style.
void classify(const INISection& section, const StyleNames& styles, SkinConfig& config) {
    if (equalsIgnoringCase(section.name, "RAINMETER"))
        config.rainmeterOptions = parseRainmeterOptions(section);
    else if (equalsIgnoringCase(section.name, "METADATA"))
        config.metadata = parseMetadata(section);
    else if (equalsIgnoringCase(section.name, "VARIABLES"))
        config.variables = optionsOf(section);
    else if (const auto* measure = section.value("Measure"_key))
        config.measures.push_back(measureDefinition(section, *measure));
    else if (const auto* meter = section.value("Meter"_key))
        config.meters.push_back(meterDefinition(section, *meter));
    else if (styles.contains(section.name))
        config.styles.push_back({section.name, optionsOf(section)});
    else
        config.unknownSections.push_back(section.name);
}

} // namespace

SkinConfig classify(INIDocument document, std::string filePath) {
    SkinConfig config;
    config.filePath = std::move(filePath);
    config.rawDocument = std::move(document);
    const auto styles = styleNames(config.rawDocument);
    for (const auto& section : config.rawDocument.sections)
        classify(section, styles, config);
    return config;
}

} // namespace Ostrel::SectionClassifier
