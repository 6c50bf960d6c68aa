// What remembering costs: one move of a widget in a session of a hundred with pictures, against the same without a
// store; what one change costs in a library of a thousand; and how long a session takes to read.

#include "OstrelCore/Text/Numbers.h"
#include "OstrelGUI/Session/OstrelSessionStore.h"
#include "OstrelGUI/Session/SessionCoding.h"
#include "OstrelGUI/Session/SessionLibraryItems.h"
#include "OstrelPlatform/Linux/Desktop/QSettingsUserDefaults.h"
#include "Support/TemporaryFolder.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <string>

namespace Ostrel {

namespace {

constexpr double MovesPerSecond = 60;

OstrelSessionState sessionOf(int count) {
    std::mt19937 random(1);
    OstrelSessionState state;
    for (int i = 0; i < count; ++i) {
        std::string picture(20000, '\0');
        for (char& byte : picture)
            byte = static_cast<char>(random());
        WidgetRuntimeState runtime;
        for (int n = 0; n < 30; ++n)
            runtime.variables["Variable" + formatInteger(n)] = "some value of number " + formatInteger(n);
        state.upsert(
            {.path = "/home/someone/Skins/Pack " + formatInteger(i / 10) + "/Config/Skin " + formatInteger(i) + ".ini",
                .origin = Point{100.0 * i, 50},
                .runtime = std::make_shared<const WidgetRuntimeState>(std::move(runtime)),
                .isRendered = true,
                .snapshotData = std::make_shared<const SnapshotPicture>(std::move(picture))});
    }
    return state;
}

void tellShare(benchmark::State& state) {
    // Seconds of work a second, as per cent of a core.
    state.counters["core_percent"] = benchmark::Counter(
        1 / (100 * MovesPerSecond), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// A drag: the widget's origin changes, the session is stored and the library's items follow.
void move(benchmark::State& state, bool stores) {
    const auto count = static_cast<int>(state.range(0));
    TemporaryFolder folder;
    auto session = sessionOf(count);
    {
        QSettingsUserDefaults defaults(folder.path());
        OstrelSessionStore store(defaults);
        SessionLibraryItems items;
        store.save(session);
        items.update(session);
        benchmark::DoNotOptimize(items.items());
        const auto path = session.widgets[static_cast<std::size_t>(count) / 2].path;
        double x = 0;
        for (auto _ : state) {
            auto moved = session.widgets[*session.index(path)];
            moved.origin = Point{x += 0.5, 20};
            session.upsert(std::move(moved));
            if (!stores)
                continue;
            store.save(session);
            benchmark::DoNotOptimize(items.update(session));
        }
    }
    QSettingsUserDefaults defaults(folder.path());
    if (stores && OstrelSessionStore(defaults).load() != session)
        state.SkipWithError("not stored");
    tellShare(state);
}

void moveWithStore(benchmark::State& state) {
    move(state, true);
}
BENCHMARK(moveWithStore)->Arg(100)->Arg(1000)->MeasureProcessCPUTime()->Unit(benchmark::kMicrosecond);

void moveWithoutStore(benchmark::State& state) {
    move(state, false);
}
BENCHMARK(moveWithoutStore)->Arg(100)->Arg(1000)->MeasureProcessCPUTime()->Unit(benchmark::kMicrosecond);

/// A card of a thousand changes.
void refreshOneCard(benchmark::State& state) {
    auto session = sessionOf(1000);
    SessionLibraryItems items;
    items.update(session);
    for (auto _ : state) {
        session.widgets[500].isRendered = !session.widgets[500].isRendered;
        if (!items.update(session) || items.items().size() != 1000)
            state.SkipWithError("unseen");
    }
}
BENCHMARK(refreshOneCard)->Unit(benchmark::kMicrosecond);

/// A skin comes and goes: the rest keeps its collation.
void refreshAllCards(benchmark::State& state) {
    auto session = sessionOf(1000);
    SessionLibraryItems items;
    items.update(session);
    for (auto _ : state) {
        session.upsert({.path = "/Skins/New/new.ini"});
        items.update(session);
        const auto more = items.items().size();
        session.remove("/Skins/New/new.ini");
        if (!items.update(session) || items.items().size() + 1 != more)
            state.SkipWithError("unseen");
    }
}
BENCHMARK(refreshAllCards)->Unit(benchmark::kMicrosecond);

void load(benchmark::State& state) {
    const auto session = sessionOf(static_cast<int>(state.range(0)));
    const auto text = encodeSession(session);
    for (auto _ : state) {
        const auto decoded = decodeSession(text);
        if (!decoded || decoded->widgets.size() != session.widgets.size())
            state.SkipWithError("not decoded");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
}
BENCHMARK(load)->Arg(10)->Arg(1000)->Unit(benchmark::kMillisecond);

void encode(benchmark::State& state) {
    const auto session = sessionOf(1000);
    for (auto _ : state)
        benchmark::DoNotOptimize(encodeSession(session));
}
BENCHMARK(encode)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace Ostrel
