#include "OstrelEngine/Full/FullLayout.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>
#include <utility>

namespace Ostrel {

namespace {

/// Far beyond any screen, and sums of a skin's length stay exact.
constexpr std::int64_t Furthest = 1'000'000'000;

std::int64_t whole(double coordinate) {
    if (std::isnan(coordinate))
        return 0;
    constexpr auto Limit = static_cast<double>(Furthest);
    return static_cast<std::int64_t>(std::clamp(coordinate, -Limit, Limit));
}

} // namespace

FullLayout::Coordinate FullLayout::parse(std::string_view text) {
    Coordinate coordinate;
    // A note behind the value.
    if (const auto note = text.find(" ;"); note != std::string_view::npos)
        text = text.substr(0, note);
    text = trimmed(text);
    if (text.ends_with('r'))
        coordinate.base = Coordinate::Base::Start;
    else if (text.ends_with('R'))
        coordinate.base = Coordinate::Base::End;
    if (coordinate.base != Coordinate::Base::Skin)
        text.remove_suffix(1);
    coordinate.value = whole(OptionValues::number(text).value_or(0));
    return coordinate;
}

void FullLayout::readOptions(std::size_t position) {
    if (places_.size() < meters_.count())
        places_.resize(meters_.count());
    const auto& meter = meters_.at(position);
    auto& place = places_[position];
    if (place.optionsRevision == meter.optionsRevision())
        return;
    place.optionsRevision = meter.optionsRevision();
    if (!place.isMoved) {
        place.x = parse(option(meter.options(), "X"_key).value_or(""));
        place.y = parse(option(meter.options(), "Y"_key).value_or(""));
    }
    const auto container = trimmed(option(meter.options(), "Container"_key).value_or(""));
    if (place.containerName != container) {
        place.containerName = container;
        areContainersCurrent_ = false;
    }
}

void FullLayout::meterDidChange(std::size_t position) {
    readOptions(position);
    const bool isHidden = meters_.entry(position).isHidden;
    if (std::exchange(places_[position].isHidden, isHidden) != isHidden)
        ++shownRevision_;
    if (hasContainers_ || !areContainersCurrent_) {
        validEnd_ = 0;
    } else if (position < validEnd_) {
        // Most changes move nothing, so that the meters behind can stay.
        auto& place = places_[position];
        const auto before = std::tuple(place.anchorX, place.anchorY, place.frame);
        this->place(position);
        if (before != std::tuple(place.anchorX, place.anchorY, place.frame))
            validEnd_ = position + 1;
    }
}

void FullLayout::findContainers() {
    areContainersCurrent_ = true;
    isChanged_ = true;
    ++shownRevision_;
    hasContainers_ = false;
    validEnd_ = 0;
    for (auto& place : places_) {
        place.isContainer = false;
        place.container.reset();
    }
    for (std::size_t i = 0; i < places_.size(); ++i) {
        if (places_[i].containerName.empty())
            continue;
        const auto container = meters_.position(places_[i].containerName);
        if (!container || *container == i || !places_[*container].containerName.empty())
            continue;
        places_[i].container = container;
        places_[*container].isContainer = true;
        hasContainers_ = true;
    }
    std::map<std::optional<std::size_t>, std::size_t> last;
    for (std::size_t i = 0; i < places_.size(); ++i) {
        const auto before = last.find(places_[i].container);
        places_[i].predecessor = before == last.end() ? std::nullopt : std::optional(before->second);
        last[places_[i].container] = i;
    }
}

void FullLayout::layOut(std::size_t end) {
    if (places_.size() < meters_.count())
        places_.resize(meters_.count());
    if (!areContainersCurrent_)
        findContainers();
    if (!hasContainers_) {
        for (; validEnd_ < end; ++validEnd_)
            place(validEnd_);
        return;
    }
    if (validEnd_ >= end)
        return;
    // A container may stand behind its contents.
    for (const bool areContents : {false, true}) {
        for (std::size_t i = 0; i < places_.size(); ++i) {
            if (places_[i].container.has_value() == areContents)
                place(i);
        }
    }
    validEnd_ = places_.size();
}

void FullLayout::place(std::size_t position) {
    auto& place = places_[position];
    const auto& meter = meters_.at(position);
    const MeterFrame origin = place.container ? places_[*place.container].frame : MeterFrame();
    const Place* before = place.predecessor ? &places_[*place.predecessor] : nullptr;
    const auto coordinate = [&](const Coordinate& written, double start, std::int64_t anchor, double extent) {
        auto value = written.value;
        if (written.base == Coordinate::Base::Skin || !before)
            value += whole(start);
        else
            value += anchor + (written.base == Coordinate::Base::End ? whole(extent) : 0);
        return std::clamp(value, -Furthest, Furthest);
    };
    place.anchorX = coordinate(place.x, origin.x, before ? before->anchorX : 0, before ? before->frame.w : 0);
    place.anchorY = coordinate(place.y, origin.y, before ? before->anchorY : 0, before ? before->frame.h : 0);

    const Size box = meter.boxSize();
    const Point offset = meter.anchorOffset(box);
    const bool isHidden = place.isHidden;
    const MeterFrame frame{std::trunc(static_cast<double>(place.anchorX) - offset.x),
        std::trunc(static_cast<double>(place.anchorY) - offset.y), isHidden ? 0 : box.width, isHidden ? 0 : box.height};
    if (frame == place.frame)
        return;
    isChanged_ = true;
    place.frame = frame;
    ++place.revision;
}

const MeterFrame& FullLayout::frame(std::size_t position) {
    layOut(position + 1);
    return places_[position].frame;
}

std::uint64_t FullLayout::revision(std::size_t position) {
    layOut(position + 1);
    return places_[position].revision;
}

void FullLayout::apply() {
    layOut(meters_.count());
    if (!std::exchange(isChanged_, false))
        return;
    for (std::size_t i = 0; i < places_.size(); ++i) {
        auto& meter = meters_.at(i);
        meter.setFrame(places_[i].frame);
        if (hasContainers_ || gaveContainers_) {
            const auto& container = places_[i].container;
            meter.setContainer(container ? meters_.entry(*container).meter : nullptr);
        }
    }
    gaveContainers_ = hasContainers_;
}

bool FullLayout::isDrawn(std::size_t position) const {
    const auto& place = places_[position];
    const auto isShown = [&](std::size_t at) { return !places_[at].isHidden; };
    return isShown(position) && !place.isContainer && (!place.container || isShown(*place.container));
}

Size FullLayout::extent() {
    layOut(meters_.count());
    Size size;
    for (std::size_t i = 0; i < places_.size(); ++i) {
        if (places_[i].container || places_[i].isHidden)
            continue;
        const auto& frame = places_[i].frame;
        size.width = std::max(size.width, frame.x + frame.w);
        size.height = std::max(size.height, frame.y + frame.h);
    }
    return size;
}

Point FullLayout::written(std::size_t position) {
    readOptions(position);
    return {static_cast<double>(places_[position].x.value), static_cast<double>(places_[position].y.value)};
}

void FullLayout::move(std::size_t position, std::optional<double> x, std::optional<double> y) {
    readOptions(position);
    auto& place = places_[position];
    place.isMoved = true;
    if (x)
        place.x = {Coordinate::Base::Skin, whole(*x)};
    if (y)
        place.y = {Coordinate::Base::Skin, whole(*y)};
    meterDidChange(position);
}

void FullLayout::endMove(std::size_t position) {
    if (position >= places_.size() || !places_[position].isMoved)
        return;
    places_[position].isMoved = false;
    places_[position].optionsRevision.reset();
    meterDidChange(position);
}

} // namespace Ostrel
