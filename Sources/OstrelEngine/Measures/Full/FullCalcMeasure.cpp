#include "OstrelEngine/Measures/Full/FullCalcMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace Ostrel {

namespace {

constexpr std::size_t CounterPlace = 0;
constexpr std::size_t RandomPlace = 1;
constexpr std::size_t FirstMeasurePlace = 2;
constexpr std::int64_t LargestBag = 65536;

} // namespace

FullCalcMeasure::FullCalcMeasure(const MeasureDefinition& definition, FullMeasureHost& host)
    : FullMeasure(definition, host)
    , random_(std::bit_cast<std::uint64_t>(host.platform().clock.wallSeconds())
          ^ CaseFolding::hash(definition.sectionName)) { }

void FullCalcMeasure::update() {
    if (optionsDidChange())
        readOptions();
    if (drawsAtEachUpdate_ || !drawn_)
        draw();
    const auto result = formula_ ? formula_->evaluate(this) : std::nullopt;
    if (formula_ && !result)
        host().log(LogLevel::Error, name(), "Formula has no result: " + formulaText_);
    if (result)
        lastResult_ = *result;
    publishNumber(lastResult_);
}

void FullCalcMeasure::readOptions() {
    if (const auto written = text("Formula"_key, "0"); !formula_ || written != formulaText_) {
        formulaText_ = written;
        measures_.clear();
        formula_ = Formula::compile(formulaText_, this);
        if (!formula_)
            host().log(LogLevel::Error, name(), "Formula is invalid: " + formulaText_);
    }
    auto low = std::int64_t{integer("LowBound"_key, 0)};
    auto high = std::int64_t{integer("HighBound"_key, 100)};
    if (low > high)
        std::swap(low, high);
    const bool hasMoved = low != low_ || high != high_;
    low_ = low;
    high_ = high;
    drawsAtEachUpdate_ = isOn("UpdateRandom"_key, false);
    drawsWithoutRepetition_ = drawsAtEachUpdate_ && isOn("UniqueRandom"_key, false) && high_ - low_ < LargestBag;
    if (hasMoved) {
        bag_.clear();
        drawn_.reset();
    }
}

void FullCalcMeasure::draw() {
    const auto count = static_cast<std::uint64_t>(high_ - low_) + 1;
    if (!drawsWithoutRepetition_) {
        drawn_ = static_cast<double>(low_ + static_cast<std::int64_t>(random_.below(count)));
        return;
    }
    if (bag_.empty()) {
        bag_.resize(count);
        for (std::size_t i = 0; i < count; ++i) {
            const auto other = random_.below(i + 1);
            bag_[i] = bag_[other];
            bag_[other] = static_cast<std::uint16_t>(i);
        }
    }
    drawn_ = static_cast<double>(low_ + bag_.back());
    bag_.pop_back();
}

std::optional<std::size_t> FullCalcMeasure::place(std::string_view name) const {
    if (equalsIgnoringCase(name, "COUNTER"))
        return CounterPlace;
    if (equalsIgnoringCase(name, "RANDOM"))
        return RandomPlace;
    const auto* measure = host().measure(name);
    if (!measure)
        return std::nullopt;
    measures_.push_back(measure);
    return FirstMeasurePlace + measures_.size() - 1;
}

double FullCalcMeasure::value(std::size_t place) const {
    if (place == CounterPlace)
        return static_cast<double>(host().cycleCount());
    if (place == RandomPlace)
        return drawn_.value_or(0);
    return measures_[place - FirstMeasurePlace]->value().numericValue;
}

} // namespace Ostrel
