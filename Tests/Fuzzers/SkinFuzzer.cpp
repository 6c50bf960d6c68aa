#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelCore/Documents/TextDecoding.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace Ostrel {

namespace {

/// The input's parts between the bytes 1E are files: "/s/0" is the skin, "/s/1" and on are there to be included.
InMemoryFileProvider filesOf(std::string_view input) {
    InMemoryFileProvider files;
    char digit = '0';
    for (const auto part : split(input, '\x1E')) {
        auto text = decodeText(std::string(part));
        if (!isValidUTF8(text))
            std::abort();
        files.addFile(std::string("/s/") + digit++, std::move(text));
    }
    return files;
}

/// Every key finds its first line and no other, and the effective lines are in order.
void checkKeys(const INISection& section) {
    for (const auto& entry : section.entries) {
        const auto* line = std::get_if<INIKeyValue>(&entry);
        const auto* effective = line ? section.line(line->key) : nullptr;
        if (line && (!effective || effective > line || !equalsIgnoringCase(effective->key, line->key)))
            std::abort();
    }
    const INIKeyValue* before = nullptr;
    section.forEachLine([&](const INIKeyValue& line) {
        if (before >= &line || section.line(line.key) != &line)
            std::abort();
        before = &line;
    });
}

void checkSkin(const SkinConfig& config) {
    auto classified
        = config.measures.size() + config.meters.size() + config.styles.size() + config.unknownSections.size();
    for (const auto& section : config.rawDocument.sections) {
        checkKeys(section);
        if (section.name.empty() || config.rawDocument.section(section.name) != &section)
            std::abort();
        for (const auto* name : {"RAINMETER", "METADATA", "VARIABLES"})
            classified += equalsIgnoringCase(section.name, name) ? 1 : 0;
    }
    if (classified != config.rawDocument.sections.size())
        std::abort();
}

} // namespace

} // namespace Ostrel

/// A skin and its includes: what can be read can be loaded, every time alike, and its keys lead to their lines.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Ostrel;
    auto files = filesOf({reinterpret_cast<const char*>(data), size});
    DiagnosticCollector diagnostics;
    const auto config = SkinLoader(files, diagnostics).load("/s/0");
    if (!config)
        std::abort();
    checkSkin(*config);
    // What meets the limits is slow enough once.
    DiagnosticCollector again;
    if (diagnostics.warnings().empty()
        && (config != SkinLoader(files, again).load("/s/0") || again.diagnostics() != diagnostics.diagnostics()))
        std::abort();
    return 0;
}
