#include <gtest/gtest.h>

#include <QCoreApplication>

#include "network/BandwidthMonitor.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "platform/qt/ToolNetworkSources.h"
#include "support/LoopbackConnection.h"

using namespace zelvar;
using namespace zelvar::test;

TEST(LiveProcessCountersTest, LoopbackTransferIsAttributedToThisProcess) {
    LoopbackConnection connection;
    ASSERT_TRUE(connection.connected());
    constexpr qsizetype kRequest = 300001;
    constexpr qsizetype kReply = 4567;
    ASSERT_TRUE(LoopbackConnection::sendAll(connection.client(), QByteArray(kRequest, 'x')));
    ASSERT_TRUE(LoopbackConnection::receiveAll(connection.server(), kRequest));
    ASSERT_TRUE(LoopbackConnection::sendAll(connection.server(), QByteArray(kReply, 'y')));
    ASSERT_TRUE(LoopbackConnection::receiveAll(connection.client(), kReply));

    QProcessCommandRunner runner;
    SocketStatisticsProcessNetworkSource source(runner);
    const ProcessCounterMap counters = BandwidthMonitor::readProcessCounters(source);

    const auto pid = static_cast<qint32>(QCoreApplication::applicationPid());
    const auto mine = std::find_if(counters.begin(), counters.end(),
                                   [&](const ProcessCounter& c) { return c.pid == pid; });
    ASSERT_NE(mine, counters.end()) << "no socket of pid " << pid << " among " << counters.size();
    EXPECT_EQ(mine->name, "test_network");
    // Both ends are ours: each direction counts once as sent and once as received.
    EXPECT_EQ(mine->inBytes, static_cast<quint64>(kRequest + kReply));
    EXPECT_EQ(mine->outBytes, static_cast<quint64>(kRequest + kReply));
}
