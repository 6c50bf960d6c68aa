#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <memory>
#include <string_view>

namespace Ostrel {

/// A measure whose value the test decides.
class FakeMeasure final : public BaseMeasure {
public:
    using BaseMeasure::BaseMeasure;
    using BaseMeasure::publish;

    void setNumber(double number) { publish(number, "", false, 0, 100); }

    static std::unique_ptr<FakeMeasure> make(std::string_view name, double number) {
        MeasureDefinition definition;
        definition.sectionName = name;
        auto measure = std::make_unique<FakeMeasure>(definition, "/skin.ini");
        measure->setNumber(number);
        return measure;
    }
};

} // namespace Ostrel
