#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <unordered_map>

namespace Ostrel {

/// The living measures of one kind that others of a skin may name as their parent. A member of that kind; finds it
/// again by its section. Main thread.
template <typename Kind> class ParentMeasures {
public:
    ParentMeasures(const BaseMeasure& section, Kind& kind)
        : section_(section) {
        all()[&section] = &kind;
    }
    ~ParentMeasures() { all().erase(&section_); }
    ParentMeasures(const ParentMeasures&) = delete;
    ParentMeasures& operator=(const ParentMeasures&) = delete;

    /// Null when the section is null or of another kind.
    static Kind* find(const BaseMeasure* section) {
        const auto found = all().find(section);
        return found == all().end() ? nullptr : found->second;
    }

private:
    static std::unordered_map<const BaseMeasure*, Kind*>& all() {
        static std::unordered_map<const BaseMeasure*, Kind*> measures;
        return measures;
    }

    const BaseMeasure& section_;
};

} // namespace Ostrel
