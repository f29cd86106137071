#include "daemon/DaemonFiles.h"

#include "disk/DiskChangeTracker.h"
#include "disk/DiskIOReader.h"
#include "network/UsageCache.h"
#include "platform/Paths.h"
#include "power/WattlogSampleFiles.h"

namespace zelvar {

DaemonFiles DaemonFiles::standard(const Paths& paths, const QString& eventLog) {
    return {DiskIOReader::defaultFile(paths),
            WattlogSampleFiles::batterySamplesFile(paths),
            WattlogSampleFiles::correlationSamplesFile(paths),
            UsageCache::defaultFile(paths),
            DiskChangeTracker::defaultEventLogFile(paths),
            eventLog,
            lockFile(paths)};
}

QStringList DaemonFiles::written() const {
    return {diskIO, batterySamples, correlationSamples, usageByDate, diskEvents, eventLog};
}

QString DaemonFiles::lockFile(const Paths& paths) {
    return paths.runtimeDirectory(kZelvar2Folder) + QStringLiteral("/daemon.lock");
}

QString DaemonFiles::logDirectory(const Paths& paths) {
    return paths.stateDirectory(kZelvar2Folder);
}

}  // namespace zelvar
