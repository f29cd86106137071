#pragma once

#include <QList>

#include "disk/DiskIOReader.h"
#include "process/ProcessInfo.h"

namespace zelvar {

// Adds to the disk I/O log's writers and bursts what only the live process list knows: the
// parent's name and the two origins. An entry whose pid is missing or not in `processes` (the
// process has ended) stays as it was; nothing is dropped, reordered or added. A reused pid
// attributes an old record to the process now holding it; that is accepted. Pure.
DiskIORead enrichDiskIO(const DiskIORead& read, const QList<ProcessInfo>& processes);

}  // namespace zelvar
