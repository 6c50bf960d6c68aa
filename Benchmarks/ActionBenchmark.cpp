// What a skin's reactions cost: an action string, a tick full of conditions, the pointer over a crowded widget, and a
// key written back into a long file. Nothing is painted.

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelCore/Files/AtomicFile.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelEngine/Actions/INIFileWriter.h"
#include "OstrelEngine/Actions/MeterPointer.h"
#include "OstrelEngine/Runtime/SkinRuntime.h"
#include "Support/FakePlatform.h"
#include "Support/FakeSkinHost.h"
#include "Support/TemporaryFolder.h"

#include <QGuiApplication>
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

namespace {

/// A running skin of that text, which has ticked once.
struct BenchedSkin {
    explicit BenchedSkin(const std::string& text) {
        InMemoryFileProvider files;
        files.addFile("/s.ini", text);
        DiagnosticCollector diagnostics;
        runtime = SkinRuntime::create(SkinLoader(files, diagnostics).load("/s.ini").value(), fakes.platform, host);
        host.onPublish = [this](const auto&) { ++published; };
        fakes.clock.uptime = 10;
        runtime->start();
    }

    FakePlatform fakes;
    FakeSkinHost host;
    std::shared_ptr<SkinRuntime> runtime;
    int published = 0;
};

std::string number(int value) {
    return formatInteger(value);
}

/// Some measures, and meters that show them.
std::string crowdedSkin(int meters) {
    std::string text = "[Variables]\nX=0\n[Load]\nMeasure=Calc\nFormula=Load+1\n";
    for (int i = 0; i < meters; ++i) {
        const auto place = "\nX=" + number(i % 20 * 30) + "\nY=" + number(i / 20 * 20) + "\n";
        if (i % 3 == 0)
            text += "[Text" + number(i) + "]\nMeter=String\nText=Meter " + number(i) + place;
        else
            text += "[Bar" + number(i) + "]\nMeter=Bar\nW=25\nH=15" + place;
    }
    return text;
}

void runsAnActionString(benchmark::State& state) {
    BenchedSkin skin(crowdedSkin(static_cast<int>(state.range(0))));
    const int before = skin.published;
    for (auto _ : state)
        benchmark::DoNotOptimize(skin.runtime->executeActionString("[!SetVariable X 1][!UpdateMeter *][!Redraw]"));
    if (skin.published - before != static_cast<int>(state.iterations()))
        state.SkipWithError("not every run published");
}
BENCHMARK(runsAnActionString)->Arg(0)->Arg(10)->Arg(300);

void parsesANewActionString(benchmark::State& state) {
    BenchedSkin skin(crowdedSkin(10));
    std::int64_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            skin.runtime->executeActionString("[!SetVariable X " + formatInteger(++i) + "][!UpdateMeter *][!Redraw]"));
    if (*skin.runtime->variables().find("X") != formatInteger(i))
        state.SkipWithError("the last run had no effect");
}
BENCHMARK(parsesANewActionString);

/// 100 conditions over 5 expressions, eight to a measure, none of which turns.
std::string conditionalSkin() {
    static constexpr std::string_view Expressions[]
        = {"Load > 1000000000", "Load < 0", "(Load * 2) < 0", "Still = 3 and Load < 0", "Still > 5 or Load < 0"};
    std::string text = "[Load]\nMeasure=Calc\nFormula=Load+1\n[Still]\nMeasure=Calc\nFormula=4\n";
    for (int i = 0; i < 100; ++i) {
        if (i % 8 == 0)
            text += "[Measure" + number(i) + "]\nMeasure=Calc\nFormula=1\n";
        const auto suffix = i % 8 == 0 ? std::string() : number(i % 8 + 1);
        text += "IfCondition" + suffix + "=" + std::string(Expressions[i % 5]) + "\n";
        text += "IfTrueAction" + suffix + "=[!SetVariable Turned 1]\n";
    }
    return text;
}

void ticksThroughConditions(benchmark::State& state) {
    BenchedSkin skin(conditionalSkin());
    for (auto _ : state)
        skin.runtime->performUpdate();
    if (skin.runtime->variables().contains("Turned") || skin.runtime->measure("Load")->value().numericValue < 2)
        state.SkipWithError("a condition turned, or nothing was updated");
}
BENCHMARK(ticksThroughConditions);

void hoversOverManyMeters(benchmark::State& state) {
    BenchedSkin skin(crowdedSkin(300));
    std::vector<Drawable> drawables;
    skin.host.onPublish = [&](const auto& list) { drawables = list; };
    skin.runtime->executeActionString("[!Redraw]");
    MeterPointer pointer(drawables, {});
    int hits = 0;
    for (auto _ : state) {
        // Below all of them, so that every meter is asked.
        pointer.mouseMoved({-5, -5});
        hits += pointer.topmostDrawable({5, 30}) != nullptr;
    }
    if (hits != static_cast<int>(state.iterations()))
        state.SkipWithError("the pointer hit nothing");
}
BENCHMARK(hoversOverManyMeters);

std::string longFile() {
    std::string text;
    for (int i = 0; i < 2000; ++i)
        text += i % 20 == 0 ? "[Section" + number(i) + "]\n" : "Key" + number(i) + "=some value of a usual length\n";
    return text;
}

void writesAKeyIntoALongFile(benchmark::State& state) {
    const TemporaryFolder folder;
    const auto path = folder.write("long.ini", longFile());
    bool toggle = false;
    for (auto _ : state) {
        toggle = !toggle;
        if (!INIFileWriter::writeKeyValue(path, "Section1000", "Key1010", toggle ? "a" : "b"))
            state.SkipWithError("not written");
    }
}
BENCHMARK(writesAKeyIntoALongFile);

/// What the same costs without any editing.
void readsAndWritesALongFile(benchmark::State& state) {
    const TemporaryFolder folder;
    const auto path = folder.write("long.ini", longFile());
    for (auto _ : state) {
        const auto text = DiskFileProvider().contentsOfFile(path);
        if (!text || !writeFileAtomically(path, *text))
            state.SkipWithError("not written");
    }
}
BENCHMARK(readsAndWritesALongFile);

} // namespace

} // namespace Ostrel

int main(int count, char** arguments) {
    QGuiApplication application(count, arguments);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
