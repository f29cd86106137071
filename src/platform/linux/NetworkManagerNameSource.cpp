#include "platform/linux/NetworkManagerNameSource.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>

namespace zelvar {
namespace {

const QString kService = QStringLiteral("org.freedesktop.NetworkManager");
constexpr int kTimeoutMs = 2000;

// One property through org.freedesktop.DBus.Properties.Get; an invalid value on any failure.
QVariant property(const QDBusConnection& bus, const QString& path, const QString& interface,
                  const QString& name) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        kService, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << interface << name;
    const QDBusMessage reply = bus.call(call, QDBus::Block, kTimeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        return {};
    }
    return qvariant_cast<QDBusVariant>(reply.arguments().constFirst()).variant();
}

}  // namespace

NetworkNameReading NetworkManagerNameSource::read() {
    NetworkNameReading reading{NetworkNameReading::Form::ConnectionName, {}};
    if (!m_bus.isConnected()) {
        return reading;
    }
    const QVariant primary = property(m_bus, QStringLiteral("/org/freedesktop/NetworkManager"),
                                      kService, QStringLiteral("PrimaryConnection"));
    const QString path = qvariant_cast<QDBusObjectPath>(primary).path();
    if (path.isEmpty() || path == u"/") {
        return reading;  // not connected
    }
    reading.text =
        property(m_bus, path, kService + QStringLiteral(".Connection.Active"), QStringLiteral("Id"))
            .toString();
    return reading;
}

}  // namespace zelvar
