#include "OstrelEngine/Measures/RecycleManagerMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/Platform.h"
#include "OstrelPlatform/RecycleManagerBackend.h"

#include <algorithm>

namespace Ostrel {

namespace {

std::shared_ptr<RecycleManagerBackend> backendOfPlatform(const Platform& platform) {
    // The platform keeps it and outlives all measures.
    return {std::shared_ptr<void>(), platform.recycleManager};
}

RecycleManagerMeasure::BackendFactory& backendFactory() {
    static RecycleManagerMeasure::BackendFactory factory = backendOfPlatform;
    return factory;
}

std::string_view firstWord(std::string_view text) {
    text = trimmed(text);
    for (std::size_t i = 0; i < text.size();) {
        const auto [character, length] = decodeCharacter(text, i);
        if (isWhitespace(character) || isNewline(character))
            return text.substr(0, i);
        i += length;
    }
    return text;
}

} // namespace

void RecycleManagerMeasure::setBackendFactory(BackendFactory factory) {
    backendFactory() = factory ? std::move(factory) : backendOfPlatform;
}

RecycleManagerMeasure::RecycleManagerMeasure(
    const MeasureDefinition& definition, std::string skinPath, const Platform& platform)
    : BaseMeasure(definition, std::move(skinPath))
    , recycleType_(equalsIgnoringCase(trimmed(option("RecycleType"_key).value_or("")), "SIZE") ? RecycleType::size
                                                                                               : RecycleType::count)
    , drives_(option("Drives"_key).value_or("ALL"))
    , backend_(backendFactory()(platform)) {
    publish(0, "", false, 0, 0);
}

RecycleManagerMeasure::~RecycleManagerMeasure() = default;

void RecycleManagerMeasure::update() {
    if (!backend_)
        return;
    const auto figure
        = recycleType_ == RecycleType::size ? backend_->snapshot(drives_).totalSize : backend_->itemCount(drives_);
    const auto value = static_cast<double>(figure);
    publish(value, "", false, 0, std::max(0.0, value));
}

bool RecycleManagerMeasure::executeCommand(std::string_view text) {
    const auto word = firstWord(text);
    if (backend_ && equalsIgnoringCase(word, "OPENBIN"))
        backend_->openBin(drives_);
    if (backend_ && equalsIgnoringCase(word, "EMPTYBIN")) {
        backend_->emptyBin(drives_);
        // A bar follows at once.
        update();
    }
    return true;
}

} // namespace Ostrel
