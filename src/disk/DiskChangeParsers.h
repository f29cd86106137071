#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace zelvar::DiskChangeParsers {

// `du -sk <dir>`: a size in 1024-byte units, a tab, the path. The size in bytes, or no value
// when the first tab-separated piece isn't a whole decimal number once blanks and tabs are
// trimmed (a newline is not trimmed).
std::optional<qint64> duSizeBytes(const QString& output);

// Process names that hold a regular file open for writing, from `lsof -nP` with its default
// columns (COMMAND PID USER FD TYPE DEVICE SIZE/OFF NODE NAME). The header line is skipped;
// a line counts when FD contains "w", TYPE is "REG" and NAME starts with "/". The tools of the
// scan itself and the shells are left out. Each name once, in line order, at most `cap`.
QStringList lsofWriters(const QString& output, int cap = 8);

// Names that never count as writers: the scan's own tools and the shells.
const QStringList& excludedWriterNames();

}  // namespace zelvar::DiskChangeParsers
