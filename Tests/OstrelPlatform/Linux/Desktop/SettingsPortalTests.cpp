#include "OstrelPlatform/Linux/Desktop/LinuxAppearance.h"
#include "OstrelPlatform/Linux/Desktop/SettingsPortal.h"

#include "Support/EventLoop.h"
#include "Support/MissingTool.h"
#include "Support/PrivateBus.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QGuiApplication>
#include <QPalette>
#include <QSemaphore>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>

namespace Ostrel {
namespace {

using namespace std::chrono_literals;

constexpr auto Namespace = "org.freedesktop.appearance";

QVariant accentValue(double red, double green, double blue) {
    QDBusArgument argument;
    argument.beginStructure();
    argument << red << green << blue;
    argument.endStructure();
    return QVariant::fromValue(argument);
}

/// The settings portal of a desktop, as a peer on the bus that answers from a thread of its own.
class FakePortal final : public QDBusVirtualObject {
public:
    QStringList methods{"Read", "ReadOne"};
    QMap<QString, QVariant> settings;
    /// No answer to anything.
    std::atomic<bool> isSilent = false;
    std::atomic<int> questions = 0;

    explicit FakePortal(const std::string& address)
        : address_(QString::fromStdString(address)) { }
    ~FakePortal() override {
        thread_.quit();
        thread_.wait();
        QDBusConnection::disconnectFromBus("fake-portal");
    }

    void start() {
        bus_ = QDBusConnection::connectToBus(address_, "fake-portal");
        moveToThread(&thread_);
        thread_.start();
        EXPECT_TRUE(bus_.registerVirtualObject("/org/freedesktop/portal/desktop", this));
        EXPECT_TRUE(bus_.registerService("org.freedesktop.portal.Desktop"));
    }
    void change(const QString& space, const QString& key, const QVariant& value) {
        auto signal = QDBusMessage::createSignal(
            "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings", "SettingChanged");
        signal << space << key << QVariant::fromValue(QDBusVariant(value));
        EXPECT_TRUE(bus_.send(signal));
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        ++questions;
        if (isSilent)
            return true;
        const auto key = message.arguments().value(1).toString();
        if (!methods.contains(message.member())) {
            bus.send(message.createErrorReply(QDBusError::UnknownMethod, "no such method"));
            return true;
        }
        const auto space = key == "font-name" ? "org.gnome.desktop.interface" : Namespace;
        if (message.arguments().value(0) != space || !settings.contains(key)) {
            bus.send(message.createErrorReply("org.freedesktop.portal.Error.NotFound", "no such setting"));
            return true;
        }
        auto value = QVariant::fromValue(QDBusVariant(settings[key]));
        if (message.member() == "Read")
            value = QVariant::fromValue(QDBusVariant(value));
        bus.send(message.createReply(value));
        return true;
    }

private:
    QString address_;
    QThread thread_;
    QDBusConnection bus_{QString()};
};

class SettingsPortalTest : public testing::Test {
protected:
    void SetUp() override {
        if (!PrivateBus::isPossible())
            OSTREL_SKIP_FOR_WANT_OF("dbus-daemon");
        bus.emplace();
        portal = std::make_unique<FakePortal>(bus->address());
    }
    void TearDown() override { portal.reset(); }

    std::optional<PrivateBus> bus;
    std::unique_ptr<FakePortal> portal;
};

constexpr RGBColor Orange{1, 0.5, 0.25};

} // namespace

TEST_F(SettingsPortalTest, knowsTheLooksOfTheDesktopAtOnceAndFollowsThem) {
    portal->settings
        = {{"accent-color", accentValue(1, 0.5, 0.25)}, {"color-scheme", 1U}, {"font-name", "Noto Sans Bold 12.5"}};
    portal->start();
    SettingsPortal settings(bus->address(), 10s);
    EXPECT_EQ(settings.accentColor(), Orange);
    EXPECT_EQ(settings.prefersDark(), true);
    EXPECT_EQ(settings.interfaceFontSize(), 12.5);
    EXPECT_EQ(portal->questions, 3);
    portal->change("org.other", "accent-color", accentValue(0, 0, 0));
    portal->change(Namespace, "contrast", 1U);
    portal->change(Namespace, "accent-color", accentValue(0, 0, 1));
    EXPECT_TRUE(runLoopUntil([&] { return settings.accentColor() == RGBColor{0, 0, 1}; }));
    EXPECT_EQ(settings.prefersDark(), true);
    portal->change(Namespace, "color-scheme", 2U);
    EXPECT_TRUE(runLoopUntil([&] { return settings.prefersDark() == false; }));
    portal->change(Namespace, "color-scheme", 0U);
    EXPECT_TRUE(runLoopUntil([&] { return !settings.prefersDark(); }));
    portal->change(Namespace, "accent-color", accentValue(-1, -1, -1));
    EXPECT_TRUE(runLoopUntil([&] { return !settings.accentColor(); })) << "the user chose none";
    EXPECT_EQ(portal->questions, 3);
}

TEST_F(SettingsPortalTest, asksAnOlderPortalInItsOwnWay) {
    portal->methods = {"Read"};
    portal->settings = {{"accent-color", accentValue(1, 0.5, 0.25)}, {"color-scheme", 2U}};
    portal->start();
    SettingsPortal settings(bus->address(), 10s);
    EXPECT_EQ(settings.accentColor(), Orange);
    EXPECT_EQ(settings.prefersDark(), false);
}

TEST_F(SettingsPortalTest, takesNothingFromAnswersThatMakeNoSense) {
    portal->start();
    const QVariant answers[]
        = {"red", 7U, accentValue(2, 0, 0), accentValue(0, qQNaN(), 0), QVariantList{1.0, 0.5, 0.25}};
    for (const auto& answer : answers) {
        portal->settings = {{"accent-color", answer}, {"color-scheme", answer}, {"font-name", "Sans"}};
        SettingsPortal settings(bus->address(), 10s);
        EXPECT_EQ(settings.accentColor(), std::nullopt) << answer.typeName();
        EXPECT_EQ(settings.prefersDark(), std::nullopt) << answer.typeName();
        EXPECT_EQ(settings.interfaceFontSize(), std::nullopt);
    }
}

TEST_F(SettingsPortalTest, waitsForASilentPortalAShortTimeAndListensOn) {
    portal->settings = {{"accent-color", accentValue(1, 0.5, 0.25)}};
    portal->isSilent = true;
    portal->start();
    const auto start = std::chrono::steady_clock::now();
    SettingsPortal settings(bus->address());
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s) << "the bus itself would wait for 25 s";
    EXPECT_EQ(settings.accentColor(), std::nullopt);
    EXPECT_GE(portal->questions, 1);
    portal->change(Namespace, "accent-color", accentValue(0, 0, 1));
    EXPECT_TRUE(runLoopUntil([&] { return settings.accentColor() == RGBColor{0, 0, 1}; }));
}

TEST_F(SettingsPortalTest, asksAPortalThatStartsLater) {
    SettingsPortal settings(bus->address(), 10s);
    EXPECT_EQ(settings.prefersDark(), std::nullopt);
    portal->methods = {"Read"};
    portal->settings = {{"accent-color", accentValue(1, 0.5, 0.25)}, {"color-scheme", 1U}};
    portal->start();
    EXPECT_TRUE(runLoopUntil([&] { return settings.prefersDark() == true && settings.accentColor() == Orange; }));
}

TEST(LinuxAppearance, fallsBackOnAThemesHighlightAndOnNothing) {
    const auto before = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    const auto palette = QGuiApplication::palette();
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus");
    LinuxAppearance appearance;
    EXPECT_EQ(appearance.accentColor(), std::nullopt) << "the toolkit's own color is nobody's";
    EXPECT_EQ(appearance.prefersDark(), std::nullopt);
    QPalette themed = palette;
    themed.setColor(QPalette::Highlight, QColor(0, 255, 0));
    QGuiApplication::setPalette(themed);
    EXPECT_EQ(appearance.accentColor(), (RGBColor{0, 1, 0}));
    QGuiApplication::setPalette(palette);
    before.isEmpty() ? qunsetenv("DBUS_SESSION_BUS_ADDRESS") : qputenv("DBUS_SESSION_BUS_ADDRESS", before);
}

} // namespace Ostrel
