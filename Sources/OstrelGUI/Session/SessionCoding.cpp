#include "OstrelGUI/Session/SessionCoding.h"

#include "OstrelEngine/Runtime/WidgetRuntimeStateJSON.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <vector>

namespace Ostrel {

namespace {

using nlohmann::json;

std::string dumped(const json& value) {
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

/// Writes one object, member by member.
class ObjectWriter {
public:
    explicit ObjectWriter(std::string& text)
        : text_(text) {
        text_ += '{';
    }
    void end() { text_ += '}'; }

    void member(std::string_view name, std::string_view value) {
        begin(name);
        text_ += value;
    }
    void origin(const std::optional<Point>& origin) {
        // There is no JSON for a place that is nowhere.
        if (origin && std::isfinite(origin->x) && std::isfinite(origin->y))
            member("origin", dumped({{"x", origin->x}, {"y", origin->y}}));
    }
    void picture(const SnapshotPicture& picture) {
        if (const auto base64 = picture.base64(); !base64.empty())
            member("snapshotData", "\"" + base64 + "\"");
    }

private:
    void begin(std::string_view name) {
        if (text_.back() != '{')
            text_ += ',';
        text_.append("\"").append(name).append("\":");
    }

    std::string& text_;
};

void appendWhole(std::string& text, const OstrelWidgetState& widget) {
    ObjectWriter writer(text);
    writer.member("path", dumped(widget.path));
    writer.origin(widget.origin);
    if (widget.runtime)
        writer.member("runtime", encodeJSON(*widget.runtime));
    writer.member("isRendered", widget.isRendered ? "true" : "false");
    if (widget.snapshotData)
        writer.picture(*widget.snapshotData);
    writer.end();
}

/// The entries of `to` that `from` has not, or has otherwise. Absent when `from` has one that `to` has not.
template <typename Map> std::optional<Map> entriesSet(const Map& from, const Map& to) {
    Map result;
    auto old = from.begin();
    for (const auto& entry : to) {
        if (old != from.end() && old->first < entry.first)
            return std::nullopt;
        const bool isKnown = old != from.end() && old->first == entry.first;
        if (!isKnown || old->second != entry.second)
            result.insert(entry);
        if (isKnown)
            ++old;
    }
    return old == from.end() ? std::optional(std::move(result)) : std::nullopt;
}

void appendRuntimeChange(ObjectWriter& writer, const WidgetRuntimeState* from, const WidgetRuntimeState& to) {
    const auto variables = from ? entriesSet(from->variables, to.variables) : std::nullopt;
    const auto visibility = from ? entriesSet(from->meterVisibility, to.meterVisibility) : std::nullopt;
    if (!variables || !visibility)
        return writer.member("runtime", encodeJSON(to));
    if (!variables->empty())
        writer.member("variables", dumped(*variables));
    if (!visibility->empty())
        writer.member("meterVisibility", dumped(*visibility));
}

bool appendDifference(std::string& text, const OstrelWidgetState& from, const OstrelWidgetState& to) {
    const bool runtime = to.runtime && !areSameRuntime(from.runtime, to.runtime);
    const bool picture = to.snapshotData && !areSamePicture(from.snapshotData, to.snapshotData);
    if (from.origin == to.origin && from.isRendered == to.isRendered && !runtime && !picture)
        return false;
    ObjectWriter writer(text);
    writer.member("path", dumped(to.path));
    if (from.origin != to.origin)
        writer.origin(to.origin);
    if (runtime)
        appendRuntimeChange(writer, from.runtime.get(), *to.runtime);
    if (from.isRendered != to.isRendered)
        writer.member("isRendered", to.isRendered ? "true" : "false");
    if (picture)
        writer.picture(*to.snapshotData);
    writer.end();
    return true;
}

/// What a change cannot tell as a difference: something known that is not known any more.
bool forgets(const OstrelWidgetState& from, const OstrelWidgetState& to) {
    return (from.origin && !to.origin) || (from.runtime && !to.runtime) || (from.snapshotData && !to.snapshotData);
}

} // namespace

std::string encodeSession(const OstrelSessionState& state) {
    std::string text = "{\"widgets\":[";
    for (const auto& widget : state.widgets) {
        if (text.back() != '[')
            text += ',';
        appendWhole(text, widget);
    }
    return text + "]}";
}

std::optional<std::string> encodeChange(const OstrelSessionState& from, const OstrelSessionState& to) {
    std::vector<std::string> removed;
    std::string widgets;
    auto next = to.widgets.begin();
    for (const auto& old : from.widgets) {
        if (next == to.widgets.end() || next->path != old.path || forgets(old, *next)) {
            removed.push_back(old.path);
            continue;
        }
        if (appendDifference(widgets, old, *next))
            widgets += ',';
        ++next;
    }
    for (; next != to.widgets.end(); ++next) {
        appendWhole(widgets, *next);
        widgets += ',';
    }
    if (removed.empty() && widgets.empty())
        return std::nullopt;
    if (!widgets.empty())
        widgets.pop_back();
    std::string change;
    ObjectWriter writer(change);
    if (!removed.empty())
        writer.member("remove", dumped(removed));
    if (!widgets.empty())
        writer.member("widgets", "[" + widgets + "]");
    writer.end();
    return change;
}

} // namespace Ostrel
