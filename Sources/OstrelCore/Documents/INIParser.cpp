#include "OstrelCore/Documents/INIParser.h"

#include "OstrelCore/Documents/VariableExpander.h"
#include "OstrelCore/Documents/VariableStore.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <memory>

namespace Ostrel {

namespace {

using Lines = std::span<const INILine>;

bool isHead(const INILine& line) {
    return line.kind == INILineKind::SectionHead;
}

/// Calls `visit(head, lines up to the next head)`. Lines before the first head belong to nothing.
template <typename Visit> void forEachHead(Lines lines, Visit visit) {
    auto head = std::find_if(lines.begin(), lines.end(), isHead);
    while (head != lines.end()) {
        const auto end = std::find_if(head + 1, lines.end(), isHead);
        visit(*head, Lines(head + 1, end));
        head = end;
    }
}

INIDocument documentFor(Lines lines) {
    INIDocument document;
    const auto heads = std::count_if(lines.begin(), lines.end(), isHead);
    // Heads may repeat by the thousand.
    document.sections.reserve(std::min<std::size_t>(static_cast<std::size_t>(heads), 1024));
    return document;
}

void parseContent(Lines lines, SourceLocation location, INISection& section) {
    section.reserve(lines.size());
    for (const auto& line : lines) {
        location.line = line.number;
        if (line.kind == INILineKind::Comment)
            section.appendComment(line.text);
        else if (const auto pair = splitKeyLine(line.text))
            section.append(pair->key, pair->value, location);
    }
}

/// One call of `parseWithIncludes`: what all its files share.
class IncludingParse {
public:
    /// The expander is null exactly when the store is.
    IncludingParse(
        const INIParser& parser, VariableStore* store, VariableExpander* expander, DiagnosticCollector& diagnostics)
        : parser_(parser)
        , store_(store)
        , expander_(expander)
        , diagnostics_(diagnostics) { }

    std::optional<INIDocument> parseFile(const std::string& path, int depth) {
        if (depth >= INIParser::MaxIncludeDepth) {
            diagnostics_.error("@Include depth limit (100) exceeded at: " + path);
            return std::nullopt;
        }
        const auto content = parser_.readFile(path);
        if (!content)
            return std::nullopt;
        bytes_ += content->size();
        return parseLines(readLines(*content), path, depth);
    }

    INIDocument parseLines(Lines lines, const std::string& path, int depth) {
        lines_ += lines.size();
        File file{path, depth, documentFor(lines), {std::make_shared<const std::string>(path), 0}};
        forEachHead(lines, [&](const INILine& head, Lines body) { parseSection(head, body, file); });
        return std::move(file.document);
    }

private:
    struct File {
        const std::string& path;
        int depth = 0;
        INIDocument document;
        /// Of the line at hand.
        SourceLocation location;
    };

    void parseSection(const INILine& head, Lines body, File& file) {
        file.location.line = head.number;
        const auto position = file.document.addOrMergeSection(head.text, file.location);
        file.document.sections[position].reserve(body.size());
        const bool isVariables = store_ && equalsIgnoringCase(head.text, "VARIABLES");
        for (const auto& line : body) {
            file.location.line = line.number;
            // Asked for at each line: an include may add sections and so move this one.
            auto& section = file.document.sections[position];
            if (line.kind == INILineKind::Comment)
                section.appendComment(line.text);
            else if (const auto pair = splitKeyLine(line.text))
                parseKey(*pair, section, isVariables, file);
        }
    }

    void parseKey(const INIKeyLine& pair, INISection& section, bool isVariables, File& file) {
        if (hasPrefixIgnoringCase(pair.key, "@INCLUDE")) {
            include(pair.value, file);
            return;
        }
        section.append(pair.key, pair.value, file.location);
        if (isVariables)
            store_->setUserVariableIfAbsent(pair.key, std::string(pair.value));
    }

    void include(std::string_view value, File& file) {
        auto path = normalizeSeparators(expander_ ? expander_->expand(value) : std::string(value));
        if (!isAbsolutePath(path))
            path = appendingPathComponent(deletingLastPathComponent(file.path), path);
        if (isExhausted(path))
            return;
        if (auto included = parseFile(path, file.depth + 1))
            file.document.mergeDocument(std::move(*included));
    }

    /// A file that includes itself twice would be read two to the power of the depth limit times.
    bool isExhausted(const std::string& path) {
        if (wasExhausted_)
            return true;
        wasExhausted_
            = ++includes_ > INIParser::MaxIncludes || lines_ > INIParser::MaxLines || bytes_ > INIParser::MaxBytes;
        if (wasExhausted_)
            diagnostics_.error("Too many included files or lines at: " + path);
        return wasExhausted_;
    }

    const INIParser& parser_;
    VariableStore* store_;
    VariableExpander* expander_;
    DiagnosticCollector& diagnostics_;
    int includes_ = 0;
    std::size_t lines_ = 0;
    std::size_t bytes_ = 0;
    bool wasExhausted_ = false;
};

} // namespace

INIDocument INIParser::parse(std::string_view content, std::string_view filePath) const {
    const auto lines = readLines(content);
    auto document = documentFor(lines);
    SourceLocation location{std::make_shared<const std::string>(filePath), 0};
    forEachHead(lines, [&](const INILine& head, Lines body) {
        location.line = head.number;
        parseContent(body, location, document.sections[document.addOrMergeSection(head.text, location)]);
    });
    return document;
}

std::optional<INIDocument> INIParser::parseFile(const std::string& path) const {
    const auto content = readFile(path);
    return content ? std::optional(parse(*content, path)) : std::nullopt;
}

std::optional<INIDocument> INIParser::parseWithIncludes(const std::string& path, VariableStore* store) const {
    if (!store)
        return IncludingParse(*this, nullptr, nullptr, diagnostics_).parseFile(path, 0);
    VariableExpander expander(*store, diagnostics_);
    return IncludingParse(*this, store, &expander, diagnostics_).parseFile(path, 0);
}

INIDocument INIParser::parseWithIncludes(
    Lines lines, const std::string& path, VariableStore& store, VariableExpander& expander) const {
    return IncludingParse(*this, &store, &expander, diagnostics_).parseLines(lines, path, 0);
}

std::optional<INISection> INIParser::parseSection(Lines lines, std::string_view filePath, std::string_view name) {
    SourceLocation location{std::make_shared<const std::string>(filePath), 0};
    std::optional<INISection> section;
    forEachHead(lines, [&](const INILine& head, Lines body) {
        if (!equalsIgnoringCase(head.text, name))
            return;
        location.line = head.number;
        if (!section)
            section = INISection{std::string(head.text), location, {}, {}};
        parseContent(body, location, *section);
    });
    return section;
}

std::optional<std::string> INIParser::readFile(const std::string& path) const {
    auto content = files_.contentsOfFile(path);
    if (!content)
        diagnostics_.error("Cannot read file: " + path);
    return content;
}

} // namespace Ostrel
