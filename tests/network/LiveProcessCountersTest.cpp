#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>

#include "network/BandwidthMonitor.h"
#include "platform/QProcessCommandRunner.h"
#include "platform/ToolNetworkSources.h"

using namespace zelvar;

namespace {

// A file descriptor closed on scope exit.
struct Socket {
    int fd = -1;
    explicit Socket(int f) : fd(f) {}
    ~Socket() {
        if (fd >= 0) {
            ::close(fd);
        }
    }
};

bool sendAll(int fd, const QByteArray& data) {
    qsizetype sent = 0;
    while (sent < data.size()) {
        const ssize_t n = ::send(fd, data.constData() + sent, data.size() - sent, 0);
        if (n <= 0) {
            return false;
        }
        sent += n;
    }
    return true;
}

bool receiveAll(int fd, qsizetype size) {
    char buffer[65536];
    qsizetype received = 0;
    while (received < size) {
        const ssize_t n = ::recv(fd, buffer, sizeof buffer, 0);
        if (n <= 0) {
            return false;
        }
        received += n;
    }
    return true;
}

}  // namespace

TEST(LiveProcessCountersTest, LoopbackTransferIsAttributedToThisProcess) {
    Socket listener(::socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ASSERT_EQ(::bind(listener.fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(listener.fd, 1), 0);
    ASSERT_EQ(::getsockname(listener.fd, reinterpret_cast<sockaddr*>(&address), &length), 0);
    Socket client(::socket(AF_INET, SOCK_STREAM, 0));
    ASSERT_EQ(::connect(client.fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    Socket server(::accept(listener.fd, nullptr, nullptr));
    ASSERT_GE(server.fd, 0);

    constexpr qsizetype kRequest = 300001;
    constexpr qsizetype kReply = 4567;
    ASSERT_TRUE(sendAll(client.fd, QByteArray(kRequest, 'x')));
    ASSERT_TRUE(receiveAll(server.fd, kRequest));
    ASSERT_TRUE(sendAll(server.fd, QByteArray(kReply, 'y')));
    ASSERT_TRUE(receiveAll(client.fd, kReply));

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
