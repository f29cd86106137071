#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <future>

#include "platform/linux/NetworkManagerNameSource.h"
#include "support/EventLoop.h"
#include "support/SessionBus.h"

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

}  // namespace

TEST(NetworkManagerNameSourceLive, NamesThePrimaryConnection) {
    SessionBus bus;
    ASSERT_TRUE(bus.started());
    QDBusConnection server = bus.connect("nm-server");
    FakeManager manager;
    FakeActiveConnection active;
    ASSERT_TRUE(server.registerObject("/org/freedesktop/NetworkManager", &manager,
                                      QDBusConnection::ExportAllProperties));
    ASSERT_TRUE(server.registerObject("/org/freedesktop/NetworkManager/ActiveConnection/4", &active,
                                      QDBusConnection::ExportAllProperties));
    NetworkManagerNameSource source(bus.connect("nm-client"));
    // Reads on another thread while this one serves the fake's replies.
    const auto readName = [&] {
        auto reading = std::async(std::launch::async, [&] { return source.read(); });
        EXPECT_TRUE(processEventsUntil([&] {
            return reading.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        }));
        const NetworkNameReading result = reading.get();
        EXPECT_EQ(result.form, NetworkNameReading::Form::ConnectionName);
        return result.text;
    };

    EXPECT_EQ(readName(), "");  // NetworkManager isn't on this bus yet
    ASSERT_TRUE(server.registerService("org.freedesktop.NetworkManager"));
    EXPECT_EQ(readName(), "");  // no primary connection: "/"
    manager.primary = "/org/freedesktop/NetworkManager/ActiveConnection/4";
    EXPECT_EQ(readName(), "Home Wi-Fi");
    manager.primary = "/org/freedesktop/NetworkManager/ActiveConnection/5";
    EXPECT_EQ(readName(), "");  // gone between the two reads
}

#include "NetworkManagerNameSourceTest.moc"
