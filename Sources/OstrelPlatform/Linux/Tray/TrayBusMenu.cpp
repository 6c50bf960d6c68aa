#include "OstrelPlatform/Linux/Tray/TrayBusMenu.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QTimer>

#include <string>

namespace Ostrel {

using namespace TrayBusTypes;

namespace {

const QString Interface = QStringLiteral("com.canonical.dbusmenu");
const QString Properties = QStringLiteral("org.freedesktop.DBus.Properties");
constexpr int Root = 0;
constexpr quint32 Revision = 1;

constexpr char Description[] = R"xml(<interface name="com.canonical.dbusmenu">
<property name="Version" type="u" access="read"/><property name="TextDirection" type="s" access="read"/>
<property name="Status" type="s" access="read"/><property name="IconThemePath" type="as" access="read"/>
<method name="GetLayout"><arg type="i" direction="in"/><arg type="i" direction="in"/><arg type="as" direction="in"/>
<arg type="u" direction="out"/><arg type="(ia{sv}av)" direction="out"/></method>
<method name="GetGroupProperties"><arg type="ai" direction="in"/><arg type="as" direction="in"/>
<arg type="a(ia{sv})" direction="out"/></method>
<method name="GetProperty"><arg type="i" direction="in"/><arg type="s" direction="in"/>
<arg type="v" direction="out"/></method>
<method name="Event"><arg type="i" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="in"/>
<arg type="u" direction="in"/></method>
<method name="EventGroup"><arg type="a(isvu)" direction="in"/><arg type="ai" direction="out"/></method>
<method name="AboutToShow"><arg type="i" direction="in"/><arg type="b" direction="out"/></method>
<method name="AboutToShowGroup"><arg type="ai" direction="in"/><arg type="ai" direction="out"/>
<arg type="ai" direction="out"/></method>
<signal name="LayoutUpdated"><arg type="u"/><arg type="i"/></signal>
<signal name="ItemsPropertiesUpdated"><arg type="a(ia{sv})"/><arg type="a(ias)"/></signal>
</interface>)xml";

QVariantMap interfaceProperties() {
    return {
        {QStringLiteral("Version"), 3u},
        {QStringLiteral("TextDirection"), QStringLiteral("ltr")},
        {QStringLiteral("Status"), QStringLiteral("normal")},
        {QStringLiteral("IconThemePath"), QStringList()},
    };
}

/// A title as the bus has it: one underline marks a shortcut, two are one.
QString labelOf(const std::string& title) {
    return QString::fromStdString(title).replace(u'_', QStringLiteral("__"));
}

template <typename Value> Value argumentOf(const QDBusMessage& message, int index) {
    return qdbus_cast<Value>(message.arguments().value(index));
}

} // namespace

QString TrayBusMenu::introspect(const QString&) const {
    return QString::fromLatin1(Description);
}

bool TrayBusMenu::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.interface() != Interface && message.interface() != Properties)
        return false;
    const auto values = answer(message);
    const bool hasNoResult = message.member() == QLatin1String("Event");
    if (values.isEmpty() && !hasNoResult)
        return false;
    connection.send(message.createReply(values));
    return true;
}

QVariantList TrayBusMenu::answer(const QDBusMessage& message) {
    const auto name = message.member();
    if (message.interface() == Properties) {
        if (name == QLatin1String("GetAll"))
            return {interfaceProperties()};
        const auto value = interfaceProperties().value(argumentOf<QString>(message, 1));
        return name == QLatin1String("Get") && value.isValid() ? QVariantList{QVariant::fromValue(QDBusVariant(value))}
                                                               : QVariantList();
    }
    if (name == QLatin1String("GetLayout"))
        return {Revision, QVariant::fromValue(layoutOf(argumentOf<int>(message, 0)))};
    if (name == QLatin1String("GetGroupProperties"))
        return {QVariant::fromValue(groupProperties(argumentOf<QList<int>>(message, 0)))};
    if (name == QLatin1String("GetProperty")) {
        const auto value = propertiesOf(argumentOf<int>(message, 0)).value(argumentOf<QString>(message, 1));
        return {QVariant::fromValue(QDBusVariant(value.isValid() ? value : QString()))};
    }
    if (name == QLatin1String("Event"))
        handleEvent(argumentOf<int>(message, 0), argumentOf<QString>(message, 1));
    if (name == QLatin1String("EventGroup")) {
        QList<int> unknown;
        for (const auto& event : argumentOf<QList<MenuEvent>>(message, 0))
            if (!handleEvent(event.id, event.kind))
                unknown.append(event.id);
        return {QVariant::fromValue(unknown)};
    }
    if (name == QLatin1String("AboutToShow"))
        return {false};
    if (name == QLatin1String("AboutToShowGroup"))
        return {QVariant::fromValue(QList<int>()), QVariant::fromValue(QList<int>())};
    return {};
}

QVariantMap TrayBusMenu::propertiesOf(int id) const {
    if (id == Root)
        return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
    if (!isEntry(id))
        return {};
    return {
        {QStringLiteral("label"), labelOf(entries_[static_cast<std::size_t>(id - 1)].title)},
        {QStringLiteral("enabled"), true},
        {QStringLiteral("visible"), true},
    };
}

MenuItem TrayBusMenu::layoutOf(int id) const {
    MenuItem item{id, propertiesOf(id), {}};
    for (int child = 1; id == Root && isEntry(child); ++child)
        item.children.append(QDBusVariant(QVariant::fromValue(MenuItem{child, propertiesOf(child), {}})));
    return item;
}

QList<MenuProperties> TrayBusMenu::groupProperties(const QList<int>& ids) const {
    QList<MenuProperties> result;
    // No ids at all means every entry.
    for (int id = Root; ids.isEmpty() && (id == Root || isEntry(id)); ++id)
        result.append({id, propertiesOf(id)});
    for (const int id : ids)
        if (id == Root || isEntry(id))
            result.append({id, propertiesOf(id)});
    return result;
}

bool TrayBusMenu::handleEvent(int id, const QString& kind) {
    if (!isEntry(id))
        return false;
    const auto& action = entries_[static_cast<std::size_t>(id - 1)].action;
    // After the answer, for the action may end the program.
    if (kind == QLatin1String("clicked") && action)
        QTimer::singleShot(0, this, action);
    return true;
}

} // namespace Ostrel
