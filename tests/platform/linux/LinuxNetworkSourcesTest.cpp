#include <QDBusConnection>
#include <QDBusObjectPath>
#include <future>

#include "platform/linux/NetworkManagerNameSource.h"
#include "platform/linux/SysfsInterfaceCounters.h"
#include "support/EventLoop.h"
#include "support/SessionBus.h"
#include "support/Testing.h"

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

TEST(SysfsInterfaceCountersTest, ReadsCountersAndPhysicalDevicesFromTheTree) {
    QTemporaryDir root;
    const QString net = root.filePath("class/net");
    const auto write = [](const QString& path, const QByteArray& text) {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(text + '\n') > 0;
    };
    // sysfs lists interfaces as links into the device tree, as wlan0; physical ones have a device.
    const std::tuple<QString, QByteArray, QByteArray> counters[] = {
        {net + "/eth0", "18446744073709551615", "42"},
        {net + "/lo", "7", "7"},
        {net + "/broken", "not a number", "1"},
        {net + "/half", "1", ""},
        {root.filePath("devices/wlan0"), "100", "200"}};
    for (const auto& [dir, received, sent] : counters) {
        ASSERT_TRUE(write(dir + "/statistics/rx_bytes", received) &&
                    (sent.isEmpty() || write(dir + "/statistics/tx_bytes", sent)));
    }
    ASSERT_TRUE(QDir().mkpath(net + "/eth0/device") &&
                QDir().mkpath(root.filePath("devices/wlan0/device")) &&
                QFile::link(root.filePath("devices/wlan0"), net + "/wlan0"));

    using Counter = std::tuple<QString, quint64, quint64, bool>;
    std::vector<Counter> read;
    for (const InterfaceCounter& i :
         SysfsInterfaceCounters(net).read().value_or(QList<InterfaceCounter>{})) {
        read.push_back({i.name, i.receivedBytes, i.sentBytes, i.physical});
    }
    // Loopback is for the caller to drop.
    EXPECT_EQ(read, (std::vector<Counter>{{"eth0", 18446744073709551615ULL, 42, true},
                                          {"lo", 7, 7, false},
                                          {"wlan0", 100, 200, true}}));
    EXPECT_FALSE(SysfsInterfaceCounters(root.filePath("missing")).read().has_value());
}

TEST(SysfsInterfaceCountersLive, ThisMachineHasItsLoopback) {
    const auto interfaces = SysfsInterfaceCounters().read().value_or(QList<InterfaceCounter>{});
    EXPECT_TRUE(std::any_of(interfaces.begin(), interfaces.end(),
                            [](const InterfaceCounter& i) { return i.name == u"lo"; }));
}

TEST(NetworkManagerNameSourceLive, NamesThePrimaryConnection) {
    SessionBus bus;
    ASSERT_TRUE(bus.started());
    QDBusConnection server = bus.connect("nm-server");
    FakeManager manager;
    FakeActiveConnection active;
    ASSERT_TRUE(server.registerObject("/org/freedesktop/NetworkManager", &manager,
                                      QDBusConnection::ExportAllProperties) &&
                server.registerObject("/org/freedesktop/NetworkManager/ActiveConnection/4", &active,
                                      QDBusConnection::ExportAllProperties));
    NetworkManagerNameSource source(bus.connect("nm-client"));
    QStringList names;
    // Reads on another thread while this one serves the fake's replies.
    const auto readName = [&] {
        auto reading = std::async(std::launch::async, [&] { return source.read(); });
        EXPECT_TRUE(processEventsUntil([&] {
            return reading.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        }));
        const NetworkNameReading result = reading.get();
        names << (result.form == NetworkNameReading::Form::ConnectionName ? result.text : "?");
    };

    readName();  // NetworkManager isn't on this bus yet
    ASSERT_TRUE(server.registerService("org.freedesktop.NetworkManager"));
    readName();  // no primary connection: "/"
    manager.primary = "/org/freedesktop/NetworkManager/ActiveConnection/4";
    readName();
    manager.primary = "/org/freedesktop/NetworkManager/ActiveConnection/5";
    readName();  // gone between the two reads
    EXPECT_EQ(names, (QStringList{"", "", "Home Wi-Fi", ""}));
}

#include "LinuxNetworkSourcesTest.moc"
