#include "OstrelPlatform/Linux/X11/X11DesktopPanels.h"

#include "OstrelPlatform/Linux/X11/X11Atoms.h"
#include "OstrelPlatform/Linux/X11/X11PanelSurface.h"
#include "OstrelPlatform/Linux/X11/X11Screen.h"

#include <QAbstractEventDispatcher>
#include <QAbstractNativeEventFilter>
#include <QGuiApplication>
#include <QWindow>

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <cstdlib>
#include <span>

namespace Ostrel {

namespace {

using X11Screen::Answer;

constexpr std::uint32_t EveryDesktop = 0xFFFFFFFF;

} // namespace

/// Our side of Qt's connection.
class X11DesktopPanels::Server : public QAbstractNativeEventFilter {
public:
    explicit Server(xcb_connection_t* connection)
        : atoms(connection, X11Screen::number()) {
        screen.connection = connection;
        screen.sharesMemory = X11PanelSurface::canShareMemory(connection);
        screen.blends = isComposited();
        watchCompositor();
        // Once for all widgets that a wake painted.
        auto* loop = QAbstractEventDispatcher::instance();
        flush_ = QObject::connect(
            loop, &QAbstractEventDispatcher::aboutToBlock, loop, [connection] { xcb_flush(connection); });
    }
    ~Server() override {
        qGuiApp->removeNativeEventFilter(this);
        QObject::disconnect(flush_);
        xcb_flush(screen.connection);
    }

    std::uint8_t depthOf(std::uint32_t window) {
        // All panels ask for the same format and get the same depth.
        if (!depth_) {
            const Answer<xcb_get_geometry_reply_t> geometry(
                xcb_get_geometry_reply(screen.connection, xcb_get_geometry(screen.connection, window), nullptr));
            depth_ = geometry ? geometry->depth : 24;
        }
        return depth_;
    }

    void setProperty(
        std::uint32_t window, X11Atoms::Name name, std::uint32_t type, std::span<const std::uint32_t> values) {
        xcb_change_property(screen.connection, XCB_PROP_MODE_REPLACE, window, atoms[name], type, 32,
            static_cast<std::uint32_t>(values.size()), values.data());
    }

    bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
        const auto* event = static_cast<const xcb_generic_event_t*>(message);
        if (compositorEvent_ && (event->response_type & 0x7f) == compositorEvent_)
            followCompositor();
        return false;
    }

    const X11Atoms atoms;
    X11PanelSurface::Screen screen;

private:
    bool isComposited() const {
        const Answer<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
            screen.connection, xcb_get_selection_owner(screen.connection, atoms[X11Atoms::Compositor]), nullptr));
        return owner && owner->owner != XCB_NONE;
    }

    void watchCompositor() {
        const auto* fixes = xcb_get_extension_data(screen.connection, &xcb_xfixes_id);
        if (!fixes || !fixes->present)
            return;
        compositorEvent_ = fixes->first_event + XCB_XFIXES_SELECTION_NOTIFY;
        const auto root = xcb_setup_roots_iterator(xcb_get_setup(screen.connection)).data->root;
        xcb_xfixes_select_selection_input(screen.connection, root, atoms[X11Atoms::Compositor],
            XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER
                | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY
                | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        qGuiApp->installNativeEventFilter(this);
    }

    void followCompositor() {
        const bool blends = isComposited();
        if (std::exchange(screen.blends, blends) == blends)
            return;
        for (auto* surface : screen.surfaces)
            surface->blendingDidChange();
    }

    QMetaObject::Connection flush_;
    std::uint8_t depth_ = 0;
    int compositorEvent_ = 0;
};

std::unique_ptr<X11DesktopPanels> X11DesktopPanels::create() {
    const auto* native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!native || !native->connection() || !X11Screen::hasPlainPixels(native->connection()))
        return nullptr;
    return std::unique_ptr<X11DesktopPanels>(new X11DesktopPanels(std::make_unique<Server>(native->connection())));
}

X11DesktopPanels::X11DesktopPanels(std::unique_ptr<Server> server)
    : server_(std::move(server)) { }

X11DesktopPanels::~X11DesktopPanels() = default;

void X11DesktopPanels::pin(QWindow& window) {
    using enum X11Atoms::Name;
    const auto id = static_cast<std::uint32_t>(window.winId());
    const auto& atom = server_->atoms;
    const auto set = [&](X11Atoms::Name name, std::uint32_t type, std::initializer_list<std::uint32_t> values) {
        server_->setProperty(id, name, type, {values.begin(), values.size()});
    };
    const auto windowClass = X11Screen::windowClass();
    xcb_change_property(server_->screen.connection, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
        static_cast<std::uint32_t>(windowClass.size()), windowClass.data());
    set(WindowType, XCB_ATOM_ATOM, {atom[TypeUtility], atom[TypeNormal]});
    set(WindowState, XCB_ATOM_ATOM,
        {atom[StateBelow], atom[StateSticky], atom[StateSkipTaskbar], atom[StateSkipPager], atom[StateSkipSwitcher]});
    set(Desktop, XCB_ATOM_CARDINAL, {EveryDesktop});
    // Without WM_TAKE_FOCUS: a window manager that finds it offers the focus, whatever else the window says.
    set(Protocols, XCB_ATOM_ATOM, {atom[DeleteWindow], atom[Ping]});
}

std::unique_ptr<PanelSurface> X11DesktopPanels::createSurface(QWindow& window) {
    const auto id = static_cast<std::uint32_t>(window.winId());
    return std::make_unique<X11PanelSurface>(server_->screen, id, server_->depthOf(id));
}

} // namespace Ostrel
