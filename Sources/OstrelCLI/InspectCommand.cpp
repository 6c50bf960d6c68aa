#include "OstrelCLI/InspectCommand.h"

#include "OstrelCLI/DialectOptions.h"
#include "OstrelCLI/JSON.h"
#include "OstrelCore/Packages/SkinInput.h"
#include "OstrelDialect/PackReader.h"

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

JSON skinJSON(const SkinConfig& config, const std::vector<Diagnostic>& diagnostics) {
    return {{"filePath", config.filePath}, {"rainmeter", rainmeterJSON(config.rainmeterOptions)},
        {"metadata", metadataJSON(config.metadata)}, {"variables", jsonPairs(config.variables)},
        {"measures", jsonList(config.measures, measureJSON)}, {"meters", jsonList(config.meters, meterJSON)},
        {"styles", jsonList(config.styles, styleJSON)}, {"unknownSections", config.unknownSections},
        {"sections", jsonList(config.rawDocument.sections, sectionJSON)},
        {"diagnostics", jsonList(diagnostics, [](const Diagnostic& item) { return JSON(item.description()); })}};
}

int inspectFull(const std::string& path, const DialectOptions& options) {
    const auto skin = readPackSkin(path, std::nullopt, options.root);
    if (!skin) {
        printMessage("cannot load " + path);
        return InputFailed;
    }
    auto json = skinJSON(skinConfigAtLoad(*skin), skin->diagnostics);
    json["dialect"] = "full";
    std::cout << printed(json) << "\n";
    return Done;
}

} // namespace

int run(Arguments arguments) {
    const auto options = DialectOptions::parse(arguments);
    if (!options || options->rest.size() != 1 || isOption(options->rest.front()))
        return wrongUsage(Usage);
    const std::string path(options->rest.front());
    if (options->isFull)
        return inspectFull(path, *options);
    DiagnosticCollector diagnostics;
    const auto config = loadSkin(path, diagnostics);
    if (!config)
        return InputFailed;
    std::cout << printed(skinJSON(*config, diagnostics.diagnostics())) << "\n";
    return Done;
}

} // namespace Ostrel::InspectCommand
