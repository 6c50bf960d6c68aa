#include "OstrelDialect/References.h"

#include "OstrelDialect/LiteralMarks.h"
#include "OstrelDialect/ReferenceResolver.h"

#include <algorithm>

namespace Ostrel {

namespace {

/// Whether a bracket here may begin a reference to a section, as far as the character behind it tells.
bool mayBeginSection(char following) {
    return following != '#' && following != '$' && following != '\\' && following != '*' && following != '!'
        && following != ']';
}

} // namespace

std::string resolveReferences(std::string_view raw, const ReferenceScope& scope, std::string_view currentSection,
    ReferenceKinds kinds, ReferenceInputs* inputs) {
    return ReferenceResolver(scope, currentSection, kinds, inputs).resolve(raw);
}

ReferenceText ReferenceText::parse(std::string_view raw) {
    ReferenceText text;
    text.raw_ = raw;
    text.isPlain_
        = raw.find_first_of("#%$[") == std::string_view::npos && raw.find(LiteralMarks::Open) == std::string_view::npos;
    for (auto at = raw.find('['); at != std::string_view::npos && !text.hasSections_; at = raw.find('[', at + 1))
        text.hasSections_ = at + 1 < raw.size() && mayBeginSection(raw[at + 1]);
    return text;
}

std::string ReferenceText::resolve(
    const ReferenceScope& scope, std::string_view currentSection, ReferenceKinds kinds) const {
    return isPlain_ ? raw_ : resolveReferences(raw_, scope, currentSection, kinds);
}

bool LiveText::update(const ReferenceScope& scope, std::string_view currentSection) {
    if (isResolved_ && (source_.isPlain() || isCurrent(scope)))
        return false;
    const bool isFirst = !isResolved_;
    std::string former = std::move(text_);
    resolve(scope, currentSection);
    return isFirst || text_ != former;
}

bool LiveText::isCurrent(const ReferenceScope& scope) {
    if (inputs_.isVolatile)
        return false;
    const auto revision = scope.revision();
    if (revision != 0 && revision == revision_)
        return true;
    if (inputs_.hasVariables && (variablesRevision_ == 0 || scope.variablesRevision() != variablesRevision_))
        return false;
    for (std::size_t i = 0; i < inputs_.sections.size(); ++i) {
        if (sectionRevisions_[i] == 0 || scope.sectionRevision(inputs_.sections[i]) != sectionRevisions_[i])
            return false;
    }
    revision_ = revision;
    return true;
}

void LiveText::resolve(const ReferenceScope& scope, std::string_view currentSection) {
    inputs_ = {};
    // Taken before the values: a change that a call makes meanwhile counts for the next update.
    revision_ = scope.revision();
    variablesRevision_ = scope.variablesRevision();
    text_
        = source_.isPlain() ? source_.raw() : resolveReferences(source_.raw(), scope, currentSection, kinds_, &inputs_);
    sectionRevisions_.clear();
    for (const auto& name : inputs_.sections)
        sectionRevisions_.push_back(scope.sectionRevision(name));
    isResolved_ = true;
}

} // namespace Ostrel
