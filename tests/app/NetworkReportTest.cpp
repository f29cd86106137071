#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "app/SystemServices.h"
#include "app/report/NetworkReport.h"
#include "network/BandwidthMonitor.h"
#include "support/LiveMachine.h"
#include "support/LogCapture.h"

using namespace zelvar;

TEST(NetworkReportTest, TextAndJsonShowRatesTotalsTableAndDailyUsage) {
    NetworkReport::Snapshot s;
    s.networkName = "Office";
    s.downloadBytesPerSecond = 1500.0;
    s.receivedBytes = 9000;
    s.wifiBytes = 1200000000;
    s.wifiLimitBytes = 1000000000;
    s.remainingWifiBytes = -200000000;
    s.processes = {{"curl.42", "curl", 42, 1500.0, 20.0, 3040, 0}};
    s.date = "2026-11-22";
    s.dailyUsage = {{"firefox", 5000, 250}};

    const QString text = NetworkReport::formatText(s);
    EXPECT_TRUE(text.contains("Network:   Office\nDownload:  1.50KB/s\n"));
    EXPECT_TRUE(text.contains("Received:  9.00KB (9000 bytes since start)\n"));
    EXPECT_TRUE(text.contains("Wi-Fi:     1.20GB of 1.00GB, -200MB left\n"));
    EXPECT_TRUE(text.contains("     42   1.50KB/s      20B/s   3.04KB  curl\n"));
    EXPECT_FALSE(text.contains("(none yet"));
    EXPECT_TRUE(text.contains("Daily usage 2026-11-22\n"));
    EXPECT_TRUE(text.contains("    5.00KB       250B     5.25KB  firefox\n"));

    const QJsonObject root = QJsonDocument::fromJson(NetworkReport::formatJson(s)).object();
    EXPECT_EQ(root["network_name"].toString(), "Office");
    EXPECT_EQ(root["download_bytes_per_second"].toDouble(), 1500.0);
    EXPECT_EQ(root["remaining_wifi_bytes"].toDouble(), -200000000.0);
    const QJsonObject process = root["processes"].toArray().first().toObject();
    EXPECT_EQ(process["pid"].toInt(), 42);
    EXPECT_EQ(process["observed_bytes"].toDouble(), 3040.0);
    EXPECT_EQ(root["daily_usage"][0]["sent_bytes"].toDouble(), 250.0);
}

// The real bandwidth monitor for two seconds, with a loopback transfer of this process after
// each sample: it shows in the table from the second sample on.
TEST(NetworkReportLiveTest, SampleListsThisProcessWhileItTransfers) {
    test::LogCapture quiet;
    test::LoopbackConnection connection;
    ASSERT_TRUE(connection.connected());
    SystemServices services;
    Monitors monitors(services.ports(), Monitors::Mode::Headless, Monitors::Part::Bandwidth);
    QObject::connect(monitors.bandwidthMonitor(), &BandwidthMonitor::sampleFinished, [&] {
        const QByteArray data(65536, 'x');
        ASSERT_TRUE(test::LoopbackConnection::sendAll(connection.client(), data) &&
                    test::LoopbackConnection::receiveAll(connection.server(), data.size()));
    });
    const NetworkReport::Snapshot snapshot = NetworkReport::sample(monitors, 2.0);
    EXPECT_GE(snapshot.seconds, 2.0);
    EXPECT_EQ(snapshot.samples, 2);
    EXPECT_FALSE(snapshot.networkName.isEmpty());
    const auto pid = static_cast<qint32>(QCoreApplication::applicationPid());
    const auto mine = std::find_if(snapshot.processes.begin(), snapshot.processes.end(),
                                   [&](const ProcessUsage& p) { return p.pid == pid; });
    ASSERT_NE(mine, snapshot.processes.end());
    EXPECT_GT(mine->downloadBytesPerSecond, 0.0);
    EXPECT_GT(mine->uploadBytesPerSecond, 0.0);
    EXPECT_GT(mine->observedBytes, 0u);
}
