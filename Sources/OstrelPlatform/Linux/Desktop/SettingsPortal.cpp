#include "OstrelPlatform/Linux/Desktop/SettingsPortal.h"

#include "OstrelCore/Text/Numbers.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QDeadlineTimer>

#include <algorithm>
#include <optional>
#include <string>

namespace Ostrel {

namespace {

constexpr auto Service = "org.freedesktop.portal.Desktop";
constexpr auto Path = "/org/freedesktop/portal/desktop";
constexpr auto Interface = "org.freedesktop.portal.Settings";
constexpr auto Namespace = "org.freedesktop.appearance";
constexpr auto AccentKey = "accent-color";
constexpr auto SchemeKey = "color-scheme";
constexpr auto FontNamespace = "org.gnome.desktop.interface";
constexpr auto FontKey = "font-name";
constexpr auto ConnectionName = "ostrel-appearance";
// Older portals have only the second, which wraps the value once more.
constexpr auto ReadOne = "ReadOne";
constexpr auto Read = "Read";

QDBusMessage question(const QString& method, const QString& key) {
    auto message = QDBusMessage::createMethodCall(Service, Path, Interface, method);
    message << QString(key == FontKey ? FontNamespace : Namespace) << key;
    return message;
}

bool isUnknownMethod(const QDBusMessage& answer) {
    return QDBusError(answer).type() == QDBusError::UnknownMethod;
}

QVariant unwrapped(QVariant value) {
    while (value.userType() == qMetaTypeId<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

/// Components beyond 0 to 1 are how a desktop says that it has no such color.
std::optional<RGBColor> accentOf(const QVariant& value) {
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return std::nullopt;
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != "(ddd)")
        return std::nullopt;
    RGBColor color;
    argument.beginStructure();
    argument >> color.red >> color.green >> color.blue;
    argument.endStructure();
    const auto isComponent = [](double component) { return component >= 0 && component <= 1; };
    const bool isColor = isComponent(color.red) && isComponent(color.green) && isComponent(color.blue);
    return isColor ? std::optional(color) : std::nullopt;
}

std::optional<bool> prefersDarkOf(const QVariant& value) {
    constexpr uint Dark = 1;
    constexpr uint Light = 2;
    if (value == QVariant(Dark))
        return true;
    return value == QVariant(Light) ? std::optional(false) : std::nullopt;
}

/// The points in "Cantarell Bold 11".
std::optional<double> fontSizeOf(const QVariant& value) {
    const auto size = parseDouble(value.toString().section(' ', -1).toStdString());
    return size && *size > 0 && *size < 1000 ? size : std::nullopt;
}

} // namespace

SettingsPortal::SettingsPortal(const std::string& busAddress, std::chrono::milliseconds patience)
    : bus_(QDBusConnection::connectToBus(QString::fromStdString(busAddress), ConnectionName)) {
    if (!bus_.isConnected())
        return;
    // A slot is refused while its types have never been used.
    qRegisterMetaType<QDBusVariant>();
    // Before the questions, so that no change falls between.
    bus_.connect(
        Service, Path, Interface, "SettingChanged", this, SLOT(settingChanged(QString, QString, QDBusVariant)));
    auto* watcher = new QDBusServiceWatcher(Service, bus_, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, [this] { askLater(); });
    const QDeadlineTimer deadline(patience);
    if (!ask(SchemeKey, deadline) || !ask(AccentKey, deadline) || !ask(FontKey, deadline))
        askLater();
}

SettingsPortal::~SettingsPortal() {
    QDBusConnection::disconnectFromBus(ConnectionName);
}

bool SettingsPortal::ask(const QString& key, const QDeadlineTimer& deadline) {
    const auto answerTo = [&](const QString& method) {
        const auto milliseconds = std::max<qint64>(1, deadline.remainingTime());
        return bus_.call(question(method, key), QDBus::Block, static_cast<int>(milliseconds));
    };
    auto answer = answerTo(ReadOne);
    if (isUnknownMethod(answer))
        answer = answerTo(Read);
    if (answer.type() == QDBusMessage::ReplyMessage)
        take(key, answer.arguments().value(0));
    const auto error = QDBusError(answer).type();
    return error != QDBusError::NoReply && error != QDBusError::Timeout && error != QDBusError::TimedOut;
}

void SettingsPortal::askLater() {
    for (const char* key : {AccentKey, SchemeKey, FontKey})
        askLater(ReadOne, key);
}

void SettingsPortal::askLater(const QString& method, const QString& key) {
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(question(method, key)), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, method, key](QDBusPendingCallWatcher* call) {
        call->deleteLater();
        const auto answer = call->reply();
        if (answer.type() == QDBusMessage::ReplyMessage)
            take(key, answer.arguments().value(0));
        else if (method == ReadOne && isUnknownMethod(answer))
            askLater(Read, key);
    });
}

void SettingsPortal::settingChanged(const QString& space, const QString& key, const QDBusVariant& value) {
    if (space == (key == FontKey ? FontNamespace : Namespace))
        take(key, value.variant());
}

void SettingsPortal::take(const QString& key, QVariant value) {
    value = unwrapped(std::move(value));
    if (key == AccentKey)
        accent_ = accentOf(value);
    else if (key == SchemeKey)
        prefersDark_ = prefersDarkOf(value);
    else if (key == FontKey)
        fontSize_ = fontSizeOf(value);
}

} // namespace Ostrel
