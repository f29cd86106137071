#pragma once

#include <QByteArray>

namespace zelvar {

// Reads a whole small procfs file, up to `limit` bytes. Empty on any failure; procfs files of a
// live process are never empty except `cmdline` of kernel threads, which callers treat alike.
QByteArray readProcFile(const QByteArray& path, qsizetype limit = 64 * 1024);

// The same for a path relative to an open directory: a sampler that opens the files of
// thousands of processes walks /proc's own path once instead of once a file.
QByteArray readProcFileAt(int directory, const char* relativePath, qsizetype limit = 64 * 1024);

}  // namespace zelvar
