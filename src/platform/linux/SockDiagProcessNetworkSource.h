#pragma once

#include <functional>

#include "platform/Clock.h"
#include "platform/CommandRunner.h"
#include "platform/ProcessNetworkSource.h"
#include "platform/linux/SocketInodeOwners.h"
#include "platform/linux/TcpSocketDiagnostics.h"
#include "platform/qt/ToolNetworkSources.h"

namespace zelvar {

// The per-process TCP counters straight from the kernel, without running a tool: the sockets
// and their counters over netlink (TcpSocketDiagnostics), each socket's processes from /proc
// (SocketInodeOwners). A read where netlink is refused (a sandbox, a kernel without socket
// diagnostics) runs `ss -tinpH` instead, and the first such read says so in its note.
class SockDiagProcessNetworkSource final : public ProcessNetworkSource {
public:
    using Query = std::function<std::optional<QList<TcpSocketDiagnostic>>(int& error)>;

    SockDiagProcessNetworkSource(CommandRunner& runner, const Clock& clock,
                                 const QString& procRoot = QStringLiteral("/proc"),
                                 Query query = &TcpSocketDiagnostics::query);
    ProcessNetworkReading read() override;

private:
    SocketStatisticsProcessNetworkSource m_fallback;
    SocketInodeOwners m_owners;
    Query m_query;
    bool m_fellBack = false;
};

}  // namespace zelvar
