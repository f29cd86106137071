#pragma once

#include <QByteArray>

#include "platform/ProcessIOSource.h"

namespace zelvar {

// /proc/<pid>/io for the counters, /proc/<pid>/fd with each descriptor's fdinfo flags for the
// files open for writing. The kernel lets a user read these of their own processes only.
class LinuxProcessIOSource final : public ProcessIOSource {
public:
    explicit LinuxProcessIOSource(const QString& procRoot = QStringLiteral("/proc"));

    QList<ProcessIOCounters> readAll() override;
    QString name(qint32 pid) override;
    QList<OpenWriteFile> openWriteFiles(qint32 pid) override;

private:
    QByteArray m_procRoot;
};

}  // namespace zelvar
