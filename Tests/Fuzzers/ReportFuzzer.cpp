// A skin of any bytes: it loads, its report can be written in both forms, and the hand-written searches in its values
// find what their regular expressions find.

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelCore/Documents/TextDecoding.h"
#include "OstrelCore/Report/CompatPatterns.h"
#include "OstrelCore/Report/CompatReportFormatter.h"
#include "OstrelCore/Report/CompatScanner.h"

#include <cstdint>
#include <cstdlib>
#include <unicode/regex.h>

namespace {

using namespace Ostrel;

/// The expression backtracks over long values.
constexpr std::size_t MaxComparedLength = 500;

class Pattern {
public:
    Pattern(const char16_t* text, std::uint32_t flags, bool (*contains)(std::string_view))
        : matcher_(icu::UnicodeString(text), flags, error_)
        , contains_(contains) { }

    void check(std::string_view value) {
        const auto text = icu::UnicodeString::fromUTF8(icu::StringPiece(value.data(), static_cast<int>(value.size())));
        if (contains_(value) != static_cast<bool>(matcher_.reset(text).find()))
            std::abort();
    }

private:
    UErrorCode error_ = U_ZERO_ERROR;
    icu::RegexMatcher matcher_;
    bool (*contains_)(std::string_view);
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Pattern patterns[] = {
        {uR"(\"[^\"]*\.exe\"|\b[^\s\"']+\.exe\b)", UREGEX_CASE_INSENSITIVE, CompatPatterns::containsExecutable},
        {uR"([A-Za-z]:\\)", 0, CompatPatterns::containsDrivePath},
        {u"%[A-Za-z]+%", 0, CompatPatterns::containsEnvironmentVariable},
    };
    InMemoryFileProvider files;
    files.addFile("/skin/x.ini", decodeText(std::string(reinterpret_cast<const char*>(data), size)));
    DiagnosticCollector diagnostics;
    const auto config = SkinLoader(files, diagnostics).load("/skin/x.ini");
    if (!config)
        std::abort();
    const auto report = CompatScanner::scan(*config);
    if (report.incompatibleCount() + report.warningCount() != report.findings.size())
        std::abort();
    (void)CompatReportFormatter::formatText(report);
    (void)CompatReportFormatter::formatJSON(report);
    for (const auto& section : config->rawDocument.sections) {
        section.forEachLine([](const INIKeyValue& line) {
            for (auto& pattern : patterns) {
                if (line.value.size() <= MaxComparedLength)
                    pattern.check(line.value);
            }
        });
    }
    return 0;
}
