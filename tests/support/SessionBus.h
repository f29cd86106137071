#pragma once

#include <QDBusConnection>
#include <QProcess>

namespace zelvar::test {

// A private D-Bus session bus for one test: its own dbus-daemon, stopped with this object.
class SessionBus {
public:
    SessionBus() {
        m_daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
        if (m_daemon.waitForStarted(5000) && m_daemon.waitForReadyRead(5000)) {
            m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
        }
    }
    ~SessionBus() {
        for (const QString& name : m_connections) {
            QDBusConnection::disconnectFromBus(name);
        }
        m_daemon.terminate();
        m_daemon.waitForFinished(5000);
    }

    bool started() const { return !m_address.isEmpty(); }

    // A new connection to this bus under `name`, closed with the bus.
    QDBusConnection connect(const QString& name) {
        m_connections << name;
        return QDBusConnection::connectToBus(m_address, name);
    }

private:
    QProcess m_daemon;
    QString m_address;
    QStringList m_connections;
};

}  // namespace zelvar::test
