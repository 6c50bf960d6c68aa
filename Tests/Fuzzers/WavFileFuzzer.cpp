#include "OstrelEngine/Sound/WavFile.h"

#include <cstdlib>
#include <sstream>
#include <string>

/// Whatever the header says, a file holds no more frames than bytes, and reading it comes to an end.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    auto file = Ostrel::WavFile::open(
        std::make_unique<std::istringstream>(std::string(reinterpret_cast<const char*>(data), size)));
    if (!file)
        return 0;
    std::size_t frames = 0;
    while (true) {
        const auto samples = file->readMono(size);
        if (samples.empty())
            break;
        frames += samples.size();
        if (frames > size)
            std::abort();
    }
    return 0;
}
