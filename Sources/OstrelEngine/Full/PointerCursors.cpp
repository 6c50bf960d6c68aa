#include "OstrelEngine/Full/PointerCursors.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Full/FullSkin.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace Ostrel {

namespace {

using Shape = PointerCursor::Shape;

constexpr std::array<std::pair<std::string_view, Shape>, 14> Shapes{{{"HAND", Shape::Hand}, {"TEXT", Shape::Text},
    {"HELP", Shape::Help}, {"BUSY", Shape::Busy}, {"CROSS", Shape::Cross}, {"PEN", Shape::Pen}, {"NO", Shape::No},
    {"SIZE_ALL", Shape::SizeAll}, {"SIZE_NESW", Shape::SizeNESW}, {"SIZE_NS", Shape::SizeNS},
    {"SIZE_NWSE", Shape::SizeNWSE}, {"SIZE_WE", Shape::SizeWE}, {"UPARROW", Shape::UpArrow}, {"WAIT", Shape::Wait}}};

std::string_view textOf(const Options& options, const CaseKey& key) {
    return trimmed(option(options, key).value_or(""));
}

} // namespace

PointerCursor namedCursor(const FullSkin& skin, const Options& options) {
    auto name = textOf(options, "MouseActionCursorName"_key);
    if (name.empty())
        name = textOf(skin.skinOptions(), "MouseActionCursorName"_key);
    const auto found
        = std::ranges::find_if(Shapes, [&](const auto& shape) { return equalsIgnoringCase(shape.first, name); });
    if (found != Shapes.end())
        return {found->second, {}};
    std::error_code failed;
    auto file = existingPath(skin.folders().resources + "Cursors/" + lastPathComponent(normalizeSeparators(name)));
    const bool isFile = !name.empty() && std::filesystem::is_regular_file(file, failed);
    return {Shape::Hand, isFile ? std::move(file) : std::string()};
}

} // namespace Ostrel
