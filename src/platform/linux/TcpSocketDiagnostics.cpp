#include "platform/linux/TcpSocketDiagnostics.h"

#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <linux/sock_diag.h>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "platform/FileDescriptor.h"

namespace zelvar {
namespace {

// The kernel's TCP states (include/net/tcp_states.h), which no user-space header names
// without clashing with <linux/tcp.h>.
enum TcpState : unsigned {
    Established = 1,
    SynSent = 2,
    FinWait1 = 4,
    FinWait2 = 5,
    CloseWait = 8,
    LastAck = 9,
    Closing = 11,
};
constexpr quint32 kListedStates = (1u << Established) | (1u << SynSent) | (1u << FinWait1) |
                                  (1u << FinWait2) | (1u << CloseWait) | (1u << LastAck) |
                                  (1u << Closing);

// A dump comes in parts of at most 32 KiB; a larger buffer never truncates one.
constexpr std::size_t kReceiveBufferBytes = 64 * 1024;

quint64 fieldAt(const char* data, std::size_t size, std::size_t offset) {
    quint64 value = 0;
    if (size >= offset + sizeof value) {
        std::memcpy(&value, data + offset, sizeof value);
    }
    return value;
}

bool request(int fd, quint8 family, quint32 sequence) {
    struct {
        nlmsghdr header;
        inet_diag_req_v2 request;
    } message{};
    message.header.nlmsg_len = sizeof message;
    message.header.nlmsg_type = SOCK_DIAG_BY_FAMILY;
    message.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    message.header.nlmsg_seq = sequence;
    message.request.sdiag_family = family;
    message.request.sdiag_protocol = IPPROTO_TCP;
    message.request.idiag_ext = 1u << (INET_DIAG_INFO - 1);
    message.request.idiag_states = kListedStates;
    sockaddr_nl kernel{};
    kernel.nl_family = AF_NETLINK;
    return ::sendto(fd, &message, sizeof message, 0, reinterpret_cast<const sockaddr*>(&kernel),
                    sizeof kernel) == static_cast<ssize_t>(sizeof message);
}

// Reads one dump's replies up to its end, appending every socket with an inode. False, with
// `error` set, on a failed read or an error reply.
bool receive(int fd, quint32 sequence, std::vector<char>& buffer,
             QList<TcpSocketDiagnostic>& sockets, int& error) {
    for (;;) {
        iovec part{buffer.data(), buffer.size()};
        msghdr header{};
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        const ssize_t received = ::recvmsg(fd, &header, 0);
        if (received < 0 && errno == EINTR) {
            continue;
        }
        if (received <= 0 || (header.msg_flags & MSG_TRUNC) != 0) {
            error = received < 0 ? errno : EMSGSIZE;
            return false;
        }
        auto left = static_cast<unsigned>(received);
        for (auto* reply = reinterpret_cast<const nlmsghdr*>(buffer.data()); NLMSG_OK(reply, left);
             reply = NLMSG_NEXT(reply, left)) {
            if (reply->nlmsg_seq != sequence) {
                continue;
            }
            if (reply->nlmsg_type == NLMSG_DONE) {
                return true;
            }
            if (reply->nlmsg_type == NLMSG_ERROR) {
                nlmsgerr answer{};
                std::memcpy(&answer, NLMSG_DATA(reply),
                            std::min<std::size_t>(sizeof answer, reply->nlmsg_len - NLMSG_HDRLEN));
                error = answer.error < 0 ? -answer.error : EPROTO;
                return false;
            }
            if (reply->nlmsg_type == SOCK_DIAG_BY_FAMILY) {
                const auto socket = TcpSocketDiagnostics::decode(NLMSG_DATA(reply),
                                                                 reply->nlmsg_len - NLMSG_HDRLEN);
                if (socket && socket->inode != 0) {
                    sockets.append(*socket);
                }
            }
        }
    }
}

}  // namespace

std::optional<QList<TcpSocketDiagnostic>> TcpSocketDiagnostics::query(int& error) {
    const FileDescriptor fd(::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC, NETLINK_SOCK_DIAG));
    if (fd.get() < 0) {
        error = errno;
        return std::nullopt;
    }
    std::vector<char> buffer(kReceiveBufferBytes);
    QList<TcpSocketDiagnostic> sockets;
    quint32 sequence = 0;
    for (const quint8 family : {AF_INET, AF_INET6}) {
        ++sequence;
        if (!request(fd.get(), family, sequence)) {
            error = errno;
            return std::nullopt;
        }
        if (!receive(fd.get(), sequence, buffer, sockets, error)) {
            return std::nullopt;
        }
    }
    return sockets;
}

std::optional<TcpSocketDiagnostic> TcpSocketDiagnostics::decode(const void* payload,
                                                                std::size_t length) {
    inet_diag_msg message{};
    if (length < sizeof message) {
        return std::nullopt;
    }
    const auto* bytes = static_cast<const char*>(payload);
    std::memcpy(&message, bytes, sizeof message);
    TcpSocketDiagnostic socket;
    socket.inode = message.idiag_inode;

    quint64 acked = 0;
    quint64 sent = 0;
    for (std::size_t at = NLMSG_ALIGN(sizeof message); at + sizeof(rtattr) <= length;) {
        rtattr attribute{};
        std::memcpy(&attribute, bytes + at, sizeof attribute);
        if (attribute.rta_len < sizeof attribute || attribute.rta_len > length - at) {
            break;  // a malformed attribute ends the list
        }
        if (attribute.rta_type == INET_DIAG_INFO) {
            const char* info = bytes + at + RTA_LENGTH(0);
            const std::size_t size = attribute.rta_len - RTA_LENGTH(0);
            socket.receivedBytes = fieldAt(info, size, offsetof(tcp_info, tcpi_bytes_received));
            acked = fieldAt(info, size, offsetof(tcp_info, tcpi_bytes_acked));
            sent = fieldAt(info, size, offsetof(tcp_info, tcpi_bytes_sent));
        }
        at += RTA_ALIGN(attribute.rta_len);
    }
    // `ss` leaves out counters that are 0, so for a socket that sent no data (whose SYN and
    // FIN still count as acked) its parser reads bytes_acked: the same figure here.
    socket.sentBytes = sent != 0 ? sent : acked;
    return socket;
}

}  // namespace zelvar
