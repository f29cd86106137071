#pragma once

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QByteArray>

namespace zelvar::test {

// A TCP connection of this process to itself over 127.0.0.1: both ends are ours. Every
// descriptor is closed on destruction.
class LoopbackConnection {
public:
    LoopbackConnection() {
        m_listener = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (::bind(m_listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
            ::listen(m_listener, 1) != 0 ||
            ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
            return;
        }
        m_client = ::socket(AF_INET, SOCK_STREAM, 0);
        if (::connect(m_client, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
            m_server = ::accept(m_listener, nullptr, nullptr);
        }
    }
    ~LoopbackConnection() {
        for (const int fd : {m_client, m_server, m_listener}) {
            if (fd >= 0) {
                ::close(fd);
            }
        }
    }
    LoopbackConnection(const LoopbackConnection&) = delete;
    LoopbackConnection& operator=(const LoopbackConnection&) = delete;

    bool connected() const { return m_server >= 0; }
    int client() const { return m_client; }
    int server() const { return m_server; }

    static bool sendAll(int fd, const QByteArray& data) {
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
    static bool receiveAll(int fd, qsizetype size) {
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

private:
    int m_listener = -1;
    int m_client = -1;
    int m_server = -1;
};

}  // namespace zelvar::test
