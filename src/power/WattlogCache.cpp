#include "power/WattlogCache.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>

#include "common/BoundedFile.h"
#include "power/TolerantJson.h"

namespace zelvar {

QString WattlogCache::defaultFile(const Paths& paths) {
    return paths.dataDirectory(kWattlogFolder) + QStringLiteral("/cache.json");
}

std::optional<WattlogCache> WattlogCache::read(const QString& path) {
    const BoundedFile::Result file = BoundedFile::readOnce(path);
    if (file.status != BoundedFile::Status::read) {
        return std::nullopt;
    }
    return decode(file.data);
}

std::optional<WattlogCache> WattlogCache::decode(const QByteArray& json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject()) {
        return std::nullopt;
    }
    const QJsonObject o = document.object();
    WattlogCache cache;
    const QJsonArray events = o.value(QStringLiteral("events")).toArray();
    const bool allObjects =
        std::all_of(events.begin(), events.end(), [](const QJsonValue& v) { return v.isObject(); });
    if (allObjects) {
        cache.events.reserve(events.size());
        for (const QJsonValue& v : events) {
            cache.events.append(WattlogEvent::decode(v.toObject()));
        }
    }
    const double last =
        TolerantJson::decodeDouble(o, TolerantJson::keys({"lastEventTimestamp"})).value_or(0.0);
    cache.lastEventTimestamp =
        WattlogEvent::utcTime(std::isfinite(last) ? std::llround(last * 1000.0) : 0);
    const QJsonArray files = o.value(QStringLiteral("ingestedDiagnosticFiles")).toArray();
    if (std::all_of(files.begin(), files.end(), [](const QJsonValue& v) { return v.isString(); })) {
        for (const QJsonValue& v : files) {
            cache.ingestedDiagnosticFiles.insert(v.toString());
        }
    }
    return cache;
}

}  // namespace zelvar
