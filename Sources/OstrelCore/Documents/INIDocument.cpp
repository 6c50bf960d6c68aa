#include "OstrelCore/Documents/INIDocument.h"

namespace Ostrel {

namespace {

/// The place in `keyValues` of a key, or `CaseIndex::Missing`.
std::size_t find(const INISection& section, std::string_view key, std::uint32_t hash) {
    const auto& [lines, index] = section.keyValues;
    return index.find(lines, key, hash,
        [&](const INIKeyIndex::Line& line) -> std::string_view { return section.keyValue(line.position).key; });
}

const INIKeyValue* findLine(const INISection& section, std::string_view key, std::uint32_t hash) {
    const auto at = find(section, key, hash);
    return at == CaseIndex::Missing ? nullptr : &section.keyValue(section.keyValues.lines[at].position);
}

/// Makes the next entry the effective line of its key, which is `key`; false when the key has a line already.
bool addKey(INISection& section, std::string_view key) {
    const auto hash = CaseFolding::hash(key);
    if (find(section, key, hash) != CaseIndex::Missing)
        return false;
    auto& [lines, index] = section.keyValues;
    lines.push_back({hash, static_cast<std::uint32_t>(section.entries.size())});
    index.noteAppended(lines);
    return true;
}

} // namespace

const INIKeyValue* INISection::line(std::string_view key) const {
    return findLine(*this, key, CaseFolding::hash(key));
}

const INIKeyValue* INISection::line(const CaseKey& key) const {
    return findLine(*this, key.text, key.hash);
}

const std::string* INISection::value(std::string_view key) const {
    const auto* found = line(key);
    return found ? &found->value : nullptr;
}

const std::string* INISection::value(const CaseKey& key) const {
    const auto* found = line(key);
    return found ? &found->value : nullptr;
}

void INISection::reserve(std::size_t lineCount) {
    // A section of many heads would be copied at each of them.
    if (!entries.empty())
        return;
    entries.reserve(lineCount);
    keyValues.lines.reserve(lineCount);
}

void INISection::append(std::string_view key, std::string_view value, const SourceLocation& at) {
    addKey(*this, key);
    entries.emplace_back(std::in_place_type<INIKeyValue>, key, value, at);
}

void INISection::appendComment(std::string_view text) {
    entries.emplace_back(std::in_place_type<INIComment>, text);
}

void INISection::appendIfAbsent(INIKeyValue line) {
    if (addKey(*this, line.key))
        entries.emplace_back(std::move(line));
}

const INISection* INIDocument::section(std::string_view name) const {
    const auto* position = sectionIndex.find(name);
    return position ? &sections[*position] : nullptr;
}

std::vector<std::string> INIDocument::sectionNames() const {
    std::vector<std::string> names;
    for (const auto& section : sections)
        names.push_back(section.name);
    return names;
}

std::size_t INIDocument::addOrMergeSection(std::string_view name, const SourceLocation& at) {
    if (sectionIndex.insertIfAbsent(name, sections.size())) {
        sections.push_back({std::string(name), at, {}, {}});
        return sections.size() - 1;
    }
    return *sectionIndex.find(name);
}

void INIDocument::mergeDocument(INIDocument included) {
    for (auto& section : included.sections) {
        if (sectionIndex.insertIfAbsent(section.name, sections.size())) {
            sections.push_back(std::move(section));
            continue;
        }
        auto& target = sections[*sectionIndex.find(section.name)];
        for (auto& entry : section.entries) {
            if (auto* line = std::get_if<INIKeyValue>(&entry))
                target.appendIfAbsent(std::move(*line));
        }
    }
}

} // namespace Ostrel
