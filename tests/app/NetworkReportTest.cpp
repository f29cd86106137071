#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <atomic>
#include <thread>

#include "app/SystemServices.h"
#include "app/report/NetworkReport.h"
#include "support/LogCapture.h"
#include "support/LoopbackConnection.h"

using namespace zelvar;

namespace {

NetworkReport::Snapshot example() {
    NetworkReport::Snapshot s;
    s.seconds = 6.04;
    s.samples = 4;
    s.networkName = "Office";
    s.downloadBytesPerSecond = 1500.0;
    s.uploadBytesPerSecond = 20.0;
    s.receivedBytes = 9000;
    s.sentBytes = 120;
    s.wifiBytes = 1200000000;
    s.wifiLimitBytes = 1000000000;
    s.remainingWifiBytes = -200000000;
    s.processes = {{"curl.42", "curl", 42, 1500.0, 20.0, 3040, 0}};
    s.date = "2026-11-22";
    s.dailyUsage = {{"firefox", 5000, 250}};
    return s;
}

// A loopback connection of this process that keeps moving data until destroyed.
class LoopbackTraffic {
public:
    LoopbackTraffic() {
        m_thread = std::thread([this] {
            char buffer[65536] = {};
            while (!m_stop) {
                if (::send(m_connection.client(), buffer, sizeof buffer, 0) <= 0 ||
                    ::recv(m_connection.server(), buffer, sizeof buffer, MSG_WAITALL) <= 0) {
                    return;
                }
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
        });
    }
    ~LoopbackTraffic() {
        m_stop = true;
        m_thread.join();
    }
    bool connected() const { return m_connection.connected(); }

private:
    test::LoopbackConnection m_connection;
    std::atomic<bool> m_stop = false;
    std::thread m_thread;
};

}  // namespace

TEST(NetworkReportTest, TextShowsRatesTotalsTableAndDailyUsage) {
    const QString text = NetworkReport::formatText(example());
    EXPECT_TRUE(text.contains("Network:   Office\n"));
    EXPECT_TRUE(text.contains("Download:  1.50KB/s\n"));
    EXPECT_TRUE(text.contains("Received:  9.00KB (9000 bytes since start)\n"));
    EXPECT_TRUE(text.contains("Wi-Fi:     1.20GB of 1.00GB, -200MB left\n"));
    EXPECT_TRUE(text.contains("     42   1.50KB/s      20B/s   3.04KB  curl\n"));
    EXPECT_TRUE(text.contains("Daily usage 2026-11-22\n"));
    EXPECT_TRUE(text.contains("    5.00KB       250B     5.25KB  firefox\n"));
    EXPECT_FALSE(text.contains("(none yet"));
}

TEST(NetworkReportTest, JsonCarriesTheRawFigures) {
    const QJsonObject root = QJsonDocument::fromJson(NetworkReport::formatJson(example())).object();
    EXPECT_EQ(root["network_name"].toString(), "Office");
    EXPECT_EQ(root["download_bytes_per_second"].toDouble(), 1500.0);
    EXPECT_EQ(root["remaining_wifi_bytes"].toDouble(), -200000000.0);
    const QJsonObject process = root["processes"].toArray().first().toObject();
    EXPECT_EQ(process["pid"].toInt(), 42);
    EXPECT_EQ(process["observed_bytes"].toDouble(), 3040.0);
    EXPECT_EQ(root["daily_usage"].toArray().first().toObject()["sent_bytes"].toDouble(), 250.0);
}

TEST(NetworkReportLiveTest, SampleListsThisProcessWhileItTransfers) {
    test::LogCapture quiet;
    LoopbackTraffic traffic;
    ASSERT_TRUE(traffic.connected());
    SystemServices services;
    Monitors monitors(services.ports(), Monitors::Mode::Headless, Monitors::Part::Bandwidth);
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
