#include "OstrelEngine/Meters/MeterProtocol.h"

namespace Ostrel {

MeterRenderer::MeterRenderer(std::string name, Options options)
    : name_(std::move(name))
    , options_(std::move(options)) { }

void MeterRenderer::setOption(std::string_view key, std::string_view value) {
    if (const auto* current = options_.find(key); current && *current == value)
        return;
    options_.set(key, std::string(value));
    ++optionsRevision_;
    optionsDidChange();
}

void MeterRenderer::removeOption(std::string_view key) {
    if (!options_.contains(key))
        return;
    options_.remove(key);
    ++optionsRevision_;
    optionsDidChange();
}

} // namespace Ostrel
