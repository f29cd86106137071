#pragma once

#include "platform/ProcessIOSource.h"

namespace zelvar {

// For systems whose per-process storage counters aren't read (macOS: they need root).
class NullProcessIOSource final : public ProcessIOSource {
public:
    QList<ProcessIOCounters> readAll() override { return {}; }
    QString name(qint32) override { return {}; }
    QList<OpenWriteFile> openWriteFiles(qint32) override { return {}; }
};

}  // namespace zelvar
