#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "platform/linux/SysfsInterfaceCounters.h"

using namespace zelvar;

namespace {

void writeFile(const QString& path, const QByteArray& contents) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(contents);
}

}  // namespace

TEST(SysfsInterfaceCountersTest, ReadsCountersAndPhysicalDevicesFromTheTree) {
    QTemporaryDir root;
    const QString net = root.filePath("class/net");
    writeFile(net + "/eth0/statistics/rx_bytes", "18446744073709551615\n");
    writeFile(net + "/eth0/statistics/tx_bytes", "42\n");
    QDir().mkpath(net + "/eth0/device");
    writeFile(net + "/lo/statistics/rx_bytes", "7\n");
    writeFile(net + "/lo/statistics/tx_bytes", "7\n");
    writeFile(net + "/wg0/statistics/rx_bytes", "5\n");
    writeFile(net + "/wg0/statistics/tx_bytes", "6\n");
    writeFile(net + "/broken/statistics/rx_bytes", "not a number\n");
    writeFile(net + "/broken/statistics/tx_bytes", "1\n");
    writeFile(net + "/half/statistics/rx_bytes", "1\n");
    // sysfs lists interfaces as links into the device tree.
    writeFile(root.filePath("devices/wlan0/statistics/rx_bytes"), "100\n");
    writeFile(root.filePath("devices/wlan0/statistics/tx_bytes"), "200\n");
    QDir().mkpath(root.filePath("devices/wlan0/device"));
    ASSERT_TRUE(QFile::link(root.filePath("devices/wlan0"), net + "/wlan0"));

    const auto interfaces = SysfsInterfaceCounters(net).read();
    ASSERT_TRUE(interfaces.has_value());
    ASSERT_EQ(interfaces->size(), 4);
    EXPECT_EQ(interfaces->at(0).name, "eth0");
    EXPECT_EQ(interfaces->at(0).receivedBytes, 18446744073709551615ULL);
    EXPECT_EQ(interfaces->at(0).sentBytes, 42u);
    EXPECT_TRUE(interfaces->at(0).physical);
    EXPECT_EQ(interfaces->at(1).name, "lo");  // loopback is for the caller to drop
    EXPECT_FALSE(interfaces->at(1).physical);
    EXPECT_EQ(interfaces->at(2).name, "wg0");
    EXPECT_FALSE(interfaces->at(2).physical);
    EXPECT_EQ(interfaces->at(3).name, "wlan0");
    EXPECT_EQ(interfaces->at(3).sentBytes, 200u);
    EXPECT_TRUE(interfaces->at(3).physical);

    EXPECT_FALSE(SysfsInterfaceCounters(root.filePath("missing")).read().has_value());
}

TEST(SysfsInterfaceCountersTest, ThisMachineHasItsLoopback) {
    const auto interfaces = SysfsInterfaceCounters().read();
    ASSERT_TRUE(interfaces.has_value());
    EXPECT_TRUE(std::any_of(interfaces->begin(), interfaces->end(),
                            [](const InterfaceCounter& i) { return i.name == u"lo"; }));
}
