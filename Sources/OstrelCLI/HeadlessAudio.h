#pragma once

#include "OstrelEngine/Sound/AudioLevelSpectrumSource.h"
#include "OstrelEngine/Sound/WavFile.h"

#include <optional>
#include <string>

namespace Ostrel {

class VirtualTime;

/// The machine's sound where there is no machine: a file, heard as the time passes. Nothing is captured.
class HeadlessAudio {
public:
    explicit HeadlessAudio(VirtualTime& time);

    AudioSpectrum& spectrum() { return source_; }
    /// From here on this file is heard, from its beginning. False, and nothing is heard, when it is no sound file.
    bool play(const std::string& path);
    /// Hears the next so many seconds.
    void pass(double seconds);

private:
    AudioLevelSpectrumSource source_;
    std::optional<WavFile> file_;
};

} // namespace Ostrel
