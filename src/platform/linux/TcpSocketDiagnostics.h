#pragma once

#include <QList>
#include <cstddef>
#include <optional>

namespace zelvar {

// One TCP socket as the kernel's socket diagnostics describe it: its inode (0 for a socket
// that no descriptor holds) and its byte counters.
struct TcpSocketDiagnostic {
    quint64 inode = 0;
    quint64 receivedBytes = 0;
    quint64 sentBytes = 0;

    friend bool operator==(const TcpSocketDiagnostic&, const TcpSocketDiagnostic&) = default;
};

// The kernel's list of TCP sockets over NETLINK_SOCK_DIAG, IPv4 then IPv6, in the states that
// `ss -t` lists by default: every state but LISTEN, SYN-RECV, TIME-WAIT and CLOSE.
class TcpSocketDiagnostics {
public:
    // Every such socket; nothing when netlink is refused (no such socket, a failed request or
    // an error reply), with the errno in `error`.
    static std::optional<QList<TcpSocketDiagnostic>> query(int& error);

    // One SOCK_DIAG_BY_FAMILY reply's payload: `struct inet_diag_msg` and its attributes.
    // The counters come from INET_DIAG_INFO's `struct tcp_info`, each field read only where
    // the kernel's structure is long enough to hold it, and 0 otherwise (no attribute, an older
    // kernel). The sent bytes are tcpi_bytes_sent, or tcpi_bytes_acked where that is 0 or
    // missing, as `ss` prints them. Nothing when the payload can't hold the message.
    static std::optional<TcpSocketDiagnostic> decode(const void* payload, std::size_t length);
};

}  // namespace zelvar
