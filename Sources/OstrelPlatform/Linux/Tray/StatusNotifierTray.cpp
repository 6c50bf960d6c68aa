#include "OstrelPlatform/Linux/Tray/StatusNotifierTray.h"

#include "OstrelPlatform/Linux/Tray/TrayBusMenu.h"
#include "OstrelPlatform/Linux/Tray/TrayBusTypes.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVirtualObject>
#include <QPoint>
#include <QTimer>

#include <functional>
#include <string>
#include <utility>

namespace Ostrel {

using namespace TrayBusTypes;

namespace {

const QString Interface = QStringLiteral("org.kde.StatusNotifierItem");
const QString Properties = QStringLiteral("org.freedesktop.DBus.Properties");
const QString ItemPath = QStringLiteral("/StatusNotifierItem");
const QString MenuPath = QStringLiteral("/MenuBar");
const QString WatcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString WatcherPath = QStringLiteral("/StatusNotifierWatcher");
/// A watcher that does not answer counts as none.
constexpr int AnswerMilliseconds = 2000;
constexpr int IconSizes[] = {22, 32, 48};

constexpr char Description[] = R"xml(<interface name="org.kde.StatusNotifierItem">
<property name="Category" type="s" access="read"/><property name="Id" type="s" access="read"/>
<property name="Title" type="s" access="read"/><property name="Status" type="s" access="read"/>
<property name="WindowId" type="i" access="read"/><property name="IconName" type="s" access="read"/>
<property name="IconPixmap" type="a(iiay)" access="read"/><property name="ToolTip" type="(sa(iiay)ss)" access="read"/>
<property name="ItemIsMenu" type="b" access="read"/><property name="Menu" type="o" access="read"/>
<method name="Activate"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
<method name="SecondaryActivate"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
<method name="ContextMenu"><arg type="i" direction="in"/><arg type="i" direction="in"/></method>
<method name="Scroll"><arg type="i" direction="in"/><arg type="s" direction="in"/></method>
</interface>)xml";

Pictures picturesOf(const TrayContent& content) {
    Pictures pictures;
    for (const int size : IconSizes)
        pictures.append(pictureOf(content.drawIcon(size)));
    return pictures;
}

QDBusMessage watcherCall(const QString& interface, const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(WatcherService, WatcherPath, interface, method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return message;
}

} // namespace

class StatusNotifierTray::Item final : public QDBusVirtualObject {
public:
    Item(TrayContent content, QDBusConnection connection)
        : content_(std::move(content))
        , menu_(content_.menu)
        , connection_(std::move(connection))
        , watchers_(WatcherService, connection_, QDBusServiceWatcher::WatchForOwnerChange) {
        connection_.registerVirtualObject(ItemPath, this);
        connection_.registerVirtualObject(MenuPath, &menu_);
        connect(&watchers_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& newOwner) {
                setShown(false);
                if (!newOwner.isEmpty())
                    announce();
            });
        announce();
    }
    ~Item() override {
        connection_.unregisterObject(ItemPath);
        connection_.unregisterObject(MenuPath);
        const auto name = connection_.name();
        connection_ = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(name);
    }

    QString introspect(const QString&) const override { return QString::fromLatin1(Description); }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.interface() == Properties)
            return answerProperties(message, connection);
        if (message.interface() != Interface)
            return false;
        connection.send(message.createReply());
        const auto name = message.member();
        if (name == QLatin1String("Activate"))
            call(owner->onActivate);
        else if (name == QLatin1String("ContextMenu"))
            requestMenu({message.arguments().value(0).toInt(), message.arguments().value(1).toInt()});
        return true;
    }

    StatusNotifierTray* owner = nullptr;
    bool isShown = false;

private:
    /// After the answer, for what is called may end the program.
    void call(const std::function<void()>& function) {
        if (function)
            QTimer::singleShot(0, this, function);
    }

    void requestMenu(const QPoint& at) {
        if (owner->onMenuRequest)
            call([this, at] { owner->onMenuRequest(at); });
    }

    void setShown(bool shown) {
        if (std::exchange(isShown, shown) != shown && owner && owner->onShownChange)
            owner->onShownChange();
    }

    void decided() {
        if (auto function = std::exchange(owner->onDecided, nullptr))
            function();
    }

    bool answerProperties(const QDBusMessage& message, const QDBusConnection& connection) const {
        if (message.member() == QLatin1String("GetAll")) {
            connection.send(message.createReply(QVariant(properties())));
            return true;
        }
        const auto value = properties().value(message.arguments().value(1).toString());
        if (message.member() != QLatin1String("Get") || !value.isValid())
            return false;
        connection.send(message.createReply(QVariant::fromValue(QDBusVariant(value))));
        return true;
    }

    QVariantMap properties() const {
        const auto title = QString::fromStdString(content_.title);
        const auto icon = QString::fromStdString(content_.iconName);
        return {
            {QStringLiteral("Category"), QStringLiteral("ApplicationStatus")},
            {QStringLiteral("Id"), icon},
            {QStringLiteral("Title"), title},
            {QStringLiteral("Status"), QStringLiteral("Active")},
            {QStringLiteral("WindowId"), 0},
            {QStringLiteral("IconName"), icon},
            {QStringLiteral("IconPixmap"), QVariant::fromValue(picturesOf(content_))},
            {QStringLiteral("ToolTip"),
                QVariant::fromValue(ToolTip{icon, {}, QString::fromStdString(content_.toolTip), QString()})},
            {QStringLiteral("ItemIsMenu"), false},
            {QStringLiteral("Menu"), QVariant::fromValue(QDBusObjectPath(MenuPath))},
        };
    }

    void ask(const QDBusMessage& message, std::function<void(const QDBusMessage& reply)> then) {
        auto* watcher = new QDBusPendingCallWatcher(connection_.asyncCall(message, AnswerMilliseconds), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, then = std::move(then)] {
            watcher->deleteLater();
            then(watcher->reply());
        });
    }

    void announce() {
        ask(watcherCall(WatcherService, QStringLiteral("RegisterStatusNotifierItem"), {connection_.baseService()}),
            [this](const QDBusMessage& reply) {
                if (reply.type() == QDBusMessage::ReplyMessage)
                    askForHost();
                else
                    decided();
            });
    }

    /// A watcher alone keeps a list; only a host shows it.
    void askForHost() {
        ask(watcherCall(
                Properties, QStringLiteral("Get"), {WatcherService, QStringLiteral("IsStatusNotifierHostRegistered")}),
            [this](const QDBusMessage& reply) {
                // Some watchers have no such property because they are the host.
                const bool isAnswered = reply.type() == QDBusMessage::ReplyMessage;
                setShown(!isAnswered || qdbus_cast<QDBusVariant>(reply.arguments().value(0)).variant().toBool());
                decided();
            });
    }

    TrayContent content_;
    TrayBusMenu menu_;
    QDBusConnection connection_;
    QDBusServiceWatcher watchers_;
};

std::unique_ptr<StatusNotifierTray> StatusNotifierTray::create(TrayContent content, const std::string& busAddress) {
    registerAll();
    const auto name = QStringLiteral("ostrel-tray");
    auto connection = QDBusConnection::connectToBus(QString::fromStdString(busAddress), name);
    if (!connection.isConnected()) {
        QDBusConnection::disconnectFromBus(name);
        return nullptr;
    }
    auto item = std::make_unique<Item>(std::move(content), std::move(connection));
    return std::unique_ptr<StatusNotifierTray>(new StatusNotifierTray(std::move(item)));
}

StatusNotifierTray::StatusNotifierTray(std::unique_ptr<Item> item)
    : item_(std::move(item)) {
    item_->owner = this;
}

StatusNotifierTray::~StatusNotifierTray() = default;

bool StatusNotifierTray::isShown() const {
    return item_->isShown;
}

} // namespace Ostrel
