#include "OstrelPlatform/Linux/Tray/StatusNotifierTray.h"

#include "OstrelPlatform/Linux/Tray/TrayBusTypes.h"
#include "Support/EventLoop.h"
#include "Support/MissingTool.h"
#include "Support/PrivateBus.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusVirtualObject>
#include <QPoint>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {
namespace {

using namespace TrayBusTypes;
using testing::ElementsAre;

const QString WatcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString ItemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString MenuInterface = QStringLiteral("com.canonical.dbusmenu");
const QString PropertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

/// The desktop's list of tray items, which a panel may or may not show.
class FakeWatcher final : public QDBusVirtualObject {
public:
    FakeWatcher(const QString& address, const QString& name)
        : connection(QDBusConnection::connectToBus(address, name)) {
        connection.registerVirtualObject(QStringLiteral("/StatusNotifierWatcher"), this);
    }
    ~FakeWatcher() override {
        const auto name = connection.name();
        connection = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(name);
    }

    void appear() { connection.registerService(WatcherName); }
    void disappear() { connection.unregisterService(WatcherName); }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.member() == QLatin1String("RegisterStatusNotifierItem")) {
            items.append(message.arguments().value(0).toString());
            bus.send(message.createReply());
        } else {
            bus.send(message.createReply(QVariant::fromValue(QDBusVariant(hasHost))));
        }
        return true;
    }

    QDBusConnection connection;
    QStringList items;
    bool hasHost = true;
};

class StatusNotifierTrayTest : public testing::Test {
protected:
    void SetUp() override {
        if (!PrivateBus::isPossible())
            OSTREL_SKIP_FOR_WANT_OF("dbus-daemon");
        bus = std::make_unique<PrivateBus>();
        address = bus->address();
        watcher = std::make_unique<FakeWatcher>(QString::fromStdString(address), QStringLiteral("watcher"));
        ASSERT_TRUE(runLoopUntil([&] { return watcher->connection.isConnected(); }));
    }

    void makeTray() {
        TrayContent content{"Ostrel", "Tip_of it", "dev.ostrel.gui",
            [](int pixels) {
                QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
                image.fill(QColor(0x10, 0x20, 0x30, 0xff));
                return image;
            },
            {{"Open_It", [this] { done.push_back("open"); }}, {"Quit", [this] { done.push_back("quit"); }}}};
        tray = StatusNotifierTray::create(std::move(content), address);
        ASSERT_TRUE(tray);
        tray->onDecided = [this] { done.push_back(tray->isShown() ? "decided: shown" : "decided: not shown"); };
        tray->onShownChange = [this] { done.push_back(tray->isShown() ? "shown" : "hidden"); };
        tray->onActivate = [this] { done.push_back("activate"); };
        tray->onMenuRequest = [this](const QPoint& at) { done.push_back("menu " + std::to_string(at.x())); };
    }

    QDBusMessage call(
        const QString& path, const QString& interface, const QString& method, const QVariantList& arguments = {}) {
        auto message = QDBusMessage::createMethodCall(watcher->items.value(0), path, interface, method);
        message.setArguments(arguments);
        const auto pending = watcher->connection.asyncCall(message);
        EXPECT_TRUE(runLoopUntil([&] { return pending.isFinished(); }));
        return pending.reply();
    }
    QVariant property(const QString& path, const QString& interface, const QString& name) {
        const auto reply = call(path, PropertiesInterface, QStringLiteral("Get"), {interface, name});
        EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << name.toStdString();
        return qdbus_cast<QDBusVariant>(reply.arguments().value(0)).variant();
    }
    QVariant item(const char* name) {
        return property(QStringLiteral("/StatusNotifierItem"), ItemInterface, QLatin1String(name));
    }
    QDBusMessage menu(const char* method, const QVariantList& arguments) {
        return call(QStringLiteral("/MenuBar"), MenuInterface, QLatin1String(method), arguments);
    }
    bool isDone(std::size_t count) {
        return runLoopUntil([&] { return done.size() >= count; });
    }

    std::string address;
    std::unique_ptr<PrivateBus> bus;
    std::unique_ptr<FakeWatcher> watcher;
    std::unique_ptr<StatusNotifierTray> tray;
    std::vector<std::string> done;
};

TEST_F(StatusNotifierTrayTest, announcesItselfToEveryWatcherThatComes) {
    makeTray();
    ASSERT_TRUE(isDone(1));
    EXPECT_THAT(done, ElementsAre("decided: not shown"));
    watcher->appear();
    ASSERT_TRUE(isDone(2));
    watcher->disappear();
    ASSERT_TRUE(isDone(3));
    watcher->appear();
    ASSERT_TRUE(isDone(4));
    EXPECT_THAT(done, ElementsAre("decided: not shown", "shown", "hidden", "shown"));
    EXPECT_EQ(watcher->items.size(), 2);
    EXPECT_TRUE(watcher->items[0].startsWith(QLatin1Char(':')));
}

TEST_F(StatusNotifierTrayTest, isNotShownWhereNoPanelShowsTheList) {
    watcher->hasHost = false;
    watcher->appear();
    makeTray();
    ASSERT_TRUE(isDone(1));
    EXPECT_THAT(done, ElementsAre("decided: not shown"));
}

TEST_F(StatusNotifierTrayTest, tellsAPanelWhatToDrawAndAnswersItsClicks) {
    watcher->appear();
    makeTray();
    ASSERT_TRUE(isDone(2));
    EXPECT_EQ(item("Title").toString(), QStringLiteral("Ostrel"));
    EXPECT_EQ(item("Status").toString(), QStringLiteral("Active"));
    EXPECT_EQ(item("IconName").toString(), QStringLiteral("dev.ostrel.gui"));
    EXPECT_EQ(qdbus_cast<QDBusObjectPath>(item("Menu")).path(), QStringLiteral("/MenuBar"));
    EXPECT_EQ(qdbus_cast<ToolTip>(item("ToolTip")).title, QStringLiteral("Tip_of it"));
    const auto pictures = qdbus_cast<Pictures>(item("IconPixmap"));
    ASSERT_FALSE(pictures.isEmpty());
    EXPECT_EQ(pictures[0].pixels.size(), pictures[0].width * pictures[0].height * 4);
    EXPECT_EQ(pictures[0].pixels.left(4), QByteArray("\xff\x10\x20\x30"));
    const auto all
        = call(QStringLiteral("/StatusNotifierItem"), PropertiesInterface, QStringLiteral("GetAll"), {ItemInterface});
    EXPECT_EQ(qdbus_cast<QVariantMap>(all.arguments().value(0)).value(QStringLiteral("Id")),
        QVariant(QStringLiteral("dev.ostrel.gui")));
    const auto missing = call(QStringLiteral("/StatusNotifierItem"), PropertiesInterface, QStringLiteral("Get"),
        {ItemInterface, QStringLiteral("Nothing")});
    EXPECT_EQ(missing.type(), QDBusMessage::ErrorMessage);

    done.clear();
    call(QStringLiteral("/StatusNotifierItem"), ItemInterface, QStringLiteral("Activate"), {5, 6});
    call(QStringLiteral("/StatusNotifierItem"), ItemInterface, QStringLiteral("ContextMenu"), {7, 8});
    ASSERT_TRUE(isDone(2));
    EXPECT_THAT(done, ElementsAre("activate", "menu 7"));
}

TEST_F(StatusNotifierTrayTest, hasAMenuThatThePanelDraws) {
    watcher->appear();
    makeTray();
    ASSERT_TRUE(isDone(2));
    done.clear();
    EXPECT_EQ(property(QStringLiteral("/MenuBar"), MenuInterface, QStringLiteral("Version")).toUInt(), 3u);
    const auto layout = menu("GetLayout", {0, -1, QStringList()});
    ASSERT_EQ(layout.signature(), QStringLiteral("u(ia{sv}av)"));
    const auto root = qdbus_cast<MenuItem>(layout.arguments().value(1));
    std::vector<std::string> labels;
    for (const auto& child : root.children)
        labels.push_back(
            qdbus_cast<MenuItem>(child.variant()).properties.value(QStringLiteral("label")).toString().toStdString());
    EXPECT_THAT(labels, ElementsAre("Open__It", "Quit"));
    const auto group = menu("GetGroupProperties", {QVariant::fromValue(QList<int>{2, 9}), QStringList()});
    const auto found = qdbus_cast<QList<MenuProperties>>(group.arguments().value(0));
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found[0].properties.value(QStringLiteral("label")).toString(), QStringLiteral("Quit"));
    EXPECT_EQ(menu("AboutToShow", {0}).arguments().value(0).toBool(), false);

    const auto nothing = QVariant::fromValue(QDBusVariant(0));
    menu("Event", {1, QStringLiteral("hovered"), nothing, 0u});
    menu("Event", {77, QStringLiteral("clicked"), nothing, 0u});
    menu("Event", {1, QStringLiteral("clicked"), nothing, 0u});
    const QList<MenuEvent> events{
        {2, QStringLiteral("clicked"), QDBusVariant(0), 0}, {-5, QStringLiteral("clicked"), QDBusVariant(0), 0}};
    const auto unknown = menu("EventGroup", {QVariant::fromValue(events)});
    EXPECT_EQ(qdbus_cast<QList<int>>(unknown.arguments().value(0)), QList<int>{-5});
    ASSERT_TRUE(isDone(2));
    EXPECT_THAT(done, ElementsAre("open", "quit"));
    EXPECT_EQ(menu("Nonsense", {}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(menu("GetLayout", {QStringLiteral("no number")}).type(), QDBusMessage::ReplyMessage);
}

TEST_F(StatusNotifierTrayTest, livesOnWithoutTheBus) {
    watcher->appear();
    makeTray();
    ASSERT_TRUE(isDone(2));
    bus.reset();
    ASSERT_TRUE(runLoopUntil([&] { return !watcher->connection.isConnected(); }));
    EXPECT_FALSE(StatusNotifierTray::create({}, "unix:path=/nowhere"));
}

} // namespace
} // namespace Ostrel
