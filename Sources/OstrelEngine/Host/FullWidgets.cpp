#include "OstrelEngine/Host/FullWidgets.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelDialect/PackSkin.h"
#include "OstrelEngine/Full/FullSkin.h"
#include "OstrelEngine/Full/WindowSettings.h"
#include "OstrelEngine/Host/PanelPlacement.h"
#include "OstrelEngine/Host/WidgetPanel.h"
#include "OstrelPlatform/Log.h"
#include "OstrelPlatform/Platform.h"
#include "OstrelPlatform/Workspace.h"

#include <QClipboard>
#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include <utility>

namespace Ostrel {

namespace {

ScreenArea areaOf(const QRect& rect) {
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

QRect primaryScreen() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? screen->geometry() : QRect(0, 0, 1920, 1080);
}

Qt::CursorShape shapeOf(PointerCursor::Shape shape) {
    using Shape = PointerCursor::Shape;
    switch (shape) {
    case Shape::Arrow:
        return Qt::ArrowCursor;
    case Shape::Hand:
        return Qt::PointingHandCursor;
    case Shape::Text:
        return Qt::IBeamCursor;
    case Shape::Help:
        return Qt::WhatsThisCursor;
    case Shape::Busy:
        return Qt::BusyCursor;
    case Shape::Cross:
    case Shape::Pen:
        return Qt::CrossCursor;
    case Shape::No:
        return Qt::ForbiddenCursor;
    case Shape::SizeAll:
        return Qt::SizeAllCursor;
    case Shape::SizeNESW:
        return Qt::SizeBDiagCursor;
    case Shape::SizeNS:
        return Qt::SizeVerCursor;
    case Shape::SizeNWSE:
        return Qt::SizeFDiagCursor;
    case Shape::SizeWE:
        return Qt::SizeHorCursor;
    case Shape::UpArrow:
        return Qt::UpArrowCursor;
    case Shape::Wait:
        return Qt::WaitCursor;
    }
    return Qt::ArrowCursor;
}

} // namespace

FullWidgetHost::FullWidgetHost(
    SkinHost& base, FullWidgets& shared, const Platform& platform, const PackFolders& folders)
    : base_(base)
    , shared_(shared)
    , platform_(platform)
    , skinFile_(folders.skinFile)
    , root_(folders.root) { }

FullWidgetHost::~FullWidgetHost() = default;

void FullWidgetHost::skinDidStop() {
    setPanel(nullptr);
    if (const auto skin = std::exchange(skin_, nullptr))
        shared_.registry().remove(*skin);
}

std::shared_ptr<FullSkin> FullWidgetHost::makeSkin(PackSkin skin, std::int64_t cycles) {
    skin_ = FullSkin::create(std::move(skin), platform_, *this, cycles);
    auto& kept = shared_.settings(skinFile_);
    if (!kept) {
        kept = firstWindowSettings(skin_->skinOptions());
        isFirstTime_ = true;
    }
    settings_ = *kept;
    shared_.registry().add(skin_);
    return skin_;
}

std::int64_t FullWidgetHost::cycles() const {
    return skin_ ? skin_->cycleCount() : 0;
}

void FullWidgetHost::setPanel(WidgetPanel* panel) {
    panel_ = panel;
    if (panel_)
        applySettings();
}

std::optional<Point> FullWidgetHost::firstOrigin() const {
    if (!isFirstTime_ || !skin_)
        return std::nullopt;
    const auto position = firstWindowPosition(skin_->skinOptions(), place(), skin_->widgetSize());
    if (!position)
        return std::nullopt;
    const QSize size = PanelPlacement::windowSize(skin_->widgetSize(), 1);
    return PanelPlacement::origin(QRect(QPoint(position->x, position->y), size), primaryScreen());
}

void FullWidgetHost::placeDidChange() {
    if (skin_)
        skin_->placeDidChange();
}

std::vector<SkinMenuItem> FullWidgetHost::menuItems() const {
    return skin_ ? skin_->menuItems() : std::vector<SkinMenuItem>();
}

void FullWidgetHost::runMenuAction(const std::string& action) {
    if (skin_)
        skin_->executeActionString(action);
}

SkinPlace FullWidgetHost::place() const {
    SkinPlace place;
    place.screens.clear();
    for (const QScreen* screen : QGuiApplication::screens()) {
        if (screen == QGuiApplication::primaryScreen())
            place.primary = place.screens.size();
        place.screens.push_back({areaOf(screen->geometry()), areaOf(screen->availableGeometry())});
    }
    if (place.screens.empty())
        place.screens.emplace_back();
    const QPoint corner = panel_ ? panel_->position() : QPoint(100, 100);
    place.x = corner.x();
    place.y = corner.y();
    place.zPosition = settings_.zPosition;
    return place;
}

bool FullWidgetHost::isAllowed(Permission permission, std::string_view detail) {
    // What is on this machine or beside it is asked for by its own name, and no answer of the sheet covers it.
    if (permission == Permission::Web && detail.starts_with("local:"))
        return false;
    const bool isAllowed = shared_.policy().isAllowed(root_, permission);
    if (!isAllowed)
        log(LogLevel::Notice, {}, "not allowed: " + std::string(detail));
    return isAllowed;
}

void FullWidgetHost::log(LogLevel level, std::string_view section, std::string_view text) {
    if (level == LogLevel::Debug)
        return;
    std::string line = lastPathComponent(skinFile_) + ": ";
    if (!section.empty())
        line += "[" + std::string(section) + "] ";
    logToStandardError(line + std::string(text));
}

void FullWidgetHost::sendBang(const BangTarget& target, const BangCall& call) {
    if (skin_)
        shared_.registry().send(*skin_, target, call);
}

void FullWidgetHost::keepSettings() {
    shared_.settings(skinFile_) = settings_;
}

void FullWidgetHost::applySettings() {
    panel_->setMovableByBackground(settings_.isDraggable);
    panel_->setOpacity(settings_.alpha / 255.0);
    if (panel_->isVisible() != settings_.isShown && panel_->handle())
        panel_->setVisible(settings_.isShown);
}

void FullWidgetHost::setWindowSettings(const WindowSettings& settings) {
    settings_ = settings;
    keepSettings();
    if (panel_)
        panel_->setMovableByBackground(settings_.isDraggable);
}

void FullWidgetHost::moveWindow(int x, int y) {
    if (panel_)
        panel_->moveTo(PanelPlacement::origin(QRect(QPoint(x, y), panel_->size()), primaryScreen()));
}

void FullWidgetHost::setZPosition(int position) {
    settings_.zPosition = position;
    keepSettings();
}

void FullWidgetHost::showWindow(bool isShown, bool /*isFading*/) {
    settings_.isShown = isShown;
    keepSettings();
    if (panel_)
        panel_->setVisible(isShown);
}

void FullWidgetHost::setTransparency(int alpha) {
    settings_.alpha = alpha;
    keepSettings();
    if (panel_)
        panel_->setOpacity(alpha / 255.0);
}

void FullWidgetHost::showMenu(const std::vector<SkinMenuItem>&, bool onlyOwnItems) {
    if (panel_)
        panel_->openMenu(QCursor::pos(), onlyOwnItems);
}

void FullWidgetHost::setCursor(const PointerCursor& cursor) {
    if (panel_)
        panel_->setCursor(shapeOf(cursor.shape));
}

std::optional<std::string> FullWidgetHost::loadedFile(std::string_view config) const {
    const auto skin = shared_.registry().find(config);
    return skin ? std::optional(skin->folders().skinFile) : std::nullopt;
}

std::optional<std::string> FullWidgetHost::lastFile(std::string_view config) const {
    return shared_.registry().lastFile(config);
}

void FullWidgetHost::editFile(const std::string& path) {
    if (platform_.workspace)
        platform_.workspace->openFile(path);
}

void FullWidgetHost::setClipboard(std::string_view text) {
    QGuiApplication::clipboard()->setText(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

void FullWidgetHost::playSound(const std::string&, bool) {
    log(LogLevel::Notice, {}, "sounds are not played yet");
}

} // namespace Ostrel
