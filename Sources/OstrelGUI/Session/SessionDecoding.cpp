#include "OstrelGUI/Session/SessionDecoding.h"

#include "OstrelEngine/Runtime/WidgetRuntimeStateJSON.h"
#include "OstrelGUI/Session/DetachedPictures.h"
#include "OstrelGUI/Session/SessionCoding.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <unordered_set>

namespace Ostrel {

using nlohmann::json;

namespace {

/// A million variables of all widgets together.
constexpr std::size_t MaxValues = 1'000'000;
constexpr int MaxDepth = 8;

/// Null when it is missing or null itself.
const json* member(const json& object, const char* name) {
    const auto found = object.find(name);
    return found == object.end() || found->is_null() ? nullptr : &*found;
}

std::optional<Point> pointOf(const json& object) {
    if (!object.is_object())
        return std::nullopt;
    const auto* x = member(object, "x");
    const auto* y = member(object, "y");
    if (!x || !y || !x->is_number() || !y->is_number())
        return std::nullopt;
    return Point{x->get<double>(), y->get<double>()};
}

bool readPlace(const json& widget, OstrelWidgetState& state) {
    if (const auto* origin = member(widget, "origin")) {
        state.origin = pointOf(*origin);
        if (!state.origin)
            return false;
    }
    return true;
}

bool readRuntime(const json& widget, OstrelWidgetState& state) {
    if (const auto* runtime = member(widget, "runtime")) {
        auto decoded = decodeRuntimeState(*runtime);
        if (!decoded)
            return false;
        state.runtime = std::make_shared<const WidgetRuntimeState>(std::move(*decoded));
    }
    return true;
}

bool readPicture(const json& widget, const DetachedPictures& pictures, OstrelWidgetState& state) {
    const auto* picture = member(widget, "snapshotData");
    if (!picture)
        return true;
    if (!picture->is_string())
        return false;
    if (auto resolved = pictures.resolve(picture->get_ref<const std::string&>()))
        state.snapshotData = std::move(resolved);
    return true;
}

std::optional<OstrelSessionState> decode(std::string_view text, const std::shared_ptr<const FileDescriptor>& file) {
    const auto pictures = detachPictures(text, file);
    const auto object = parseBounded(pictures.json);
    const auto* widgets = object && object->is_object() ? member(*object, "widgets") : nullptr;
    if (!widgets || !widgets->is_array())
        return std::nullopt;
    OstrelSessionState state;
    std::unordered_set<std::string> paths;
    for (const auto& widget : *widgets) {
        const auto path = pathOf(widget);
        OstrelWidgetState decoded{.path = path.value_or("")};
        if (!path || !readWidget(widget, pictures, decoded))
            return std::nullopt;
        if (paths.insert(*path).second)
            state.widgets.push_back(std::move(decoded));
    }
    return state;
}

} // namespace

std::optional<json> parseBounded(std::string_view text) {
    std::size_t count = 0;
    bool isWithinBounds = true;
    // Discards what is beyond, so that memory is bounded too.
    const auto check = [&](int depth, json::parse_event_t, json&) {
        isWithinBounds = isWithinBounds && depth <= MaxDepth && ++count <= MaxValues * 3;
        return isWithinBounds;
    };
    auto value = json::parse(text, check, false);
    return isWithinBounds && !value.is_discarded() ? std::optional(std::move(value)) : std::nullopt;
}

std::optional<std::string> pathOf(const json& widget) {
    const auto* path = widget.is_object() ? member(widget, "path") : nullptr;
    return path && path->is_string() ? std::optional(path->get<std::string>()) : std::nullopt;
}

bool readWidget(const json& widget, const DetachedPictures& pictures, OstrelWidgetState& state) {
    if (const auto* isRendered = member(widget, "isRendered")) {
        if (!isRendered->is_boolean())
            return false;
        state.isRendered = isRendered->get<bool>();
    }
    return readPlace(widget, state) && readRuntime(widget, state) && readPicture(widget, pictures, state);
}

bool readTexts(const json& object, std::map<std::string, std::string>& texts) {
    if (!object.is_object())
        return false;
    for (const auto& [name, value] : object.items()) {
        if (!value.is_string())
            return false;
        texts.insert_or_assign(name, value.get_ref<const std::string&>());
    }
    return true;
}

bool readTruths(const json& object, std::map<std::string, bool>& truths) {
    if (!object.is_object())
        return false;
    for (const auto& [name, value] : object.items()) {
        if (!value.is_boolean())
            return false;
        truths.insert_or_assign(name, value.get<bool>());
    }
    return true;
}

std::optional<OstrelSessionState> decodeSession(
    std::string_view text, const std::shared_ptr<const FileDescriptor>& file) {
    return decode(text, file);
}

std::optional<OstrelSessionState> decodeLegacySession(std::string_view text) {
    auto state = decode(text, nullptr);
    if (!state)
        return std::nullopt;
    for (auto& widget : state->widgets) {
        widget.isRendered = true;
        widget.snapshotData = nullptr;
    }
    return state;
}

} // namespace Ostrel
