#pragma once

#include <QDateTime>
#include <QList>
#include <QSet>
#include <QString>
#include <optional>

#include "platform/Paths.h"
#include "power/WattlogEvent.h"

namespace zelvar {

// The power history kept by the daemon between runs: its events, the time up to which it has
// read the power log, and the diagnostic reports it has taken in. Read only here.
struct WattlogCache {
    QList<WattlogEvent> events;
    QDateTime lastEventTimestamp;  // 1970 when the file doesn't give it
    QSet<QString> ingestedDiagnosticFiles;

    // "cache.json" in Wattlog's data folder.
    static QString defaultFile(const Paths& paths);
    // Nothing for a missing file or one that isn't a JSON object; a field that doesn't decode
    // takes its empty value (an events list with a non-object in it counts as empty).
    static std::optional<WattlogCache> read(const QString& path);
    static std::optional<WattlogCache> decode(const QByteArray& json);
};

}  // namespace zelvar
