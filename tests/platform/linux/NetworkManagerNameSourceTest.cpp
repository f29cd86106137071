#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QProcess>
#include <future>

#include "platform/linux/NetworkManagerNameSource.h"
#include "support/EventLoop.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

// The two properties of NetworkManager that the source reads, served on a private bus.
class FakeManager final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.NetworkManager")
    Q_PROPERTY(QDBusObjectPath PrimaryConnection READ primaryConnection)
public:
    QDBusObjectPath primaryConnection() const { return QDBusObjectPath(primary); }
    QString primary = "/";
};

class FakeActiveConnection final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.NetworkManager.Connection.Active")
    Q_PROPERTY(QString Id READ id)
public:
    QString id() const { return QStringLiteral("Home Wi-Fi"); }
};

class NetworkManagerNameSourceTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
        ASSERT_TRUE(m_daemon.waitForReadyRead(5000));
        const QString address = QString::fromUtf8(m_daemon.readLine()).trimmed();
        m_server = QDBusConnection::connectToBus(address, "nm-server");
        m_client = QDBusConnection::connectToBus(address, "nm-client");
        ASSERT_TRUE(m_server.isConnected());
        ASSERT_TRUE(m_server.registerObject("/org/freedesktop/NetworkManager", &m_manager,
                                            QDBusConnection::ExportAllProperties));
        ASSERT_TRUE(m_server.registerObject("/org/freedesktop/NetworkManager/ActiveConnection/4",
                                            &m_active, QDBusConnection::ExportAllProperties));
    }
    void TearDown() override {
        QDBusConnection::disconnectFromBus("nm-server");
        QDBusConnection::disconnectFromBus("nm-client");
        m_daemon.kill();
        m_daemon.waitForFinished(5000);
    }
    // Reads on another thread while this one serves the fake's replies.
    QString readName() {
        NetworkManagerNameSource source(m_client);
        auto reading = std::async(std::launch::async, [&] { return source.read(); });
        EXPECT_TRUE(processEventsUntil([&] {
            return reading.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        }));
        const NetworkNameReading result = reading.get();
        EXPECT_EQ(result.form, NetworkNameReading::Form::ConnectionName);
        return result.text;
    }

    QProcess m_daemon;
    QDBusConnection m_server{QString()};
    QDBusConnection m_client{QString()};
    FakeManager m_manager;
    FakeActiveConnection m_active;
};

}  // namespace

TEST_F(NetworkManagerNameSourceTest, NamesThePrimaryConnection) {
    EXPECT_EQ(readName(), "");  // NetworkManager isn't on this bus yet
    ASSERT_TRUE(m_server.registerService("org.freedesktop.NetworkManager"));
    EXPECT_EQ(readName(), "");  // no primary connection: "/"
    m_manager.primary = "/org/freedesktop/NetworkManager/ActiveConnection/4";
    EXPECT_EQ(readName(), "Home Wi-Fi");
    m_manager.primary = "/org/freedesktop/NetworkManager/ActiveConnection/5";
    EXPECT_EQ(readName(), "");  // gone between the two reads
}

#include "NetworkManagerNameSourceTest.moc"
