// Opening what a user chose: a large folder against `find`, a large package against `bsdtar`, and the report of a skin
// against its loading.

#include "Comparison.h"
#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelCore/Files/FileDescriptor.h"
#include "OstrelCore/Packages/PackageExtractor.h"
#include "OstrelCore/Packages/SkinPathResolver.h"
#include "OstrelCore/Report/CompatScanner.h"
#include "Support/TemporaryFolder.h"

#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <random>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace Ostrel {

namespace {

namespace fs = std::filesystem;

constexpr int SkinCount = 5'000;
constexpr std::size_t PackageSize = 50'000'000;

/// True when the program ended well. What it prints goes nowhere.
bool run(std::vector<std::string> words) {
    std::vector<char*> pointers;
    for (auto& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int status = 1;
    const bool isStarted = posix_spawnp(&child, pointers[0], &files, nullptr, pointers.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&files);
    return isStarted && waitpid(child, &status, 0) == child && status == 0;
}

/// Packs of fifty skins, each in a folder of its own with what belongs to it.
void makeSkinTree(const TemporaryFolder& folder) {
    for (int i = 0; i < SkinCount; ++i) {
        const auto skin = "pack" + std::to_string(i / 50) + "/skin" + std::to_string(i % 50) + "/";
        for (const auto* file : {"Skin.ini", "variables.inc", "back.png", "README.txt"})
            folder.write(skin + file, "");
    }
}

void expandInProcess(benchmark::State& state) {
    const TemporaryFolder folder;
    makeSkinTree(folder);
    const std::vector<std::string> paths = {folder.path()};
    compare(
        state,
        [&] {
            return secondsOf([&] {
                if (SkinPathResolver::expand(paths).size() != SkinCount)
                    state.SkipWithError("not every skin was found");
            });
        },
        [&] {
            return secondsOf([&] {
                if (!run({"find", folder.path(), "-iname", "*.ini"}))
                    state.SkipWithError("find failed");
            });
        });
}
BENCHMARK(expandInProcess)->UseManualTime()->Unit(benchmark::kMillisecond);

void expandByCommand(benchmark::State& state) {
    const TemporaryFolder folder;
    makeSkinTree(folder);
    const auto timed = [&](std::vector<std::string> words) {
        return secondsOf([&] {
            if (!run(std::move(words)))
                state.SkipWithError("a command failed");
        });
    };
    compare(
        state,
        [&] {
            return timed({OSTREL_COMMAND, "list", folder.path()});
        },
        [&] {
            return timed({"find", folder.path(), "-iname", "*.ini"});
        });
}
BENCHMARK(expandByCommand)->UseManualTime()->Unit(benchmark::kMillisecond);

/// Half of what a package has does not become smaller, as pictures, half does, as texts.
void makePackage(const TemporaryFolder& folder) {
    std::mt19937 random(1);
    std::size_t packed = 0;
    for (int i = 0; packed < PackageSize; ++i) {
        std::string bytes(500'000, '\0');
        const bool isPicture = i % 2 == 0;
        for (char& byte : bytes)
            byte = static_cast<char>(isPicture ? random() : "[Meter]\nX=10R0123456789,#Var#"[random() % 30]);
        packed += isPicture ? bytes.size() : bytes.size() * 6 / 10;
        folder.write("in/Skins/Suite/part" + std::to_string(i / 10) + "/file" + std::to_string(i), bytes);
    }
    run({"bsdtar", "--format", "zip", "-C", folder.path() + "/in", "-cf", folder.path() + "/p.rmskin", "Skins"});
}

void extractPackage(benchmark::State& state) {
    const TemporaryFolder folder;
    makePackage(folder);
    const auto package = folder.path() + "/p.rmskin";
    std::error_code missing;
    const auto size = fs::file_size(package, missing);
    if (missing || size < PackageSize * 9 / 10)
        state.SkipWithError("there is no package of that size");
    const auto intoFreshFolder = [&](auto extract) {
        const auto destination = folder.path() + "/out";
        fs::create_directory(destination);
        const double seconds = secondsOf([&] {
            if (!extract(destination))
                state.SkipWithError("the package was not extracted");
        });
        fs::remove_all(destination);
        return seconds;
    };
    compare(
        state,
        [&] {
            return intoFreshFolder([&](const std::string& destination) {
                const FileDescriptor file(open(package.c_str(), O_RDONLY | O_CLOEXEC));
                return PackageExtractor::extract(file.get(), destination);
            });
        },
        [&] {
            return intoFreshFolder([&](const std::string& destination) {
                return run({"bsdtar", "-xf", package, "-C", destination});
            });
        });
    state.counters["package_mb"] = static_cast<double>(size) / 1e6;
}
BENCHMARK(extractPackage)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

std::string skinText() {
    std::string text = "[Rainmeter]\nUpdate=1000\n[Variables]\nTop=22\nFont=Segoe UI\n";
    for (int i = 0; i < 100; ++i) {
        const auto n = std::to_string(i);
        text += "[Measure" + n + "]\nMeasure=Calc\nFormula=(Measure0 * " + n + ") / 100\nIfTrueAction=[!SetOption Meter"
            + n + " FontColor \"255,0,0\"][\"C:\\Windows\\taskmgr.exe\"]\n[Meter" + n
            + "]\nMeter=String\nMeasureName=Measure" + n + "\nFontFace=#Font#\nX=10\nY=(#Top# * " + n
            + ")\nText=%1 of the whole\nLeftMouseUpAction=[!ToggleMeter Meter" + n + "]\n";
    }
    return text;
}

void scanAgainstLoad(benchmark::State& state) {
    InMemoryFileProvider files;
    files.addFile("/s/x.ini", skinText());
    std::optional<SkinConfig> config;
    const auto load = [&] {
        DiagnosticCollector diagnostics;
        config = SkinLoader(files, diagnostics).load("/s/x.ini");
    };
    load();
    compare(
        state,
        [&] {
            return secondsOf([&] {
                if (CompatScanner::scan(*config).findings.size() != 200)
                    state.SkipWithError("findings are missing");
            });
        },
        [&] { return secondsOf(load); });
}
BENCHMARK(scanAgainstLoad)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(300);

} // namespace

} // namespace Ostrel
