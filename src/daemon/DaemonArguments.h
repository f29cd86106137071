#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace zelvar {

struct ParsedDaemonArguments;

// The daemon's command line: `--ram-threshold <percent> --interval <seconds> --log-file <path>`,
// each exactly once, in any order. Anything else is refused with a message naming it.
struct DaemonArguments {
    double ramThresholdPercent = 50.0;
    double intervalSeconds = 10.0;
    QString logFile;

    static ParsedDaemonArguments parse(const QStringList& arguments);
    // The arguments again, in the order they are installed with.
    QStringList toList() const;
};

struct ParsedDaemonArguments {
    std::optional<DaemonArguments> arguments;
    QString error;  // one line naming what was wrong, when arguments is empty
};

}  // namespace zelvar
