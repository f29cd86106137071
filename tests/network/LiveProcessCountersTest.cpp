#include <gtest/gtest.h>

#include <QCoreApplication>

#include "network/BandwidthMonitor.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "platform/qt/ToolNetworkSources.h"
#include "support/LiveMachine.h"

using namespace zelvar;
using namespace zelvar::test;

TEST(LiveProcessCountersTest, LoopbackTransferIsAttributedToThisProcess) {
    LoopbackConnection connection;
    ASSERT_TRUE(connection.connected());
    constexpr quint64 kRequest = 300001;
    constexpr quint64 kReply = 4567;
    ASSERT_TRUE(LoopbackConnection::sendAll(connection.client(), QByteArray(kRequest, 'x')));
    ASSERT_TRUE(LoopbackConnection::receiveAll(connection.server(), kRequest));
    ASSERT_TRUE(LoopbackConnection::sendAll(connection.server(), QByteArray(kReply, 'y')));
    ASSERT_TRUE(LoopbackConnection::receiveAll(connection.client(), kReply));

    QProcessCommandRunner runner;
    SocketStatisticsProcessNetworkSource source(runner);
    const ProcessCounterMap counters = BandwidthMonitor::readProcessCounters(source);
    const auto pid = static_cast<qint32>(QCoreApplication::applicationPid());
    const QString key = ProcessCounter::key("test_network", pid);
    ASSERT_TRUE(counters.contains(key)) << counters.keys().join(' ').toStdString();
    // Both ends are ours: each direction counts once as sent and once as received.
    EXPECT_EQ(counters[key],
              (ProcessCounter{"test_network", pid, kRequest + kReply, kRequest + kReply}));
}
