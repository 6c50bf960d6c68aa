#include "OstrelEngine/Measures/Full/FullLoopMeasure.h"

#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <utility>

namespace Ostrel {

void FullLoopMeasure::update() {
    if (optionsDidChange()) {
        const Course course{integer("StartValue"_key, 1), integer("EndValue"_key, 100), integer("Increment"_key, 1),
            std::max(0, integer("LoopCount"_key, 0)), isOn("InvertMeasure"_key, false)};
        if (std::exchange(course_, course) != course)
            restart();
    }
    step();
    const double low = std::min(course_.start, course_.end);
    const double high = std::max(course_.start, course_.end);
    publishNumber(course_.isMirrored ? low + high - current_ : current_, low, high);
}

bool FullLoopMeasure::executeCommand(std::string_view command) {
    if (equalsIgnoringCase(trimmed(command), "RESET"))
        restart();
    return true;
}

void FullLoopMeasure::restart() {
    hasStarted_ = false;
    roundsDone_ = 0;
}

void FullLoopMeasure::step() {
    const double start = course_.start;
    const double end = course_.end;
    const bool leadsToEnd = course_.step != 0 && (course_.step > 0) == (end > start);
    if (!std::exchange(hasStarted_, true) || !leadsToEnd) {
        current_ = start;
        return;
    }
    if (current_ != end) {
        const double next = current_ + course_.step;
        current_ = start < end ? std::min(next, end) : std::max(next, end);
        return;
    }
    if (course_.rounds > 0 && ++roundsDone_ >= course_.rounds) {
        roundsDone_ = course_.rounds;
        return;
    }
    current_ = start;
}

} // namespace Ostrel
