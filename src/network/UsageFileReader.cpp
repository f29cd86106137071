#include "network/UsageFileReader.h"

#include "common/Log.h"
#include "network/UsageCache.h"

namespace zelvar {

std::optional<QList<CachedAppUsage>> UsageFileReader::read(const QString& date) {
    const bool sameDay = m_hasRead && date == m_date;
    const BoundedFile::Result result = sameDay ? m_file.readIfChanged() : m_file.read();
    m_hasRead = true;
    m_date = date;
    switch (result.status) {
        case BoundedFile::Status::unchanged:
            return std::nullopt;
        case BoundedFile::Status::read:
            m_lastRefusal.clear();
            return UsageCache::parse(result.data, date);
        case BoundedFile::Status::refused:
            if (result.error != m_lastRefusal) {
                m_lastRefusal = result.error;
                logLine(QStringLiteral("[UsageCache] Not reading %1: %2")
                            .arg(m_file.path(), result.error));
            }
            return QList<CachedAppUsage>();
        case BoundedFile::Status::missing:
        case BoundedFile::Status::failed:
            m_lastRefusal.clear();
            return QList<CachedAppUsage>();
    }
    return QList<CachedAppUsage>();
}

}  // namespace zelvar
