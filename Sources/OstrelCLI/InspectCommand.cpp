#include "OstrelCLI/InspectCommand.h"

#include "OstrelCLI/JSON.h"
#include "OstrelCore/Packages/SkinInput.h"

#include <iostream>
#include <string>

namespace Ostrel::InspectCommand {

namespace {

template <typename Items, typename ToJSON> JSON jsonList(const Items& items, ToJSON toJSON) {
    auto list = JSON::array();
    for (const auto& item : items)
        list.push_back(toJSON(item));
    return list;
}

JSON rainmeterJSON(const RainmeterOptions& options) {
    return {{"update", options.update}, {"background", jsonText(options.background)},
        {"backgroundMode", options.backgroundMode ? JSON(*options.backgroundMode) : JSON(nullptr)},
        {"backgroundMargins", jsonText(options.backgroundMargins)}, {"options", jsonPairs(options.allOptions)}};
}

JSON metadataJSON(const SkinMetadata& metadata) {
    return {{"name", jsonText(metadata.name)}, {"author", jsonText(metadata.author)},
        {"information", jsonText(metadata.information)}, {"license", jsonText(metadata.license)},
        {"version", jsonText(metadata.version)}};
}

JSON measureJSON(const MeasureDefinition& measure) {
    return {{"name", measure.sectionName}, {"type", measure.measureType}, {"plugin", jsonText(measure.pluginName)},
        {"options", jsonPairs(measure.allOptions)}};
}

JSON meterJSON(const MeterDefinition& meter) {
    return {{"name", meter.sectionName}, {"type", meter.meterType}, {"style", jsonText(meter.meterStyleRef)},
        {"options", jsonPairs(meter.allOptions)}};
}

JSON styleJSON(const StyleDefinition& style) {
    return {{"name", style.sectionName}, {"options", jsonPairs(style.allOptions)}};
}

JSON entryJSON(const INIEntry& entry) {
    if (const auto* line = std::get_if<INIKeyValue>(&entry))
        return JSON::array({line->key, line->value, line->location.line});
    return JSON::array({std::get<INIComment>(entry).text});
}

JSON sectionJSON(const INISection& section) {
    return {{"name", section.name}, {"line", section.location.line}, {"entries", jsonList(section.entries, entryJSON)}};
}

JSON skinJSON(const SkinConfig& config, const DiagnosticCollector& diagnostics) {
    return {{"filePath", config.filePath}, {"rainmeter", rainmeterJSON(config.rainmeterOptions)},
        {"metadata", metadataJSON(config.metadata)}, {"variables", jsonPairs(config.variables)},
        {"measures", jsonList(config.measures, measureJSON)}, {"meters", jsonList(config.meters, meterJSON)},
        {"styles", jsonList(config.styles, styleJSON)}, {"unknownSections", config.unknownSections},
        {"sections", jsonList(config.rawDocument.sections, sectionJSON)},
        {"diagnostics",
            jsonList(diagnostics.diagnostics(), [](const Diagnostic& item) { return JSON(item.description()); })}};
}

} // namespace

int run(Arguments arguments) {
    if (arguments.size() != 1 || arguments.front().starts_with("--"))
        return wrongUsage(Usage);
    DiagnosticCollector diagnostics;
    const auto config = loadSkin(std::string(arguments.front()), diagnostics);
    if (!config)
        return InputFailed;
    std::cout << printed(skinJSON(*config, diagnostics)) << "\n";
    return Done;
}

} // namespace Ostrel::InspectCommand
