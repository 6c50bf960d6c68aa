// The main window over a library of N widgets with previews, against one of a few: how long until it is on the screen,
// and how long a frame takes while it scrolls. Neither may grow with N.
#include "OstrelGUI/ScannerViewModel.h"
#include "OstrelGUI/Window/ContentView.h"
#include "OstrelGUI/Window/LibraryGrid.h"
#include "OstrelGUI/Window/Page.h"
#include "OstrelGUI/Window/RowList.h"
#include "OstrelPlatform/InMemoryUserDefaults.h"
#include "OstrelPlatform/VirtualTime.h"
#include "Support/FakeWidgetLibrary.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QScrollBar>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace Ostrel {

namespace {

constexpr int CardsInAPackage = 7;
constexpr int ScrollStep = 60;
/// Long after everything that shows has been decoded.
constexpr int SettleMilliseconds = 400;

/// As large as the session keeps them, and no two alike, so that no cache helps.
std::shared_ptr<const std::string> preview(int number) {
    QImage image(420, 260, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor::fromHsv(number % 360, 160, 200));
    QPainter painter(&image);
    for (int i = 0; i < 60; ++i)
        painter.fillRect(QRect((number * 31 + i * 53) % 400, (number * 17 + i * 29) % 250, 40, 12),
            QColor::fromHsv((number + i * 7) % 360, 200, 120 + i));
    painter.end();
    return pngOf(image);
}

const std::vector<WidgetLibraryItem>& items(int count) {
    static std::map<int, std::vector<WidgetLibraryItem>> made;
    auto& list = made[count];
    for (int i = static_cast<int>(list.size()); i < count; ++i) {
        list.push_back(libraryItem("Package " + std::to_string(i / CardsInAPackage), "Widget " + std::to_string(i)));
        list.back().snapshotData = preview(i);
    }
    return list;
}

struct Stage {
    VirtualTime queue;
    ScannerViewModel scans{queue};
    FakeWidgetLibrary library;
    InMemoryUserDefaults defaults;

    explicit Stage(int count) { library.items = items(count); }

    /// Asked for, and painted once.
    std::unique_ptr<ContentView> show() {
        auto window = std::make_unique<ContentView>(ContentView::Dependencies{library, scans, defaults, {}, {}, {}});
        window->setSidebarSelection(SidebarSelection{SidebarSelection::Kind::widgetLibrary});
        window->show();
        QCoreApplication::processEvents();
        return window;
    }
};

void settle() {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < SettleMilliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

template <typename Widget> Widget* childOf(const QWidget& window) {
    for (auto* child : window.findChildren<QWidget*>()) {
        if (auto* widget = dynamic_cast<Widget*>(child); widget && widget->isVisible())
            return widget;
    }
    return nullptr;
}

void windowOnScreen(benchmark::State& state) {
    Stage stage(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const auto window = stage.show();
        const auto* grid = childOf<LibraryGrid>(*window);
        if (!window->isVisible() || !grid || grid->partCount() < state.range(0))
            return state.SkipWithError("the window does not show the library");
    }
}
BENCHMARK(windowOnScreen)->Arg(20)->Arg(1000)->Unit(benchmark::kMillisecond);

/// One frame an iteration: the bar moves, everything that comes into sight is painted.
void scrolledFrame(benchmark::State& state) {
    Stage stage(static_cast<int>(state.range(0)));
    const auto window = stage.show();
    settle();
    auto* page = childOf<Page>(*window);
    auto* grid = childOf<LibraryGrid>(*window);
    QScrollBar& bar = *page->verticalScrollBar();
    const QColor before = grid->grab(grid->buttonRect({0, 0})).toImage().pixelColor(4, 14);
    if (before != window->palette().color(QPalette::Highlight))
        return state.SkipWithError("no card is painted where one should be");
    double longest = 0;
    int direction = ScrollStep;
    QElapsedTimer clock;
    for (auto _ : state) {
        if (bar.value() + direction > bar.maximum() || bar.value() + direction < 0)
            direction = -direction;
        clock.start();
        bar.setValue(bar.value() + direction);
        QCoreApplication::processEvents();
        longest = std::max(longest, static_cast<double>(clock.nsecsElapsed()) / 1e6);
    }
    state.counters["longest_ms"] = longest;
}
BENCHMARK(scrolledFrame)->Arg(20)->Arg(1000)->Unit(benchmark::kMillisecond);

/// A whole page at once, as by Page Down: nothing of what shows was there before, and no preview is decoded yet.
void pagedFrame(benchmark::State& state) {
    Stage stage(static_cast<int>(state.range(0)));
    const auto window = stage.show();
    settle();
    QScrollBar& bar = *childOf<Page>(*window)->verticalScrollBar();
    for (auto _ : state) {
        bar.setValue(bar.value() + bar.pageStep() > bar.maximum() ? 0 : bar.value() + bar.pageStep());
        QCoreApplication::processEvents();
    }
}
BENCHMARK(pagedFrame)->Arg(20)->Arg(1000)->Unit(benchmark::kMillisecond);

/// Rows that wrap, laid out at a new width and painted where they show.
void resizedRows(benchmark::State& state) {
    RowList list;
    std::vector<RowList::Row> rows(static_cast<std::size_t>(state.range(0)));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].symbol = Symbol::infoCircle;
        rows[i].heading = QStringLiteral("Finding %1").arg(i);
        rows[i].text
            = QStringLiteral("A sentence of some length about what will not work here as it was meant. ").repeated(3);
    }
    list.setRows(std::move(rows));
    int width = 400;
    for (auto _ : state) {
        width = width == 400 ? 600 : 400;
        benchmark::DoNotOptimize(list.heightForWidth(width));
    }
}
BENCHMARK(resizedRows)->Arg(5000)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace Ostrel

int main(int count, char** values) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, values);
    benchmark::Initialize(&count, values);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
