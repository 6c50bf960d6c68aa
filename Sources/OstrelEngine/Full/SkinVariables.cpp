#include "OstrelEngine/Full/SkinVariables.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelDialect/LiteralMarks.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <utility>

namespace Ostrel {

namespace {

/// A text that is put into itself again and again stops growing here, and so does the number of names.
constexpr std::size_t MaxLength = 1U << 20;
constexpr std::size_t MaxCount = 100000;
/// The highest number of a screen that a skin may name.
constexpr std::size_t MostScreens = 32;

constexpr std::array PathVariables{"@", "CURRENTPATH", "CURRENTFILE", "ROOTCONFIGPATH", "ROOTCONFIG", "CURRENTCONFIG",
    "SKINSPATH", "SETTINGSPATH", "ADDONSPATH", "PLUGINSPATH", "PROGRAMPATH", "PROGRAMDRIVE", "CONFIGEDITOR"};

ScreenArea united(const ScreenArea& a, const ScreenArea& b) {
    const int left = std::min(a.x, b.x);
    const int top = std::min(a.y, b.y);
    return {left, top, std::max(a.x + a.width, b.x + b.width) - left, std::max(a.y + a.height, b.y + b.height) - top};
}

int whole(double length) {
    return static_cast<int>(std::clamp(length, 0.0, static_cast<double>(std::numeric_limits<int>::max())));
}

} // namespace

SkinVariables::SkinVariables(const PackFolders& folders, const Options& initial) {
    for (const auto* name : PathVariables) {
        if (auto value = folders.variable(name))
            setBuiltIn(name, LiteralMarks::marked(*value));
    }
    setBuiltIn("CRLF", "\n");
    for (const auto& [name, value, hash] : initial)
        set(name, value);
}

std::optional<std::size_t> SkinVariables::position(std::string_view name) const {
    const auto* found = positions_.find(name);
    return found ? std::optional(*found) : std::nullopt;
}

bool SkinVariables::set(std::string_view name, std::string_view value) {
    if (name.empty() || value.size() > MaxLength)
        return false;
    const auto at = position(name);
    if (!at) {
        if (values_.size() >= MaxCount)
            return false;
        positions_.set(name, values_.size());
        values_.push_back({std::string(value), 1, false});
        ++namesRevision_;
    } else {
        auto& variable = values_[*at];
        if (variable.isBuiltIn)
            return false;
        if (variable.text == value)
            return true;
        variable.text = value;
        ++variable.revision;
    }
    own_.set(name, LiteralMarks::dropped(value));
    return true;
}

void SkinVariables::setBuiltIn(std::string_view name, std::string text) {
    if (const auto at = position(name)) {
        auto& variable = values_[*at];
        if (!variable.isBuiltIn)
            own_.remove(name);
        variable.isBuiltIn = true;
        if (variable.text == text)
            return;
        variable.text = std::move(text);
        ++variable.revision;
        return;
    }
    positions_.set(name, values_.size());
    values_.push_back({std::move(text), 1, true});
    ++namesRevision_;
}

void SkinVariables::setArea(std::string_view prefix, std::string_view suffix, const ScreenArea& area) {
    const auto setSide = [&](std::string_view side, int value) {
        setBuiltIn(std::string(prefix) + std::string(side) + std::string(suffix), formatInteger(value));
    };
    setSide("X", area.x);
    setSide("Y", area.y);
    setSide("WIDTH", area.width);
    setSide("HEIGHT", area.height);
}

void SkinVariables::setPlace(const SkinPlace& place, Size window) {
    setArea("CURRENTCONFIG", "", {place.x, place.y, whole(window.width), whole(window.height)});
    setBuiltIn("CURRENTCONFIGZPOS", formatInteger(place.zPosition));
    if (screens_ == place.screens && primary_ == place.primary)
        return;
    screens_ = place.screens;
    primary_ = place.primary;
    const auto& primary = screens_[std::min(primary_, screens_.size() - 1)];
    ScreenArea all = primary.whole;
    // The number of a screen that is not there, or not any more, stands for the primary one.
    for (std::size_t i = 0; i < std::max(MostScreens, screens_.size()); ++i) {
        const auto suffix = "@" + formatInteger(static_cast<std::int64_t>(i + 1));
        const auto& screen = i < screens_.size() ? screens_[i] : primary;
        setArea("SCREENAREA", suffix, screen.whole);
        setArea("WORKAREA", suffix, screen.work);
        all = united(all, screen.whole);
    }
    for (const auto* prefix : {"", "P"}) {
        setArea(std::string(prefix) + "SCREENAREA", "", primary.whole);
        setArea(std::string(prefix) + "WORKAREA", "", primary.work);
    }
    setArea("VSCREENAREA", "", all);
}

} // namespace Ostrel
