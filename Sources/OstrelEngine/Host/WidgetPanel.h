#pragma once

#include "OstrelEngine/Actions/MouseEvents.h"
#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Host/CanvasInput.h"
#include "OstrelEngine/Host/ContextMenu.h"
#include "OstrelEngine/Host/InputField.h"

#include <QWindow>

#include <memory>
#include <optional>

namespace Ostrel {

class DesktopAppearance;
class DesktopPanels;
class WidgetCanvasView;
struct InputTextPresentation;

/// Whom a panel tells what the user does to it as a whole.
class WidgetPanelClient {
public:
    virtual ~WidgetPanelClient() = default;
    /// With the new origin.
    virtual void panelDidMove(Point origin) = 0;
    /// A choice of the context menu, which is still at work.
    virtual void contextActionChosen(WidgetContextAction action) = 0;
    /// Whether command-scrolling up means down.
    virtual bool isCommandScrollReversed() const = 0;
};

/// The borderless, transparent window of a widget, part of the desktop. Its place is its origin: bottom left corner, y
/// upward, relative to the primary screen. Main thread.
class WidgetPanel final : public QWindow, private InputFieldView {
public:
    /// View, desktop and client outlive the panel. Nothing is shown yet.
    WidgetPanel(
        Size widgetSize, Point origin, WidgetCanvasView& view, DesktopPanels& desktop, WidgetPanelClient& client);
    ~WidgetPanel() override;

    Point origin() const;
    Size widgetSize() const { return widgetSize_; }
    /// The origin stays: what grows does so upward and to the right. The view displays nothing yet.
    void setWidgetSize(Size widgetSize);

    /// What its menu and its text field look like; null: the toolkit's own looks. It outlives the panel.
    void setAppearance(DesktopAppearance* appearance) { appearance_ = appearance; }
    /// For whom its events are handled.
    void setSkinPath(std::string path) { skinPath_ = std::move(path); }

    bool isMovableByBackground() const { return movableByBackground_; }
    void setMovableByBackground(bool movable);

    /// Shows the panel behind all others.
    void pinToDesktopLayer();

protected:
    bool event(QEvent* event) override;
    void exposeEvent(QExposeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void dragTo(const QPoint& pointer);
    bool isSecondPress(const QMouseEvent& event);
    void pointerDidLeave();
    void showField(const std::optional<InputTextPresentation>& presentation) override;
    void showContextMenu(const QPoint& at);

    void place(Point origin);
    /// A screen that goes or shrinks takes its panels' places with it.
    void followScreens();
    void keepInView();
    void followScale();

    /// Where a press of the button took hold of the window.
    struct Grip {
        QPoint pointer;
        QPoint window;
        bool moving = false;
    };

    WidgetCanvasView& view_;
    WidgetPanelClient& client_;
    Size widgetSize_;
    double scale_ = 1;
    std::string skinPath_;
    DesktopAppearance* appearance_ = nullptr;
    bool movableByBackground_ = true;
    std::optional<Grip> grip_;
    /// The press before, while the next may be its second.
    struct Click {
        Qt::MouseButton button = Qt::NoButton;
        QPoint pointer;
        unsigned long long milliseconds = 0;
    };
    Click lastClick_;
    std::optional<Point> lastOrigin_;
    /// How far a wheel has turned since its last whole step.
    double partOfNotch_ = 0;
    /// Both end while one of their own events is being handled, so they go when it is over.
    struct DeleteLater {
        void operator()(QObject* object) const { object->deleteLater(); }
    };
    std::unique_ptr<InputField, DeleteLater> field_;
    std::unique_ptr<ContextMenu, DeleteLater> menu_;
};

} // namespace Ostrel
