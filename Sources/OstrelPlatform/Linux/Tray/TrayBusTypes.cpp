#include "OstrelPlatform/Linux/Tray/TrayBusTypes.h"

#include <QDBusMetaType>
#include <QtEndian>

namespace Ostrel::TrayBusTypes {

namespace {

/// Writes or reads the members one after the other.
template <typename... Members> void write(QDBusArgument& argument, const Members&... members) {
    argument.beginStructure();
    (argument << ... << members);
    argument.endStructure();
}
template <typename... Members> void read(const QDBusArgument& argument, Members&... members) {
    argument.beginStructure();
    (argument >> ... >> members);
    argument.endStructure();
}

} // namespace

QDBusArgument& operator<<(QDBusArgument& argument, const Picture& picture) {
    write(argument, picture.width, picture.height, picture.pixels);
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, Picture& picture) {
    read(argument, picture.width, picture.height, picture.pixels);
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const ToolTip& tip) {
    write(argument, tip.iconName, tip.pictures, tip.title, tip.text);
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, ToolTip& tip) {
    read(argument, tip.iconName, tip.pictures, tip.title, tip.text);
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuItem& item) {
    write(argument, item.id, item.properties, item.children);
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuItem& item) {
    read(argument, item.id, item.properties, item.children);
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuProperties& item) {
    write(argument, item.id, item.properties);
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuProperties& item) {
    read(argument, item.id, item.properties);
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event) {
    write(argument, event.id, event.kind, event.data, event.time);
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& event) {
    read(argument, event.id, event.kind, event.data, event.time);
    return argument;
}

void registerAll() {
    qDBusRegisterMetaType<Picture>();
    qDBusRegisterMetaType<Pictures>();
    qDBusRegisterMetaType<ToolTip>();
    qDBusRegisterMetaType<MenuItem>();
    qDBusRegisterMetaType<MenuProperties>();
    qDBusRegisterMetaType<QList<MenuProperties>>();
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<QList<MenuEvent>>();
}

Picture pictureOf(const QImage& image) {
    const QImage plain = image.convertToFormat(QImage::Format_ARGB32);
    Picture picture{plain.width(), plain.height(), QByteArray(plain.sizeInBytes(), Qt::Uninitialized)};
    qToBigEndian<quint32>(plain.constBits(), plain.sizeInBytes() / 4, picture.pixels.data());
    return picture;
}

} // namespace Ostrel::TrayBusTypes
