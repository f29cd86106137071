#include "platform/linux/SockDiagProcessNetworkSource.h"

namespace zelvar {

SockDiagProcessNetworkSource::SockDiagProcessNetworkSource(CommandRunner& runner,
                                                           const Clock& clock,
                                                           const QString& procRoot, Query query)
    : m_fallback(runner), m_owners(clock, procRoot), m_query(std::move(query)) {}

ProcessNetworkReading SockDiagProcessNetworkSource::read() {
    int error = 0;
    const std::optional<QList<TcpSocketDiagnostic>> sockets = m_query(error);
    if (!sockets) {
        ProcessNetworkReading reading = m_fallback.read();
        if (!m_fellBack) {
            m_fellBack = true;
            reading.note = QStringLiteral(
                               "Socket diagnostics over netlink refused (%1); "
                               "reading `ss -tinpH` instead")
                               .arg(qt_error_string(error));
        }
        return reading;
    }

    QList<quint64> inodes;
    inodes.reserve(sockets->size());
    for (const TcpSocketDiagnostic& socket : *sockets) {
        inodes.append(socket.inode);
    }
    m_owners.update(inodes);

    ProcessNetworkReading reading;
    reading.grammar = ProcessNetworkReading::Grammar::SocketRecords;
    reading.sockets.reserve(sockets->size());
    for (const TcpSocketDiagnostic& socket : *sockets) {
        QList<SocketOwner> owners = m_owners.ownersOf(socket.inode);
        if (!owners.isEmpty()) {
            reading.sockets.append(
                {std::move(owners), socket.receivedBytes, socket.sentBytes, socket.inode});
        }
    }
    return reading;
}

}  // namespace zelvar
