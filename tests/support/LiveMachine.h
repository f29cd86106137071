#pragma once

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QByteArray>
#include <QProcess>
#include <QStringList>

namespace zelvar::test {

// The test child (see TestChild.cpp), started in a mode and waited for until it is ready.
// Killed when this object goes.
class ChildProcess {
public:
    explicit ChildProcess(const QStringList& arguments) {
        m_process.start(QStringLiteral(ZELVAR_TEST_CHILD), arguments);
        m_ready = m_process.waitForStarted(5000) && m_process.waitForReadyRead(10000) &&
                  m_process.readLine().startsWith("ready");
    }
    ~ChildProcess() {
        m_process.kill();
        m_process.waitForFinished(5000);
    }

    bool ready() const { return m_ready; }
    qint32 pid() const { return static_cast<qint32>(m_process.processId()); }
    QProcess& process() { return m_process; }

private:
    QProcess m_process;
    bool m_ready = false;
};

// A TCP connection of this process to itself over 127.0.0.1: both ends are ours. Every
// descriptor is closed on destruction.
class LoopbackConnection {
public:
    LoopbackConnection() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        auto* any = reinterpret_cast<sockaddr*>(&address);
        socklen_t length = sizeof address;
        if (::bind(m_listener, any, length) == 0 && ::listen(m_listener, 1) == 0 &&
            ::getsockname(m_listener, any, &length) == 0 && ::connect(m_client, any, length) == 0) {
            m_server = ::accept(m_listener, nullptr, nullptr);
        }
    }
    ~LoopbackConnection() {
        for (const int fd : {m_client, m_server, m_listener}) {
            ::close(fd);
        }
    }
    LoopbackConnection(const LoopbackConnection&) = delete;
    LoopbackConnection& operator=(const LoopbackConnection&) = delete;

    bool connected() const { return m_server >= 0; }
    int client() const { return m_client; }
    int server() const { return m_server; }

    static bool sendAll(int fd, const QByteArray& data) {
        for (qsizetype sent = 0, n = 0; sent < data.size(); sent += n) {
            if ((n = ::send(fd, data.constData() + sent, data.size() - sent, 0)) <= 0) {
                return false;
            }
        }
        return true;
    }
    static bool receiveAll(int fd, qsizetype size) {
        char buffer[65536];
        for (qsizetype received = 0, n = 0; received < size; received += n) {
            if ((n = ::recv(fd, buffer, sizeof buffer, 0)) <= 0) {
                return false;
            }
        }
        return true;
    }

private:
    int m_listener = ::socket(AF_INET, SOCK_STREAM, 0);
    int m_client = ::socket(AF_INET, SOCK_STREAM, 0);
    int m_server = -1;
};

}  // namespace zelvar::test
