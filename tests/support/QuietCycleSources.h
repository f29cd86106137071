#pragma once

#include <QString>

#include "disk/DiskIOReader.h"
#include "disk/DiskMonitor.h"
#include "support/FakeServiceJobs.h"
#include "support/FakeVolumeSource.h"

namespace zelvar::test {

// What a monitoring cycle reads besides the process table, all empty: no service jobs, no
// volumes, no disk I/O log. For tests that look at other stages of the cycle.
struct QuietCycleSources {
    QuietCycleSources(const Clock& clock, const QString& directory)
        : diskMonitor(volumes, clock), diskIOReader(directory + QStringLiteral("/diskio.jsonl")) {}

    FakeServiceJobs jobs;
    FakeVolumeSource volumes;
    DiskMonitor diskMonitor;
    DiskIOReader diskIOReader;
};

}  // namespace zelvar::test
