#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusVariant>
#include <QImage>
#include <QList>
#include <QString>
#include <QVariantMap>

/// The structures of the status notifier and menu interfaces, as they go over the bus.
namespace Ostrel::TrayBusTypes {

/// (iiay): pixels of 4 bytes, ARGB, most significant first, not premultiplied.
struct Picture {
    int width = 0;
    int height = 0;
    QByteArray pixels;
};
using Pictures = QList<Picture>;

/// (sa(iiay)ss)
struct ToolTip {
    QString iconName;
    Pictures pictures;
    QString title;
    QString text;
};

/// (ia{sv}av), the last being further items.
struct MenuItem {
    int id = 0;
    QVariantMap properties;
    QList<QDBusVariant> children;
};

/// (ia{sv})
struct MenuProperties {
    int id = 0;
    QVariantMap properties;
};

/// (isvu)
struct MenuEvent {
    int id = 0;
    QString kind;
    QDBusVariant data;
    quint32 time = 0;
};

QDBusArgument& operator<<(QDBusArgument& argument, const Picture& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, Picture& value);
QDBusArgument& operator<<(QDBusArgument& argument, const ToolTip& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, ToolTip& value);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuItem& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuItem& value);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuProperties& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuProperties& value);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& value);

/// Once before the first use.
void registerAll();
Picture pictureOf(const QImage& image);

} // namespace Ostrel::TrayBusTypes

Q_DECLARE_METATYPE(Ostrel::TrayBusTypes::Picture)
Q_DECLARE_METATYPE(Ostrel::TrayBusTypes::ToolTip)
Q_DECLARE_METATYPE(Ostrel::TrayBusTypes::MenuItem)
Q_DECLARE_METATYPE(Ostrel::TrayBusTypes::MenuProperties)
Q_DECLARE_METATYPE(Ostrel::TrayBusTypes::MenuEvent)
