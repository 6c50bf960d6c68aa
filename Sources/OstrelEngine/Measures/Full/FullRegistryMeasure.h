#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"

#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// Well-known keys of a registry that this system does not have, answered from what it has instead; all others are
/// missing.
class FullRegistryMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;

private:
    struct Value {
        std::string name;
        std::string text;
    };
    /// The values under a key, which is in upper case; none when it is missing.
    std::vector<Value> values(std::string_view key) const;
    std::vector<Value> sensorValues() const;

    std::string key_;
    std::string name_;
    std::string delimiter_;
    bool listsValues_ = false;
    bool listsKeys_ = false;
};

} // namespace Ostrel
