// How the main window is put together; what it does is in ContentView.cpp.
#include "OstrelGUI/WidgetLibrary.h"
#include "OstrelGUI/Window/ContentView.h"
#include "OstrelGUI/Window/Controls.h"
#include "OstrelGUI/Window/DLLCompatibilityMenuView.h"
#include "OstrelGUI/Window/DropHint.h"
#include "OstrelGUI/Window/MediaPlayerMenuView.h"
#include "OstrelGUI/Window/PackLaunch.h"
#include "OstrelGUI/Window/Placeholder.h"
#include "OstrelGUI/Window/ScanDetailView.h"
#include "OstrelGUI/Window/SettingsMenuView.h"
#include "OstrelGUI/Window/SidebarView.h"
#include "OstrelGUI/Window/WidgetLibraryMenuView.h"
#include "OstrelGUI/Window/WindowDialogs.h"
#include "OstrelGUI/Window/WindowStyle.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>

#include <algorithm>
#include <string>

namespace Ostrel {

namespace {

constexpr QSize DefaultSize(980, 680);
constexpr QSize SmallestSize(720, 480);
constexpr int BarHeight = 60;
constexpr int SidebarWidth = 248;
/// With larger type its titles need more.
constexpr int SidebarCharacters = 33;
constexpr int NarrowestSidebar = 200;
constexpr int WidestSidebar = 400;

/// The ground of the sidebar, with a line at its end.
class SidebarGround final : public QWidget {
protected:
    void paintEvent(QPaintEvent*) override {
        const Theme theme = Theme::from(palette());
        QPainter painter(this);
        painter.fillRect(rect(), theme.sidebar);
        painter.fillRect(QRect(width() - 1, 0, 1, height()), theme.border);
    }
};

} // namespace

void ContentView::buildWindow() {
    setWindowTitle(QStringLiteral("Ostrel"));
    setMinimumSize(SmallestSize);
    resize(DefaultSize);
    setAcceptDrops(true);
    auto* split = new QSplitter;
    split->setHandleWidth(1);
    split->setChildrenCollapsible(false);
    split->addWidget(makeSidebar());
    split->addWidget(makeDetail());
    split->setStretchFactor(0, 0);
    split->setStretchFactor(1, 1);
    const int sidebarWidth
        = std::clamp(fontMetrics().averageCharWidth() * SidebarCharacters, SidebarWidth, WidestSidebar);
    split->setSizes({sidebarWidth, DefaultSize.width() - sidebarWidth});
    // Nothing but the place where the pointer takes hold: the line is the sidebar's.
    split->setStyleSheet(QStringLiteral("QSplitter::handle{background:transparent;}"));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(split);
    dropHint_ = new DropHint(this);
    addShortcuts();
    applyStyleSheet();
    sidebar_->setFocus();
}

QWidget* ContentView::makeSidebar() {
    auto* ground = new SidebarGround;
    ground->setMinimumWidth(NarrowestSidebar);
    ground->setMaximumWidth(WidestSidebar);
    auto* column = new QVBoxLayout(ground);
    column->setContentsMargins(0, 0, 1, Metrics::Unit);
    column->setSpacing(0);
    auto* title = new QLabel(QStringLiteral("Ostrel"));
    title->setFont(Type::heading(Type::heading(font())));
    title->setFixedHeight(BarHeight);
    title->setContentsMargins(2 * Metrics::Unit, 0, 0, 0);
    column->addWidget(title);
    sidebar_ = new SidebarView(sidebarModel_);
    column->addWidget(sidebar_, 1);
    return ground;
}

QWidget* ContentView::makeDetail() {
    auto* side = new QWidget;
    auto* column = new QVBoxLayout(side);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeToolbar());
    detail_ = new QStackedWidget;
    placeholder_ = new Placeholder(Symbol::sidebarLeading, QStringLiteral("Select a scan"),
        QStringLiteral("Choose an item from the sidebar, or click Open… to scan a new skin."));
    detail_->addWidget(placeholder_);
    column->addWidget(detail_, 1);
    return side;
}

QWidget* ContentView::makeToolbar() {
    auto* bar = new QWidget;
    bar->setFixedHeight(BarHeight);
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(Metrics::PageMargin, 0, Metrics::PageMargin, 0);
    row->setSpacing(Metrics::Unit);
    const auto add = [&](const QString& title, ButtonKind kind, auto action) {
        auto* button = new QPushButton(title);
        setButtonKind(*button, kind);
        connect(button, &QPushButton::clicked, this, action);
        row->addWidget(button);
        return button;
    };
    add(QStringLiteral("Open…"), ButtonKind::suggested, [this] { presentOpenPanel(); });
    add(QStringLiteral("Clear"), ButtonKind::normal, [this] { clearScans(); });
    row->addStretch();
    auto* settings = add(QStringLiteral("Open Settings"), ButtonKind::quiet,
        [this] { setSidebarSelection(SidebarSelection{SidebarSelection::Kind::settings}); });
    settings->setIcon(symbolIcon(Symbol::gear));
    // The picture stands in the middle of its place: what is left over keeps it off the text.
    settings->setIconSize({24, 16});
    return bar;
}

void ContentView::addShortcuts() {
    const auto add = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    add(QKeySequence::Open, [this] { presentOpenPanel(); });
    add(QKeySequence(Qt::CTRL | Qt::Key_Comma),
        [this] { setSidebarSelection(SidebarSelection{SidebarSelection::Kind::settings}); });
    add(QKeySequence::Close, [this] { close(); });
}

void ContentView::applyStyleSheet() {
    const QString sheet = windowStyleSheet(Theme::from(QApplication::palette()));
    if (styleSheet() != sheet)
        setStyleSheet(sheet);
}

QWidget* ContentView::page(const SidebarSelection& selection) {
    const auto made = [this](auto*& page, auto make) -> QWidget* {
        if (!page) {
            page = make();
            detail_->addWidget(page);
        }
        return page;
    };
    switch (selection.kind) {
    case SidebarSelection::Kind::widgetLibrary:
        return made(library_, [this] { return new WidgetLibraryMenuView(with_.library, *with_.dialogs); });
    case SidebarSelection::Kind::dllCompatibilityLayers:
        return made(layers_, [] { return new DLLCompatibilityMenuView; });
    case SidebarSelection::Kind::mediaPlayer:
        return made(mediaPlayer_, [this] {
            return new MediaPlayerMenuView(
                with_.defaults, *with_.dialogs, with_.onPlayerOverride, [this] { ensureOstrelAppIsActive(); });
        });
    case SidebarSelection::Kind::settings:
        return made(settings_, [this] { return new SettingsMenuView(with_.defaults); });
    case SidebarSelection::Kind::scan:
        break;
    }
    return made(scanDetail_, [this] {
        auto* view = new ScanDetailView;
        view->onLaunch = [this](const std::string& path) { packs_->launch(path); };
        view->onDialect = [this](const std::string& path, Dialect dialect) {
            packs_->choose(path, dialect);
            showDetail();
        };
        view->onStop = [this](const std::string& path) { with_.library.unrenderWidget(path); };
        return view;
    });
}

} // namespace Ostrel
