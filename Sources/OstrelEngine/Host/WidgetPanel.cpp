#include "OstrelEngine/Host/WidgetPanel.h"

#include "OstrelEngine/Host/PanelPlacement.h"
#include "OstrelEngine/Host/WidgetCanvasView.h"
#include "OstrelEngine/Runtime/SkinAtWork.h"

#include <QCursor>
#include <QExposeEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPointingDevice>
#include <QScreen>
#include <QStyleHints>

#include <chrono>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace Ostrel {

namespace {

// A click whose pointer trembles by less than this many points does not move the widget.
constexpr int DragThreshold = 4;
// What Qt reports for one notch of a wheel.
constexpr double NotchDelta = 120;

QRect primaryScreen() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? screen->geometry() : QRect(0, 0, 1, 1);
}

std::vector<QRect> allScreens() {
    std::vector<QRect> screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.push_back(screen->geometry());
    return screens;
}

Point pointOf(const QMouseEvent& event) {
    return {event.position().x(), event.position().y()};
}

std::optional<PointerButton> buttonOf(const QMouseEvent& event) {
    switch (event.button()) {
    case Qt::LeftButton:
        return PointerButton::left;
    case Qt::RightButton:
        return PointerButton::right;
    case Qt::MiddleButton:
        return PointerButton::middle;
    case Qt::XButton1:
        return PointerButton::x1;
    case Qt::XButton2:
        return PointerButton::x2;
    default:
        return std::nullopt;
    }
}

ScrollPhase phaseOf(Qt::ScrollPhase phase) {
    switch (phase) {
    case Qt::ScrollBegin:
        return ScrollPhase::began;
    case Qt::ScrollUpdate:
        return ScrollPhase::changed;
    case Qt::ScrollEnd:
        return ScrollPhase::ended;
    default:
        return ScrollPhase::none;
    }
}

ScrollEvent scrollOf(const QWheelEvent& event) {
    using Seconds = std::chrono::duration<double>;
    ScrollEvent scroll;
    scroll.point = {event.position().x(), event.position().y()};
    scroll.isSideways = event.angleDelta().y() == 0 && event.angleDelta().x() != 0;
    scroll.delta = scroll.isSideways ? event.angleDelta().x() : event.angleDelta().y();
    scroll.phase = phaseOf(event.phase());
    scroll.momentum = event.phase() == Qt::ScrollMomentum ? ScrollPhase::changed : ScrollPhase::none;
    // Not by the size of the steps: fine wheels report fractions of a notch too.
    scroll.isPrecise = event.phase() != Qt::NoScrollPhase
        || (event.pointingDevice() && event.pointingDevice()->type() == QInputDevice::DeviceType::TouchPad);
    // The command key of a Mac is Control to Qt.
    scroll.isCommandHeld = event.modifiers().testFlag(Qt::ControlModifier);
    scroll.uptimeSeconds = Seconds(std::chrono::steady_clock::now().time_since_epoch()).count();
    return scroll;
}

} // namespace

WidgetPanel::WidgetPanel(
    Size widgetSize, Point origin, WidgetCanvasView& view, DesktopPanels& desktop, WidgetPanelClient& client)
    : view_(view)
    , client_(client)
    , widgetSize_(widgetSize) {
    QSurfaceFormat format;
    format.setAlphaBufferSize(8);
    setFormat(format);
    setFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnBottomHint | Qt::WindowDoesNotAcceptFocus
        | Qt::NoDropShadowWindowHint);
    place(origin);
    create();
    scale_ = devicePixelRatio();
    desktop.pin(*this);
    view_.attach(desktop.createSurface(*this));
    view_.setSize(size(), scale_);
    followScreens();
    view_.input().setFieldView(this);
}

WidgetPanel::~WidgetPanel() {
    view_.input().setFieldView(nullptr);
    // At once: later they would call a panel that is gone.
    delete field_.release();
    delete menu_.release();
    view_.attach(nullptr);
}

Point WidgetPanel::origin() const {
    return PanelPlacement::origin(geometry(), primaryScreen());
}

void WidgetPanel::setWidgetSize(Size widgetSize) {
    widgetSize_ = widgetSize;
    place(origin());
    view_.setSize(size(), scale_);
}

void WidgetPanel::place(Point origin) {
    const QSize size = PanelPlacement::windowSize(widgetSize_, scale_);
    const QRect frame = PanelPlacement::frame(origin, size, primaryScreen());
    // Fixed, so that no window manager stretches it.
    setMinimumSize(size);
    setMaximumSize(size);
    setGeometry(PanelPlacement::broughtIntoView(frame, allScreens()));
    lastOrigin_ = this->origin();
}

void WidgetPanel::followScreens() {
    const auto follow
        = [this](const QScreen* screen) { connect(screen, &QScreen::geometryChanged, this, [this] { keepInView(); }); };
    for (const QScreen* screen : QGuiApplication::screens())
        follow(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, follow);
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, [this] { keepInView(); });
}

void WidgetPanel::keepInView() {
    const QRect frame = PanelPlacement::broughtIntoView(geometry(), allScreens());
    if (frame != geometry())
        setPosition(frame.topLeft());
}

void WidgetPanel::setMovableByBackground(bool movable) {
    movableByBackground_ = movable;
    if (!movable)
        grip_.reset();
}

void WidgetPanel::pinToDesktopLayer() {
    view_.prepareToShow();
    show();
    lower();
}

bool WidgetPanel::event(QEvent* event) {
    const SkinAtWork work(skinPath_.c_str());
    // A window manager's wish; what closes a widget is its own menu, or the program's end.
    if (event->type() == QEvent::Close) {
        event->ignore();
        return true;
    }
    if (event->type() == QEvent::Leave)
        pointerDidLeave();
    const bool handled = QWindow::event(event);
    followScale();
    return handled;
}

/// The window system says so too when a window of ours comes between the pointer and the panel.
void WidgetPanel::pointerDidLeave() {
    // A menu holds the pointer; where that is tells once the menu is gone.
    if (menu_)
        return;
    if (!field_ || !geometry().contains(QCursor::pos()))
        view_.input().mouseExited();
}

void WidgetPanel::followScale() {
    if (!handle() || scale_ == devicePixelRatio())
        return;
    scale_ = devicePixelRatio();
    view_.setSize(size(), scale_);
    view_.display();
}

void WidgetPanel::exposeEvent(QExposeEvent*) {
    if (isExposed())
        view_.expose();
}

void WidgetPanel::moveEvent(QMoveEvent*) {
    if (field_)
        field_->follow(position());
    const Point now = origin();
    if (std::exchange(lastOrigin_, now) != now)
        client_.panelDidMove(now);
}

void WidgetPanel::mousePressEvent(QMouseEvent* event) {
    const auto button = buttonOf(*event);
    if (!button)
        return;
    const bool isBypassed = event->modifiers().testFlag(Qt::ControlModifier);
    const auto press = view_.input().mouseDown(pointOf(*event), {*button, isSecondPress(*event), isBypassed});
    if (press != Press::background)
        return;
    if (*button == PointerButton::right)
        showContextMenu(event->globalPosition().toPoint());
    else if (*button == PointerButton::left && movableByBackground_)
        grip_ = Grip{event->globalPosition().toPoint(), position()};
}

/// The toolkit tells of it only when it has told of the press.
bool WidgetPanel::isSecondPress(const QMouseEvent& event) {
    const auto* hints = QGuiApplication::styleHints();
    const Click click{event.button(), event.globalPosition().toPoint(), event.timestamp()};
    const auto before = std::exchange(lastClick_, click);
    const bool isSecond = before.button == click.button
        && click.milliseconds - before.milliseconds < static_cast<unsigned long long>(hints->mouseDoubleClickInterval())
        && (click.pointer - before.pointer).manhattanLength() < hints->mouseDoubleClickDistance();
    if (isSecond)
        lastClick_ = {};
    return isSecond;
}

void WidgetPanel::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() == Qt::NoButton)
        return view_.input().mouseMoved(pointOf(*event));
    if (!event->buttons().testFlag(Qt::LeftButton))
        return;
    dragTo(event->globalPosition().toPoint());
    view_.input().mouseDragged(pointOf(*event));
}

void WidgetPanel::dragTo(const QPoint& pointer) {
    if (!grip_)
        return;
    const QPoint way = pointer - grip_->pointer;
    if (!grip_->moving && way.manhattanLength() >= DragThreshold) {
        grip_->moving = true;
        view_.input().windowWillMove();
    }
    if (grip_->moving)
        setPosition(grip_->window + way);
}

void WidgetPanel::mouseReleaseEvent(QMouseEvent* event) {
    const auto button = buttonOf(*event);
    if (!button)
        return;
    if (*button == PointerButton::left)
        grip_.reset();
    view_.input().mouseUp(pointOf(*event), *button);
}

void WidgetPanel::wheelEvent(QWheelEvent* event) {
    ScrollEvent scroll = scrollOf(*event);
    scroll.isCommandReversed = scroll.isCommandHeld && client_.isCommandScrollReversed();
    if (!scroll.isPrecise) {
        // A fine wheel reports fractions of a notch, and a notch is one step.
        partOfNotch_ = partOfNotch_ * scroll.delta < 0 ? scroll.delta : partOfNotch_ + scroll.delta;
        if (std::abs(partOfNotch_) < NotchDelta)
            return;
        scroll.delta = std::exchange(partOfNotch_, 0);
    }
    if (!view_.input().scrollWheel(scroll))
        event->ignore();
}

void WidgetPanel::showField(const std::optional<InputTextPresentation>& presentation) {
    if (field_)
        field_->hide();
    field_.reset();
    if (!presentation)
        return;
    field_.reset(new InputField(*presentation, DesktopLook::of(appearance_)));
    // A key that was on its way to the field before this one answers nothing.
    field_->onSubmit = [this, field = field_.get()](const std::string& text) {
        if (field == field_.get())
            view_.input().submitActiveInput(text);
    };
    field_->onCancel = [this, field = field_.get()] {
        if (field == field_.get())
            view_.input().dismissActiveInputByUser();
    };
    field_->onPointerLeave = [this] { pointerDidLeave(); };
    field_->open(position());
}

void WidgetPanel::showContextMenu(const QPoint& at) {
    const auto choose
        = [this](WidgetContextAction action) { return [this, action] { client_.contextActionChosen(action); }; };
    menu_.reset(new ContextMenu(
        {
            {QStringLiteral("Freeze Widget"), !movableByBackground_, choose(WidgetContextAction::toggleFreeze)},
            {},
            {QStringLiteral("Unrender Widget"), false, choose(WidgetContextAction::unrender)},
        },
        DesktopLook::of(appearance_)));
    menu_->onClosed = [this] {
        menu_.reset();
        if (!geometry().contains(QCursor::pos()))
            view_.input().mouseExited();
    };
    menu_->popUp(at);
}

} // namespace Ostrel
