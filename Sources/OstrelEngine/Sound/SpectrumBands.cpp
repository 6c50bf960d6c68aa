#include "OstrelEngine/Sound/SpectrumBands.h"

#include <algorithm>
#include <cmath>

namespace Ostrel {

namespace {

/// 0..1; what is no number is 0.
double heldToUnit(double value) {
    return value > 0 ? std::min(value, 1.0) : 0;
}

double mappedLoudness(double power, double sensitivity) {
    const double decibels = (10.0 / sensitivity) * std::log10(heldToUnit(power)) + 1.0;
    const double held = decibels > 0 ? decibels : 0;
    return heldToUnit(held / (held * SpectrumBands::MappedBandCompression + 1.0));
}

} // namespace

std::vector<double> SpectrumBands::computeBandFrequencies(
    std::int64_t count, double minFrequency, double maxFrequency) {
    if (count < 1)
        return {};
    const double step = (std::log(maxFrequency / minFrequency) / static_cast<double>(count)) / std::log(2.0);
    const double ratio = std::pow(2.0, step);
    std::vector<double> edges(static_cast<std::size_t>(count));
    double edge = minFrequency * std::pow(2.0, step / 2.0);
    for (double& target : edges) {
        target = edge;
        edge *= ratio;
    }
    return edges;
}

std::span<const double> SpectrumBands::computeBands(std::span<const float> magnitudes, std::int64_t bands,
    double minFrequency, double maxFrequency, double sampleRate, double sensitivity, int fftSize) {
    if (bands <= 0 || magnitudes.empty() || !(sampleRate > 0) || fftSize <= 0)
        return {};
    const auto count = std::min(bands, MaximumBands);
    levels_.assign(static_cast<std::size_t>(count), 0);
    const double nyquist = sampleRate * 0.5;
    const double low = std::max(1.0, std::min(minFrequency, nyquist));
    const double high = std::max(low + 1.0, std::min(maxFrequency, nyquist));
    if (!(high > low))
        return levels_;
    updateEdges(count, low, high);
    integrate(magnitudes, low, sampleRate, fftSize);
    const double steepness = std::max(1.0, sensitivity);
    for (double& level : levels_)
        level = mappedLoudness(level, steepness);
    return levels_;
}

void SpectrumBands::updateEdges(std::int64_t bands, double low, double high) {
    if (cachedBandFrequencies_.size() == static_cast<std::size_t>(bands) && cachedLow_ == low && cachedHigh_ == high)
        return;
    cachedBandFrequencies_ = computeBandFrequencies(bands, low, high);
    cachedLow_ = low;
    cachedHigh_ = high;
}

void SpectrumBands::integrate(std::span<const float> magnitudes, double low, double sampleRate, int fftSize) {
    const double binWidth = sampleRate / fftSize;
    if (!(binWidth > 0))
        return;
    const double scale = 2.0 / sampleRate;
    const auto binCount = std::min(static_cast<std::size_t>(fftSize / 2) + 1, magnitudes.size());
    const double firstBin = std::round(low / binWidth);
    if (!(firstBin < static_cast<double>(binCount)))
        return;

    auto bin = static_cast<std::size_t>(firstBin);
    std::size_t band = 0;
    double edge = low;
    while (bin < binCount && band < levels_.size()) {
        const double binEnd = (static_cast<double>(bin) + 0.5) * binWidth;
        const double bandEnd = cachedBandFrequencies_[band];
        const double magnitude = magnitudes[bin];
        // A bin that a band's edge cuts gives each side its share of the width.
        if (bandEnd < binEnd) {
            levels_[band] += (bandEnd - edge) * magnitude * scale;
            edge = bandEnd;
            ++band;
        } else {
            levels_[band] += (binEnd - edge) * magnitude * scale;
            edge = binEnd;
            ++bin;
        }
    }
}

} // namespace Ostrel
