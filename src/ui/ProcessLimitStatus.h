#pragma once

#include <QString>

namespace zelvar {

class ConfigManager;
struct ProcessInfo;

// How a process stands towards the limits and the whitelist, as its row shows it. The whitelist
// wins over a limit; a process exactly at its limit is within it. Only the process's own
// memory counts, never its subtree's.
struct ProcessLimitStatus {
    enum class Kind { None, Whitelisted, OverLimit, WithinLimit };

    Kind kind = Kind::None;
    double limitMB = 0.0;

    static ProcessLimitStatus of(const ConfigManager& config, const ProcessInfo& process);

    // "Whitelisted", "Over Limit", the limit as "1500MB", or nothing.
    QString text() const;
    // A limit as the rows and chips write it: cut to whole mebibytes, "MB" without a blank.
    static QString limitText(double limitMB);
};

}  // namespace zelvar
