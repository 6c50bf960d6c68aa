#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"
#include "OstrelPlatform/AudioSpectrum.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

class MeasureHost;
class Clock;

/// A root holds the bands of the machine's sound and yields their mean, a child yields one band of its root, a device
/// list the text of the one device. The levels are smoothed a second time here, by the real time between two updates,
/// so that bars move evenly at any update interval.
class AudioLevelMeasure final : public BaseMeasure {
public:
    static constexpr double DisplayAttackExtraSmoothingMs = 21;
    static constexpr double DisplayDecayExtraSmoothingMs = 33;
    /// A level that moves by less stands still.
    static constexpr double DisplayDeadband = 0.00225;

    AudioLevelMeasure(
        const MeasureDefinition& definition, std::string skinPath, const Platform& platform, MeasureHost& host);

    void update() override;
    void resolveReferences() override;

private:
    enum class Type { Root, Band, DeviceList };

    void readType();
    const SpectrumRequest& request();
    SpectrumRequest readRequest() const;
    double numericOption(const CaseKey& key, double defaultValue) const;
    std::int64_t integerOption(const CaseKey& key, std::int64_t defaultValue, std::int64_t minimum) const;

    void updateSpectrumRoot();
    void updateBand();
    void updateDeviceList();
    double elapsedMs();

    MeasureHost& host_;
    AudioSpectrum* audioSpectrum_;
    const Clock& clock_;
    AudioLevelMeasure* parentMeasure_ = nullptr;
    /// The `optionsRevision` that the fields after it were read at.
    std::optional<std::uint64_t> typeRevision_;
    Type type_ = Type::Root;
    std::size_t bandIndex_ = 0;
    std::optional<std::uint64_t> requestRevision_;
    SpectrumRequest request_;
    /// Displayed levels, 0 to 1.
    std::vector<double> spectrum_;
    std::optional<double> lastSpectrumUpdateTime_;
};

} // namespace Ostrel
