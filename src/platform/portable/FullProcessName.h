#pragma once

#include <QByteArray>
#include <QString>

namespace zelvar {

// The macOS kernel keeps a process's name in at most 32 bytes (p_name; p_comm holds 16), so
// proc_name cuts longer names. A name that may have been cut is completed from the path of the
// process's executable: its file name, when that begins with the short name. A process that
// renamed itself keeps the name it chose.
class FullProcessName {
public:
    // The length from which proc_name's answer may be a cut: p_comm's 15 characters and more.
    static constexpr qsizetype kCutLength = 15;

    static bool mayBeCut(const QString& shortName) { return shortName.size() >= kCutLength; }

    // The name to show, from proc_name's answer and the executable's path (empty when
    // unknown).
    static QString choose(const QString& shortName, const QString& executablePath);

    // The executable's path from a KERN_PROCARGS2 buffer: a native int argc, then the path,
    // NUL-terminated. Empty when the buffer holds no such path.
    static QString executablePathFromProcArgs(const QByteArray& buffer);
};

}  // namespace zelvar
