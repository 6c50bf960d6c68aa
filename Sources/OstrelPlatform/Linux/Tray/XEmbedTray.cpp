#include "OstrelPlatform/Linux/Tray/XEmbedTray.h"

#include "OstrelPlatform/Linux/X11/X11Screen.h"

#include <QAbstractNativeEventFilter>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPoint>

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace Ostrel {

namespace {

// Of the application's class, and told from its widgets by the instance.
constexpr char ItemClass[] = "ostrel-tray\0dev.ostrel.gui";
constexpr std::uint32_t RequestDock = 0;
constexpr std::uint32_t EmbeddedNotify = 0;
constexpr std::uint32_t WantsToBeMapped = 1;
constexpr std::uint16_t SizeAtFirst = 22;
constexpr std::uint32_t HasSmallestSize = 1 << 4;
constexpr std::uint32_t HasBaseSize = 1 << 8;
constexpr int SmallestSize = 8;
constexpr int LargestSize = 256;

constexpr int OpenButton = 1;
constexpr int MenuButton = 3;

enum Atom : std::size_t { Manager, Selection, Opcode, Embed, EmbedInfo, TrayVisual, AtomCount };

} // namespace

class XEmbedTray::Server : public QAbstractNativeEventFilter {
public:
    Server(xcb_connection_t* connection, TrayContent trayContent)
        : content(std::move(trayContent))
        , connection_(connection)
        , screen_(X11Screen::current(connection)) {
        const QByteArray selection = "_NET_SYSTEM_TRAY_S" + QByteArray::number(X11Screen::number());
        atoms_ = X11Screen::intern<AtomCount>(connection_,
            {"MANAGER", selection, "_NET_SYSTEM_TRAY_OPCODE", "_XEMBED", "_XEMBED_INFO", "_NET_SYSTEM_TRAY_VISUAL"});
        qGuiApp->installNativeEventFilter(this);
    }
    ~Server() override {
        qGuiApp->removeNativeEventFilter(this);
        removeWindow();
        xcb_flush(connection_);
    }

    void dock() {
        tray_ = findTray();
        if (!tray_ || window_)
            return;
        makeWindow();
        sendDockRequest();
        xcb_flush(connection_);
    }

    void undock() {
        removeWindow();
        tray_ = XCB_NONE;
        xcb_flush(connection_);
        setShown(false);
    }

    bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
        const auto* event = static_cast<const xcb_generic_event_t*>(message);
        switch (event->response_type & 0x7f) {
        case XCB_CLIENT_MESSAGE:
            handleMessage(*reinterpret_cast<const xcb_client_message_event_t*>(event));
            break;
        case XCB_DESTROY_NOTIFY:
            handleEnd(reinterpret_cast<const xcb_destroy_notify_event_t*>(event)->window);
            break;
        case XCB_REPARENT_NOTIFY:
            handleNewParent(*reinterpret_cast<const xcb_reparent_notify_event_t*>(event));
            break;
        case XCB_CONFIGURE_NOTIFY:
            handleSize(*reinterpret_cast<const xcb_configure_notify_event_t*>(event));
            break;
        case XCB_EXPOSE:
            if (const auto* expose = reinterpret_cast<const xcb_expose_event_t*>(event);
                isOurs(expose->window) && expose->count == 0)
                paint();
            break;
        case XCB_BUTTON_PRESS:
            return handlePress(*reinterpret_cast<const xcb_button_press_event_t*>(event));
        default:
            break;
        }
        return false;
    }

    const TrayContent content;
    XEmbedTray* owner = nullptr;
    bool isWanted = false;
    bool isShown = false;

private:
    bool isOurs(xcb_window_t window) const { return window_ && window == window_; }

    void setShown(bool shown) {
        if (std::exchange(isShown, shown) != shown && owner->onShownChange)
            owner->onShownChange();
    }

    xcb_window_t findTray() const {
        const auto ask = [this] { return xcb_get_selection_owner(connection_, atoms_[Selection]); };
        const X11Screen::Answer<xcb_get_selection_owner_reply_t> first(
            xcb_get_selection_owner_reply(connection_, ask(), nullptr));
        if (!first || !first->owner)
            return XCB_NONE;
        const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection_, first->owner, XCB_CW_EVENT_MASK, &mask);
        // It may have gone before we began to watch it.
        const X11Screen::Answer<xcb_get_selection_owner_reply_t> second(
            xcb_get_selection_owner_reply(connection_, ask(), nullptr));
        return second && second->owner == first->owner ? first->owner : xcb_window_t{XCB_NONE};
    }

    /// The visual that the tray wants its items to have; the screen's own when it says nothing.
    X11Screen::Visual wantedVisual() const {
        const X11Screen::Answer<xcb_get_property_reply_t> property(xcb_get_property_reply(connection_,
            xcb_get_property(connection_, false, tray_, atoms_[TrayVisual], XCB_ATOM_VISUALID, 0, 1), nullptr));
        if (property && property->format == 32 && xcb_get_property_value_length(property.get()) == 4) {
            const auto id = *static_cast<const xcb_visualid_t*>(xcb_get_property_value(property.get()));
            if (const auto visual = X11Screen::visualOf(screen_, id); visual && visual->depth == 32)
                return *visual;
        }
        return {screen_->root_visual, screen_->root_depth};
    }

    void makeWindow() {
        const auto visual = wantedVisual();
        depth_ = visual.depth;
        size_ = {SizeAtFirst, SizeAtFirst};
        window_ = xcb_generate_id(connection_);
        colormap_ = xcb_generate_id(connection_);
        xcb_create_colormap(connection_, XCB_COLORMAP_ALLOC_NONE, colormap_, screen_->root, visual.id);
        // Where nothing blends, the tray's own background shines through.
        const std::uint32_t background = depth_ == 32 ? XCB_BACK_PIXMAP_NONE : XCB_BACK_PIXMAP_PARENT_RELATIVE;
        const std::uint32_t events
            = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_BUTTON_PRESS;
        const std::uint32_t values[] = {background, 0, events, colormap_};
        xcb_create_window(connection_, depth_, window_, screen_->root, 0, 0, SizeAtFirst, SizeAtFirst, 0,
            XCB_WINDOW_CLASS_INPUT_OUTPUT, visual.id,
            XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP, values);
        const std::uint32_t info[] = {0, WantsToBeMapped};
        xcb_change_property(
            connection_, XCB_PROP_MODE_REPLACE, window_, atoms_[EmbedInfo], atoms_[EmbedInfo], 32, 2, info);
        setSizeHints();
        setText(XCB_ATOM_WM_NAME, content.title);
        setText(XCB_ATOM_WM_CLASS, {ItemClass, sizeof ItemClass});
    }

    /// Some trays size their items by these hints; without them the item would be one pixel wide.
    void setSizeHints() {
        // Flags, then the smallest size at 5 and 6, the base size at 15 and 16.
        std::array<std::uint32_t, 18> hints{};
        hints[0] = HasSmallestSize | HasBaseSize;
        hints[5] = hints[6] = hints[15] = hints[16] = SizeAtFirst;
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NORMAL_HINTS,
            XCB_ATOM_WM_SIZE_HINTS, 32, static_cast<std::uint32_t>(hints.size()), hints.data());
    }

    void setText(xcb_atom_t property, std::string_view text) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, property, XCB_ATOM_STRING, 8,
            static_cast<std::uint32_t>(text.size()), text.data());
    }

    void removeWindow() {
        if (!window_)
            return;
        xcb_destroy_window(connection_, std::exchange(window_, XCB_NONE));
        xcb_free_colormap(connection_, colormap_);
    }

    void sendDockRequest() {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = tray_;
        message.type = atoms_[Opcode];
        message.data.data32[0] = XCB_CURRENT_TIME;
        message.data.data32[1] = RequestDock;
        message.data.data32[2] = window_;
        xcb_send_event(connection_, false, tray_, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
    }

    void handleMessage(const xcb_client_message_event_t& message) {
        if (message.type == atoms_[Manager] && message.data.data32[1] == atoms_[Selection] && isWanted)
            dock();
        else if (message.type == atoms_[Embed] && isOurs(message.window) && message.data.data32[1] == EmbeddedNotify)
            setShown(true);
    }

    void handleEnd(xcb_window_t window) {
        if (window != tray_ && !isOurs(window))
            return;
        // Some trays take their items with them, some give them back to the screen.
        if (isOurs(window))
            window_ = XCB_NONE;
        undock();
        // Another may have taken its place already.
        if (isWanted)
            dock();
    }

    void handleNewParent(const xcb_reparent_notify_event_t& event) {
        if (!isOurs(event.window))
            return;
        if (event.parent != screen_->root)
            return setShown(true);
        undock();
        if (isWanted)
            dock();
    }

    void handleSize(const xcb_configure_notify_event_t& event) {
        const QSize size(event.width, event.height);
        if (!isOurs(event.window) || std::exchange(size_, size) == size)
            return;
        paint();
    }

    bool handlePress(const xcb_button_press_event_t& event) {
        if (!isOurs(event.event))
            return false;
        if (event.detail == OpenButton && owner->onActivate)
            owner->onActivate();
        // The pointer stays with the window that it was pressed in until this is given up, and the menu wants it.
        if (event.detail == MenuButton && owner->onMenuRequest) {
            xcb_ungrab_pointer(connection_, event.time);
            const double scale = qGuiApp->devicePixelRatio();
            owner->onMenuRequest(QPoint(qRound(event.root_x / scale), qRound(event.root_y / scale)));
        }
        return true;
    }

    void paint() {
        QImage picture(size_, QImage::Format_ARGB32_Premultiplied);
        if (picture.isNull())
            return;
        picture.fill(Qt::transparent);
        if (depth_ != 32)
            copyBackground(picture);
        const int side = std::clamp(std::min(size_.width(), size_.height()), SmallestSize, LargestSize);
        {
            QPainter painter(&picture);
            painter.drawImage((size_.width() - side) / 2, (size_.height() - side) / 2, content.drawIcon(side));
        }
        const auto context = xcb_generate_id(connection_);
        xcb_create_gc(connection_, context, window_, 0, nullptr);
        xcb_put_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, context,
            static_cast<std::uint16_t>(size_.width()), static_cast<std::uint16_t>(size_.height()), 0, 0, 0, depth_,
            static_cast<std::uint32_t>(picture.sizeInBytes()), picture.constBits());
        xcb_free_gc(connection_, context);
        xcb_flush(connection_);
    }

    void copyBackground(QImage& picture) {
        const auto width = static_cast<std::uint16_t>(size_.width());
        const auto height = static_cast<std::uint16_t>(size_.height());
        xcb_clear_area(connection_, false, window_, 0, 0, width, height);
        const X11Screen::Answer<xcb_get_image_reply_t> reply(xcb_get_image_reply(connection_,
            xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, 0, 0, width, height, ~0u), nullptr));
        if (!reply || xcb_get_image_data_length(reply.get()) < picture.sizeInBytes())
            return;
        const QImage background(
            xcb_get_image_data(reply.get()), width, height, picture.bytesPerLine(), QImage::Format_RGB32);
        QPainter(&picture).drawImage(0, 0, background);
    }

    xcb_connection_t* connection_;
    xcb_screen_t* screen_;
    std::array<xcb_atom_t, AtomCount> atoms_{};
    xcb_window_t tray_ = XCB_NONE;
    xcb_window_t window_ = XCB_NONE;
    xcb_colormap_t colormap_ = XCB_NONE;
    std::uint8_t depth_ = 0;
    QSize size_;
};

std::unique_ptr<XEmbedTray> XEmbedTray::create(TrayContent content) {
    const auto* native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    auto* connection = native ? native->connection() : nullptr;
    if (!connection || !X11Screen::current(connection) || !X11Screen::hasPlainPixels(connection))
        return nullptr;
    return std::unique_ptr<XEmbedTray>(new XEmbedTray(std::make_unique<Server>(connection, std::move(content))));
}

XEmbedTray::XEmbedTray(std::unique_ptr<Server> server)
    : server_(std::move(server)) {
    server_->owner = this;
}

XEmbedTray::~XEmbedTray() = default;

bool XEmbedTray::isShown() const {
    return server_->isShown;
}

void XEmbedTray::setWanted(bool isWanted) {
    if (std::exchange(server_->isWanted, isWanted) == isWanted)
        return;
    if (isWanted)
        server_->dock();
    else
        server_->undock();
}

} // namespace Ostrel
