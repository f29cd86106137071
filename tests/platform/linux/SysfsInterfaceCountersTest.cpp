#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "platform/linux/SysfsInterfaceCounters.h"

using namespace zelvar;

TEST(SysfsInterfaceCountersTest, ReadsCountersAndPhysicalDevicesFromTheTree) {
    QTemporaryDir root;
    const QString net = root.filePath("class/net");
    const auto write = [](const QString& path, const QByteArray& text) {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(text + '\n') > 0;
    };
    // Received and sent bytes; "half" has no sent bytes. sysfs lists interfaces as links into
    // the device tree, as wlan0 here; the physical ones have a device behind them.
    const std::tuple<QString, QByteArray, QByteArray> counters[] = {
        {net + "/eth0", "18446744073709551615", "42"},
        {net + "/lo", "7", "7"},
        {net + "/wg0", "5", "6"},
        {net + "/broken", "not a number", "1"},
        {net + "/half", "1", ""},
        {root.filePath("devices/wlan0"), "100", "200"}};
    for (const auto& [dir, received, sent] : counters) {
        ASSERT_TRUE(write(dir + "/statistics/rx_bytes", received));
        ASSERT_TRUE(sent.isEmpty() || write(dir + "/statistics/tx_bytes", sent));
    }
    ASSERT_TRUE(QDir().mkpath(net + "/eth0/device") &&
                QDir().mkpath(root.filePath("devices/wlan0/device")));
    ASSERT_TRUE(QFile::link(root.filePath("devices/wlan0"), net + "/wlan0"));

    using Counter = std::tuple<QString, quint64, quint64, bool>;
    std::vector<Counter> read;
    const auto interfaces = SysfsInterfaceCounters(net).read();
    ASSERT_TRUE(interfaces.has_value());
    for (const InterfaceCounter& i : *interfaces) {
        read.push_back({i.name, i.receivedBytes, i.sentBytes, i.physical});
    }
    // Loopback is for the caller to drop.
    EXPECT_EQ(read, (std::vector<Counter>{{"eth0", 18446744073709551615ULL, 42, true},
                                          {"lo", 7, 7, false},
                                          {"wg0", 5, 6, false},
                                          {"wlan0", 100, 200, true}}));
    EXPECT_FALSE(SysfsInterfaceCounters(root.filePath("missing")).read().has_value());
}

TEST(SysfsInterfaceCountersLive, ThisMachineHasItsLoopback) {
    const auto interfaces = SysfsInterfaceCounters().read();
    ASSERT_TRUE(interfaces.has_value());
    EXPECT_TRUE(std::any_of(interfaces->begin(), interfaces->end(),
                            [](const InterfaceCounter& i) { return i.name == u"lo"; }));
}
