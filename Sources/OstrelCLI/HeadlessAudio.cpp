#include "OstrelCLI/HeadlessAudio.h"

#include "OstrelPlatform/SilentAudioSystem.h"
#include "OstrelPlatform/VirtualSerialQueue.h"
#include "OstrelPlatform/VirtualTime.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <memory>

namespace Ostrel {

HeadlessAudio::HeadlessAudio(VirtualTime& time)
    : source_({[&time] { return std::make_unique<SilentAudioSystem>(std::make_unique<VirtualSerialQueue>(time)); },
        time, time, [](std::string_view) {}}) { }

bool HeadlessAudio::play(const std::string& path) {
    file_ = WavFile::open(std::make_unique<std::ifstream>(path, std::ios::binary));
    return file_.has_value();
}

void HeadlessAudio::pass(double seconds) {
    if (!file_)
        return;
    const double wanted = std::round(seconds * file_->sampleRateHz());
    auto left = static_cast<std::uint64_t>(std::min(wanted, static_cast<double>(file_->framesLeft())));
    source_.system().queue().sync([&] {
        while (left > 0) {
            const auto samples = file_->readMono(left);
            if (samples.empty())
                return;
            source_.ingestSamples(samples, file_->sampleRateHz());
            left -= samples.size();
        }
    });
}

} // namespace Ostrel
