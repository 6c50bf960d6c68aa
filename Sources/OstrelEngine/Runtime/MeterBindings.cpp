#include "OstrelEngine/Runtime/MeterBindings.h"

#include "OstrelEngine/Measures/MeasureProtocol.h"
#include "OstrelEngine/Runtime/BracketReferences.h"
#include "OstrelEngine/Runtime/MeasureTable.h"
#include "OstrelEngine/Runtime/MeterTable.h"

#include <array>
#include <string_view>

namespace Ostrel {

namespace {

constexpr std::array FurtherNames{"MeasureName2"_key, "MeasureName3"_key, "MeasureName4"_key, "MeasureName5"_key,
    "MeasureName6"_key, "MeasureName7"_key, "MeasureName8"_key, "MeasureName9"_key, "MeasureName10"_key};

MeasureValue valueOfMissingMeasure() {
    MeasureValue value;
    value.preferStringValue = true;
    return value;
}

} // namespace

MeterBindings::MeterBindings(const MeterTable& meters, const MeasureTable& measures)
    : meters_(meters)
    , measures_(measures) { }

MeasureValues MeterBindings::values(std::size_t position) {
    bindings_.resize(meters_.count());
    auto& binding = bindings_[position];
    const auto& meter = meters_.at(position);
    if (binding.optionsRevision != meter.optionsRevision()) {
        binding.optionsRevision = meter.optionsRevision();
        binding.sources = findSources(meter.options());
        binding.values.assign(binding.sources.size(), valueOfMissingMeasure());
    }
    for (std::size_t i = 0; i < binding.sources.size(); ++i) {
        if (binding.sources[i])
            binding.values[i] = binding.sources[i]->value();
    }
    return binding.values;
}

std::vector<const BaseMeasure*> MeterBindings::findSources(const Options& options) const {
    std::vector<const BaseMeasure*> sources;
    const auto add = [&](std::string_view name) {
        if (const auto* measure = measures_.find(name))
            sources.push_back(measure);
    };
    if (const auto name = option(options, "MeasureName"_key))
        add(*name);
    for (const auto& key : FurtherNames) {
        const auto name = option(options, key);
        // A gap ends the list, a name without a measure does not.
        if (!name)
            break;
        add(*name);
    }
    if (!sources.empty())
        return sources;
    const auto imageName = option(options, "ImageName"_key);
    return imageName ? findImageSources(*imageName) : sources;
}

std::vector<const BaseMeasure*> MeterBindings::findImageSources(std::string_view imageName) const {
    std::vector<const BaseMeasure*> sources;
    for (const auto name : BracketReferences::names(imageName))
        sources.push_back(measures_.find(name));
    return sources;
}

} // namespace Ostrel
