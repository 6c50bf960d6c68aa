#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

class HostStatistics;

/// Bytes received, sent or both since the update before. Its range is the highest value so far.
class NetMeasure final : public BaseMeasure {
public:
    NetMeasure(const MeasureDefinition& definition, std::string skinPath, HostStatistics& host);

    void update() override;

private:
    enum class NetType { NetIn, NetOut, NetTotal };

    static NetType parseType(std::string_view measureType);
    std::uint64_t bytes() const;

    HostStatistics& host_;
    NetType netType_;
    std::optional<std::uint64_t> previousBytes_;
};

} // namespace Ostrel
