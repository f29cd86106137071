#pragma once

#include <QString>

#include "platform/ProcessTable.h"

namespace zelvar {

// The process table from procfs: `stat` for the parent, start time and CPU ticks, `statm` for
// resident pages, `comm` (and `cmdline` when `comm` was cut or is empty) for the name. The root is
// a parameter so that a fixture tree can stand in for /proc.
class LinuxProcessTable final : public ProcessTable {
public:
    explicit LinuxProcessTable(QString procRoot = QStringLiteral("/proc"));

    std::optional<std::vector<ProcessTableEntry>> list() override;
    std::optional<QString> name(Pid pid) override;
    std::optional<quint64> residentBytes(Pid pid) override;
    std::optional<quint64> cpuTimeNanoseconds(Pid pid) override;

private:
    QByteArray pidFile(Pid pid, const char* leaf) const;
    // The full name from the kernel's short one, completed from the command line only when
    // it was cut at 15 bytes or is empty.
    std::optional<QString> nameFrom(Pid pid, const QByteArray& comm) const;

    QByteArray m_procRoot;
    quint64 m_pageSize;
    quint64 m_nanosecondsPerTick;
};

}  // namespace zelvar
