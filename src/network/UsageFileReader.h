#pragma once

#include <QList>
#include <QString>
#include <optional>

#include "common/BoundedFile.h"
#include "network/NetworkUsage.h"

namespace zelvar {

// Rereads the daemon's daily usage file for each sample, but parses it only when the file or
// the day changed since the previous read, so that a large file costs its read once rather
// than every two seconds. A file that can't be taken (not a regular file, above the cap) gives
// an empty list and one log line until its state changes. Use it on one thread.
class UsageFileReader {
public:
    explicit UsageFileReader(QString usageFile) : m_file(std::move(usageFile)) {}

    // The applications of `date`, largest first; no value while neither the file nor the date
    // changed since the previous call.
    std::optional<QList<CachedAppUsage>> read(const QString& date);

private:
    BoundedFile m_file;
    QString m_date;
    bool m_hasRead = false;
    QString m_lastRefusal;
};

}  // namespace zelvar
