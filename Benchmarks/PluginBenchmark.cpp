// The mean color of a picture against copying its pixels, and counting a trash of 100,000 files against `du` on it, in
// alternating batches of one run. "ratio" is our time over theirs.

#include "Comparison.h"
#include "OstrelEngine/Meters/ImageAverage.h"
#include "OstrelPlatform/Linux/Files/FileSystemRecycleManagerBackend.h"
#include "Support/FakeWorkspace.h"
#include "Support/TemporaryFolder.h"

#include <QImage>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

namespace {

namespace fs = std::filesystem;

/// Width, height; the last is 16 bits a channel.
void averageOfPicture(benchmark::State& state) {
    const bool isDeep = state.range(2);
    QImage image(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)),
        isDeep ? QImage::Format_RGBX64 : QImage::Format_RGB32);
    image.fill(QColor(200, 100, 50));
    const auto bytes = static_cast<std::size_t>(image.sizeInBytes());
    std::vector<uchar> copy(bytes);
    std::optional<RGBColor> color;
    compare(
        state, [&] { return secondsOf([&] { benchmark::DoNotOptimize(color = averageColor(image)); }); },
        [&] {
            return secondsOf([&] {
                std::memcpy(copy.data(), image.constBits(), bytes);
                benchmark::ClobberMemory();
            });
        },
        4);
    const auto expected = RGBColor{200 / 255.0, 100 / 255.0, 50 / 255.0};
    const auto isNear = [](double a, double b) { return std::abs(a - b) < 1e-4; };
    if (!color || !isNear(color->red, expected.red) || !isNear(color->green, expected.green)
        || !isNear(color->blue, expected.blue))
        state.SkipWithError("another color");
}
BENCHMARK(averageOfPicture)
    ->ArgsProduct({{256}, {256}, {0, 1}})
    ->ArgsProduct({{3000}, {2000}, {0, 1}})
    ->UseManualTime()
    ->Iterations(50);

/// 100,000 files in folders of so many each.
void countOfTrash(benchmark::State& state) {
    constexpr int Files = 100'000;
    const auto perFolder = static_cast<int>(state.range(0));
    const TemporaryFolder home;
    const auto trash = home.path() + "/.Trash";
    for (int i = 0; i < Files; ++i) {
        const auto folder = trash + "/" + std::to_string(i / perFolder);
        if (i % perFolder == 0)
            fs::create_directories(folder);
        std::ofstream(folder + "/file " + std::to_string(i)) << "123";
    }
    std::vector<std::string> log;
    FakeWorkspace workspace(log);
    FileSystemRecycleManagerBackend backend(workspace, {home.path(), home.path(), 0});
    const auto du = "du -s --apparent-size " + trash + " > /dev/null";
    RecycleBinSnapshot snapshot;
    compare(
        state, [&] { return secondsOf([&] { snapshot = backend.snapshot(trash); }); },
        [&] { return secondsOf([&] { benchmark::DoNotOptimize(std::system(du.c_str())); }); });
    if (snapshot != RecycleBinSnapshot{(Files + perFolder - 1) / perFolder, Files * 3})
        state.SkipWithError("another count");
}
BENCHMARK(countOfTrash)->Arg(100)->Arg(1000)->Arg(100'000)->UseManualTime()->Iterations(15);

} // namespace

} // namespace Ostrel
