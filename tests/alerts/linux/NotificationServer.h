#pragma once

#include <QDBusConnection>
#include <QVariantMap>

namespace zelvar::test {

// Takes org.freedesktop.Notifications on a bus and keeps every notification it receives.
class NotificationServer final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Received {
        QString appName, summary, body;
        QVariantMap hints;
    };

    explicit NotificationServer(QDBusConnection connection) : m_connection(std::move(connection)) {}

    bool registerOnBus() {
        return m_connection.registerObject(QStringLiteral("/org/freedesktop/Notifications"), this,
                                           QDBusConnection::ExportAllSlots) &&
               m_connection.registerService(QStringLiteral("org.freedesktop.Notifications"));
    }

    const QList<Received>& received() const { return m_received; }

signals:
    void notified(const zelvar::test::NotificationServer::Received& notification);

public slots:
    uint Notify(const QString& appName, uint /*replacesId*/, const QString& /*appIcon*/,
                const QString& summary, const QString& body, const QStringList& /*actions*/,
                const QVariantMap& hints, int /*expireTimeout*/) {
        m_received.append({appName, summary, body, hints});
        emit notified(m_received.last());
        return static_cast<uint>(m_received.size());
    }
    QString GetServerInformation(QString& vendor, QString& version, QString& specVersion) {
        std::tie(vendor, version, specVersion) = std::tuple("zelvar-tests", "1", "1.2");
        return QStringLiteral("test-notification-server");
    }

private:
    QDBusConnection m_connection;
    QList<Received> m_received;
};

}  // namespace zelvar::test
