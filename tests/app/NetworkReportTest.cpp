#include <QCoreApplication>

#include "app/SystemServices.h"
#include "app/report/NetworkReport.h"
#include "network/BandwidthMonitor.h"
#include "support/LiveMachine.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

TEST(NetworkReportTest, TextAndJsonShowRatesTotalsTableAndDailyUsage) {
    const QList<ProcessUsage> curl{{"curl.42", "curl", 42, 1500.0, 20.0, 3040, 0}};
    const QList<CachedAppUsage> daily{{"firefox", 5000, 250}};
    const NetworkReport::Snapshot s{2.0,  1,          "Office",   1500.0,     20.0, 9000,
                                    0,    1200000000, 1000000000, -200000000, curl, "2026-11-22",
                                    daily};
    EXPECT_EQ(NetworkReport::formatText(s).toStdString(), R"(Sampled 2.0 s in 1 samples
Network:   Office
Download:  1.50KB/s
Upload:    20B/s
Received:  9.00KB (9000 bytes since start)
Sent:      0B (0 bytes since start)
Wi-Fi:     1.20GB of 1.00GB, -200MB left

Processes (TCP)
    PID       DOWN         UP     SEEN  NAME
     42   1.50KB/s      20B/s   3.04KB  curl

Daily usage 2026-11-22
  RECEIVED       SENT      TOTAL  NAME
    5.00KB       250B     5.25KB  firefox
)");
    EXPECT_EQ(QJsonDocument::fromJson(NetworkReport::formatJson(s))
                  .toJson(QJsonDocument::Compact)
                  .toStdString(),
              R"({"daily_usage":[{"name":"firefox","received_bytes":5000,"sent_bytes":250}],)"
              R"("date":"2026-11-22","download_bytes_per_second":1500,"network_name":"Office",)"
              R"("processes":[{"download_bytes_per_second":1500,"id":"curl.42","name":"curl",)"
              R"("observed_bytes":3040,"pid":42,"upload_bytes_per_second":20}],)"
              R"("received_bytes":9000,"remaining_wifi_bytes":-200000000,"samples":1,)"
              R"("seconds":2,"sent_bytes":0,"upload_bytes_per_second":20,)"
              R"("wifi_bytes":1200000000,"wifi_limit_bytes":1000000000})");
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
    EXPECT_TRUE(mine->downloadBytesPerSecond > 0 && mine->uploadBytesPerSecond > 0 &&
                mine->observedBytes > 0);
}
