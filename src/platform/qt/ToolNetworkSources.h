#pragma once

#include "platform/CommandRunner.h"
#include "platform/NetworkNameSource.h"
#include "platform/ProcessNetworkSource.h"

namespace zelvar {

// Sources that only run a command-line tool and hand back its output. They are built on
// every system so that both can be tested here; each system's factory picks its own.

// macOS: "/usr/bin/nettop" "-P" "-x" "-J" "bytes_in,bytes_out" "-l" "1", with no time-out.
class NettopProcessNetworkSource final : public ProcessNetworkSource {
public:
    explicit NettopProcessNetworkSource(CommandRunner& runner) : m_runner(runner) {}
    ProcessNetworkReading read() override;

private:
    CommandRunner& m_runner;
};

// Linux: "/bin/ss" "-tinpH", every TCP socket with its counters and owning processes.
class SocketStatisticsProcessNetworkSource final : public ProcessNetworkSource {
public:
    explicit SocketStatisticsProcessNetworkSource(CommandRunner& runner) : m_runner(runner) {}
    ProcessNetworkReading read() override;

private:
    CommandRunner& m_runner;
};

// macOS: the Wi-Fi interface from "/usr/sbin/networksetup" "-listallhardwareports", then its
// network's name from "/usr/sbin/ipconfig" "getsummary" <device> (a connection name when it
// gives one), else the text of "/usr/sbin/networksetup" "-getairportnetwork" <device>, which
// recent macOS answers with "not associated" even while connected. Each run has a time-out.
// No Wi-Fi interface gives an empty reading, and the caller's fallback name.
class MacNetworkNameSource final : public NetworkNameSource {
public:
    explicit MacNetworkNameSource(CommandRunner& runner) : m_runner(runner) {}
    NetworkNameReading read() override;

private:
    CommandRunner& m_runner;
};

}  // namespace zelvar
