#pragma once

#include <QString>
#include <functional>

namespace zelvar {

// The system's log: plain lines on standard output, each starting with its component in
// brackets. Lines from different threads never interleave.
void logLine(const QString& line);

// Sends log lines to `sink` instead of standard output until the returned guard is destroyed.
// For tests that check what was reported.
class LogRedirect {
public:
    explicit LogRedirect(std::function<void(const QString&)> sink);
    ~LogRedirect();
    LogRedirect(const LogRedirect&) = delete;
    LogRedirect& operator=(const LogRedirect&) = delete;
};

}  // namespace zelvar
