#pragma once

#include <QByteArray>

namespace zelvar {

// The output of the system's per-process network tool, and which grammar it follows:
// `nettop -P -x -J bytes_in,bytes_out -l 1` on macOS, `ss -tinpH` on Linux.
struct ProcessNetworkReading {
    enum class Grammar { Nettop, SocketStatistics };
    Grammar grammar = Grammar::Nettop;
    QByteArray text;  // empty when the tool couldn't be run
};

// Runs the tool once and waits for it, so callers keep it off the main thread.
class ProcessNetworkSource {
public:
    virtual ~ProcessNetworkSource() = default;
    virtual ProcessNetworkReading read() = 0;
};

}  // namespace zelvar
