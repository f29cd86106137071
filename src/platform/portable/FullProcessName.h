#pragma once

#include <QByteArray>
#include <QString>

namespace zelvar {

// The macOS kernel keeps a process's name in 32 bytes (p_name, from the executable's file name)
// and its command in 16 (p_comm, the fallback when p_name is empty), so proc_name and
// KERN_PROC_PID answer longer names cut to one of those lengths. A name of that length is
// completed from the path of the process's executable: its file name, when that continues the
// short name. A process that renamed itself keeps the name it chose.
class FullProcessName {
public:
    static constexpr qsizetype kCommandLength = 16;  // MAXCOMLEN
    static constexpr qsizetype kNameLength = 32;     // 2 * MAXCOMLEN

    // Whether the system's buffer was full, so that the name may go on.
    static bool mayBeCut(const QString& shortName) {
        const qsizetype bytes = shortName.toUtf8().size();
        return bytes == kCommandLength || bytes >= kNameLength;
    }

    // The name to show, from proc_name's answer and the executable's path (empty when
    // unknown).
    static QString choose(const QString& shortName, const QString& executablePath);

    // The executable's path from a KERN_PROCARGS2 buffer: a native int argc, then the path,
    // NUL-terminated. Empty when the buffer holds no such path.
    static QString executablePathFromProcArgs(const QByteArray& buffer);
};

}  // namespace zelvar
