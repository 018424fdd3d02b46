#include "platform/ScreenProfile.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QFile>
#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace ScreenProfile {
namespace {

constexpr int ColordTimeoutMs = 500;

// One property of a colord object, by the standard Properties interface.
QVariant colordProperty(const QString &path, const QString &interface, const QString &name)
{
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.ColorManager"), path,
                                                       QStringLiteral("org.freedesktop.DBus.Properties"),
                                                       QStringLiteral("Get"));
    call << interface << name;
    const QDBusMessage reply = QDBusConnection::systemBus().call(call, QDBus::Block, ColordTimeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return {};
    return reply.arguments().first().value<QDBusVariant>().variant();
}

} // namespace

QByteArray propertyName(int screen)
{
    return screen <= 0 ? QByteArrayLiteral("_ICC_PROFILE") : "_ICC_PROFILE_" + QByteArray::number(screen);
}

QByteArray fromX11(int screen)
{
    const auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    xcb_connection_t *connection = x11 ? x11->connection() : nullptr;
    if (!connection)
        return {};
    const xcb_screen_t *root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    if (!root)
        return {};
    const QByteArray name = propertyName(screen);
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 1, uint16_t(name.size()), name.constData()),
                              nullptr),
        &std::free);
    if (!atom || atom->atom == XCB_ATOM_NONE)
        return {};
    const std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> property(
        xcb_get_property_reply(connection,
                               xcb_get_property(connection, 0, root->root, atom->atom, XCB_GET_PROPERTY_TYPE_ANY, 0,
                                                uint32_t(MaxProfileBytes / 4)),
                               nullptr),
        &std::free);
    // Bytes, all of them: a profile cut short is no profile.
    if (!property || property->format != 8 || property->bytes_after != 0)
        return {};
    const int length = xcb_get_property_value_length(property.get());
    return QByteArray(static_cast<const char *>(xcb_get_property_value(property.get())), length);
}

QByteArray fromColord(const QString &output)
{
    if (output.isEmpty() || !QDBusConnection::systemBus().isConnected())
        return {};
    QDBusMessage find = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.ColorManager"), QStringLiteral("/org/freedesktop/ColorManager"),
        QStringLiteral("org.freedesktop.ColorManager"), QStringLiteral("FindDeviceByProperty"));
    find << QStringLiteral("XRANDR_name") << output;
    const QDBusMessage device = QDBusConnection::systemBus().call(find, QDBus::Block, ColordTimeoutMs);
    if (device.type() != QDBusMessage::ReplyMessage || device.arguments().isEmpty())
        return {};
    const QString devicePath = device.arguments().first().value<QDBusObjectPath>().path();
    // The device's profiles, the default one first.
    const QVariant listed =
        colordProperty(devicePath, QStringLiteral("org.freedesktop.ColorManager.Device"), QStringLiteral("Profiles"));
    QList<QDBusObjectPath> profiles;
    if (listed.metaType() == QMetaType::fromType<QDBusArgument>())
        listed.value<QDBusArgument>() >> profiles;
    else
        profiles = listed.value<QList<QDBusObjectPath>>();
    if (profiles.isEmpty())
        return {};
    const QString fileName = colordProperty(profiles.first().path(), QStringLiteral("org.freedesktop.ColorManager.Profile"),
                                            QStringLiteral("Filename"))
                                 .toString();
    QFile file(fileName);
    if (fileName.isEmpty() || !file.open(QIODevice::ReadOnly) || file.size() > MaxProfileBytes)
        return {};
    return file.readAll();
}

QByteArray read(int screen, const QString &output)
{
    const QByteArray fromServer = fromX11(screen);
    return fromServer.isEmpty() ? fromColord(output) : fromServer;
}

} // namespace ScreenProfile
