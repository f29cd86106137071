#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <linux/tcp.h>
#include <unistd.h>

#include "network/BandwidthMonitor.h"
#include "platform/linux/SockDiagProcessNetworkSource.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "platform/qt/SystemClock.h"
#include "support/FakePorts.h"
#include "support/LiveMachine.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

namespace {

// A reply's payload: the message, a congestion-control attribute, then the first
// `infoLength` bytes of `info` as INET_DIAG_INFO, whose length claims `overrun` bytes more.
QByteArray diagPayload(quint32 inode, const tcp_info& info, std::size_t infoLength,
                       std::size_t overrun = 0) {
    inet_diag_msg message{};
    message.idiag_inode = inode;
    QByteArray bytes(reinterpret_cast<const char*>(&message), sizeof message);
    const auto attribute = [&](unsigned short type, const void* data, std::size_t length,
                               std::size_t claimed) {
        const rtattr header{static_cast<unsigned short>(RTA_LENGTH(claimed)), type};
        bytes.append(reinterpret_cast<const char*>(&header), sizeof header);
        bytes.append(static_cast<const char*>(data), static_cast<qsizetype>(length));
        bytes.append(QByteArray(RTA_ALIGN(length) - length, '\0'));
    };
    attribute(INET_DIAG_CONG, "bbr", 4, 4);
    if (infoLength > 0) {
        attribute(INET_DIAG_INFO, &info, infoLength, infoLength + overrun);
    }
    return bytes;
}

// "pid name" of each owner.
QStringList ownersText(const QList<SocketOwner>& owners) {
    QStringList text;
    for (const SocketOwner& owner : owners) {
        text << QString::number(owner.pid) + ' ' + owner.name;
    }
    text.sort();  // the rule picks among them; their order says nothing
    return text;
}

}  // namespace

TEST(TcpSocketDiagnosticsTest, ReadsEachCounterOnlyWhereTheKernelsInfoHoldsIt) {
    tcp_info info{};
    info.tcpi_bytes_received = 2000;
    info.tcpi_bytes_acked = 101;
    info.tcpi_bytes_sent = 100;
    tcp_info idle{};
    idle.tcpi_bytes_acked = 1;  // the SYN
    const std::size_t sentAt = offsetof(tcp_info, tcpi_bytes_sent);
    const std::size_t receivedAt = offsetof(tcp_info, tcpi_bytes_received);
    const struct {
        QByteArray payload;
        std::optional<TcpSocketDiagnostic> expected;
    } cases[] = {
        {diagPayload(7, info, sizeof info), TcpSocketDiagnostic{7, 2000, 100}},
        // Kernels before 4.19 have no bytes_sent; a field cut short isn't read either.
        {diagPayload(7, info, sentAt), TcpSocketDiagnostic{7, 2000, 101}},
        {diagPayload(7, info, sentAt + 4), TcpSocketDiagnostic{7, 2000, 101}},
        {diagPayload(7, info, receivedAt + 7), TcpSocketDiagnostic{7, 0, 101}},
        {diagPayload(7, idle, sizeof idle), TcpSocketDiagnostic{7, 0, 1}},
        {diagPayload(7, info, 0), TcpSocketDiagnostic{7, 0, 0}},
        {diagPayload(7, info, sizeof info, 1), TcpSocketDiagnostic{7, 0, 0}},  // overruns
        {diagPayload(7, info, 0).left(sizeof(inet_diag_msg) - 1), std::nullopt},
    };
    for (const auto& [payload, expected] : cases) {
        EXPECT_EQ(TcpSocketDiagnostics::decode(payload.constData(), payload.size()), expected)
            << payload.size();
    }
}

TEST(SocketInodeOwnersTest, FollowsProcessesAsTheyComeAndGoAndReadsEverythingEveryThirtySeconds) {
    QTemporaryDir root;
    const auto link = [&](int pid, int fd, const QByteArray& target) {
        ASSERT_EQ(::symlink(target,
                            QFile::encodeName(root.filePath(QString("%1/fd/%2").arg(pid).arg(fd)))),
                  0);
    };
    const auto process = [&](int pid, const QByteArray& name, QMap<int, QByteArray> links,
                             const QByteArray& state = "S") {
        const QString dir = root.filePath(QString::number(pid));
        QDir().mkpath(dir + "/fd");
        QFile stat(dir + "/stat");
        ASSERT_TRUE(stat.open(QIODevice::WriteOnly) &&
                    stat.write(QByteArray::number(pid) + " (" + name + ") " + state + " 1 1 1 0") >
                        0);
        for (auto it = links.begin(); it != links.end(); ++it) {
            link(pid, it.key(), it.value());
        }
    };
    process(10, "firefox", {{0, "/dev/null"}, {3, "socket:[100]"}, {4, "socket:[101]"}});
    process(20, "fork)ed", {{3, "socket:[100]"}, {5, "socket:[102]"}, {6, "socket:[102]"}});
    QDir().mkpath(root.filePath("30"));  // another user's: no readable descriptors
    QDir().mkpath(root.filePath("self/fd"));

    FakeClock clock;
    const QDateTime start = clock.now();
    SocketInodeOwners owners(clock, root.path());
    QStringList seen;
    const auto sample = [&](double seconds, const QList<quint64>& inodes) {
        clock.setNow(start.addMSecs(std::llround(seconds * 1000)));
        owners.update(inodes);
        QStringList line;
        for (const quint64 inode : inodes) {
            line << QString::number(inode) + ": " + ownersText(owners.ownersOf(inode)).join(", ");
        }
        seen << line.join(" | ");
    };
    sample(0, {100, 101, 102, 103});
    process(40, "curl", {{3, "socket:[103]"}});
    process(50, "idle", {{0, "/dev/null"}});
    sample(2, {100, 101, 102, 103});
    QFile::remove(root.filePath("10/fd/3"));  // of a shared socket, each holder is checked
    sample(4, {100, 101, 102, 103});
    process(40, "curl", {}, "Z");  // exited, not yet reaped
    // Sockets not known yet: the processes are read again, whether they hold a known one or not.
    link(10, 7, "socket:[104]");
    link(50, 5, "socket:[105]");
    sample(6, {100, 101, 102, 103, 104, 105});
    QDir(root.filePath("20")).removeRecursively();
    sample(8, {100, 101, 102});
    // Passed on by its only holder: seen at the next full read, 30 s after the last.
    QFile::remove(root.filePath("10/fd/4"));
    link(50, 4, "socket:[101]");
    sample(29.9, {101});
    sample(30, {101});
    EXPECT_EQ(seen,
              (QStringList{"100: 10 firefox, 20 fork | 101: 10 firefox | 102: 20 fork | 103: ",
                           "100: 10 firefox, 20 fork | 101: 10 firefox | 102: 20 fork | "
                           "103: 40 curl",
                           "100: 20 fork | 101: 10 firefox | 102: 20 fork | 103: 40 curl",
                           "100: 20 fork | 101: 10 firefox | 102: 20 fork | 103:  | "
                           "104: 10 firefox | 105: 50 idle",
                           "100:  | 101: 10 firefox | 102: ", "101: 10 firefox", "101: 50 idle"}));
}

TEST(SockDiagProcessNetworkSourceTest, RunsSsWhereNetlinkIsRefusedAndLogsItOnce) {
    FakeCommandRunner runner;
    runner.respond(
        "/bin/ss -tinpH",
        "ESTAB 0 0 a:1 b:2 users:((\"ssh\",pid=9,fd=3))\n\t bytes_sent:5 bytes_received:6");
    FakeClock clock;
    SockDiagProcessNetworkSource source(runner, clock, "/nonexistent", [](int& error) {
        error = EPERM;
        return std::optional<QList<TcpSocketDiagnostic>>();
    });
    LogCapture log;
    EXPECT_EQ(BandwidthMonitor::readProcessCounters(source),
              (ProcessCounterMap{{"ssh.9", {"ssh", 9, 6, 5}}}));
    BandwidthMonitor::readProcessCounters(source);
    EXPECT_EQ(runner.requests().size(), 2);
    EXPECT_EQ(log.lines(), QStringList("[BandwidthMonitor] Socket diagnostics over netlink refused "
                                       "(Operation not permitted); reading `ss -tinpH` instead"));
}

TEST(SockDiagProcessNetworkSourceLiveTest, GivesThisProcessTheSameCountersAsSs) {
    std::array<LoopbackConnection, 3> connections;
    quint64 moved = 0;
    for (std::size_t i = 0; i < connections.size(); ++i) {
        const LoopbackConnection& c = connections[i];
        const QByteArray up(100000 * (i + 1), 'u');
        const QByteArray down(7000 * (i + 1), 'd');
        ASSERT_TRUE(c.connected() && LoopbackConnection::sendAll(c.client(), up) &&
                    LoopbackConnection::receiveAll(c.server(), up.size()) &&
                    LoopbackConnection::sendAll(c.server(), down) &&
                    LoopbackConnection::receiveAll(c.client(), down.size()));
        moved += up.size() + down.size();
    }
    SystemClock clock;
    QProcessCommandRunner runner;
    SockDiagProcessNetworkSource netlink(runner, clock);
    SocketStatisticsProcessNetworkSource ss(runner);
    ASSERT_EQ(netlink.read().grammar, ProcessNetworkReading::Grammar::SocketRecords);
    const auto mine = [](const ProcessCounterMap& counters) {
        QList<ProcessCounter> own;
        for (const ProcessCounter& counter : counters) {
            if (counter.pid == ::getpid()) {
                own << counter;
            }
        }
        return own;
    };
    const QList<ProcessCounter> fromNetlink = mine(BandwidthMonitor::readProcessCounters(netlink));
    EXPECT_EQ(fromNetlink, mine(BandwidthMonitor::readProcessCounters(ss)));
    ASSERT_EQ(fromNetlink.size(), 1);
    // Both ends are ours: each byte was sent once and received once.
    EXPECT_GE(fromNetlink[0].inBytes, moved);
    EXPECT_GE(fromNetlink[0].outBytes, moved);
}
