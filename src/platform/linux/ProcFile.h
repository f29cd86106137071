#pragma once

#include <QByteArray>

namespace zelvar {

// Reads a whole small procfs file, up to `limit` bytes. Empty on any failure; procfs files of a
// live process are never empty except `cmdline` of kernel threads, which callers treat alike.
QByteArray readProcFile(const QByteArray& path, qsizetype limit = 64 * 1024);

}  // namespace zelvar
