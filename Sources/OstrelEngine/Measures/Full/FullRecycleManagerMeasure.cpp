#include "OstrelEngine/Measures/Full/FullRecycleManagerMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/Platform.h"
#include "OstrelPlatform/RecycleManagerBackend.h"

#include <string>

namespace Ostrel {

void FullRecycleManagerMeasure::update() {
    auto* trash = host().platform().recycleManager;
    if (!trash)
        return publishNumber(0);
    const std::string drives(text("Drives"_key, "ALL"));
    const bool showsSize = equalsIgnoringCase(trimmed(text("RecycleType"_key, "Count")), "SIZE");
    publishNumber(static_cast<double>(showsSize ? trash->snapshot(drives).totalSize : trash->itemCount(drives)));
}

bool FullRecycleManagerMeasure::executeCommand(std::string_view command) {
    auto* trash = host().platform().recycleManager;
    const auto word = upperCased(trimmed(command));
    const std::string drives(text("Drives"_key, "ALL"));
    if (trash && word == "OPENBIN")
        trash->openBin(drives);
    if (trash && (word == "EMPTYBIN" || word == "EMPTYBINSILENT") && host().isAllowed(Permission::Files, "trash")) {
        trash->emptyBin(drives);
        update();
    }
    return true;
}

} // namespace Ostrel
