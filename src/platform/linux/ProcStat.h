#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QtGlobal>
#include <optional>

namespace zelvar {

// The fields of /proc/<pid>/stat that the sampler uses.
struct ProcStat {
    qint32 pid = 0;
    QByteArray comm;  // without the parentheses
    qint32 parentPid = 0;
    quint64 userTicks = 0;
    quint64 systemTicks = 0;
    quint64 startTicks = 0;  // since boot; 0 when the line ends before it
};

// Parses one /proc/<pid>/stat line. The command name sits in parentheses and may itself hold
// blanks and parentheses, so the fields after it are found from the last ')'.
std::optional<ProcStat> parseProcStat(QByteArrayView text);

// The resident set, in pages, from /proc/<pid>/statm (its second field).
std::optional<quint64> parseStatmResidentPages(QByteArrayView text);

// The name to show for a process: `comm`, unless the kernel cut it at 15 bytes and the first
// command-line argument's base name begins with it, in which case that base name. An empty
// `comm` (a process may set it so) gives way to the first argument's base name, whatever it is.
QByteArray fullProcessName(QByteArrayView comm, QByteArrayView cmdline);

}  // namespace zelvar
