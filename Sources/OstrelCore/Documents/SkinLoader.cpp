#include "OstrelCore/Documents/SkinLoader.h"

#include "OstrelCore/Documents/INILines.h"
#include "OstrelCore/Documents/INIParser.h"
#include "OstrelCore/Documents/SectionClassifier.h"
#include "OstrelCore/Documents/VariableExpander.h"
#include "OstrelCore/Documents/VariableStore.h"

namespace Ostrel {

namespace {

/// Values only: keys keep their text, and so every section's index of keys stays true.
void expandValues(INIDocument& document, VariableExpander& expander) {
    for (auto& section : document.sections) {
        for (auto& entry : section.entries) {
            if (auto* line = std::get_if<INIKeyValue>(&entry))
                expander.expandInPlace(line->value);
        }
    }
}

} // namespace

std::optional<INIDocument> SkinLoader::read(
    const std::string& path, VariableStore& store, VariableExpander& expander) const {
    const INIParser parser(files_, diagnostics_);
    const auto content = parser.readFile(path);
    if (!content)
        return std::nullopt;
    store.configureBuiltIns(path);
    const auto lines = readLines(*content);
    // An include may be named by a variable that stands further down, so the file's own variables are read first.
    if (const auto variables = INIParser::parseSection(lines, path, "VARIABLES"))
        store.loadVariables(*variables);
    auto document = parser.parseWithIncludes(lines, path, store, expander);
    if (const auto* variables = document.section("VARIABLES"))
        store.loadVariables(*variables);
    return document;
}

std::optional<SkinConfig> SkinLoader::load(const std::string& path) const {
    VariableStore store;
    VariableExpander expander(store, diagnostics_);
    auto document = read(path, store, expander);
    if (!document)
        return std::nullopt;
    expandValues(*document, expander);
    return SectionClassifier::classify(std::move(*document), path);
}

} // namespace Ostrel
