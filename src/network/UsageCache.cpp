#include "network/UsageCache.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

#include "common/BoundedFile.h"
#include "platform/Paths.h"

namespace zelvar {
namespace {

// A number through its 64-bit signed integer value, so that a fraction is cut off; anything
// that isn't a number, and anything negative, is 0.
quint64 byteCount(const QJsonValue& value) {
    if (!value.isDouble()) {
        return 0;
    }
    // A whole number comes exactly, beyond the 53 bits that a double holds; a fraction gives
    // the default and goes through the double below.
    const qint64 whole = value.toInteger(-1);
    if (whole >= 0) {
        return static_cast<quint64>(whole);
    }
    const double number = value.toDouble();
    if (!(number > 0.0)) {
        return 0;
    }
    // The largest double below 2^63, so that the conversion stays defined.
    constexpr double kLimit = 9223372036854774784.0;
    return static_cast<quint64>(static_cast<qint64>(std::min(number, kLimit)));
}

quint64 checkedAdd(quint64 a, quint64 b, const QString& name) {
    if (a > std::numeric_limits<quint64>::max() - b) {
        qFatal("UsageCache: the totals of %s overflow", qPrintable(name));
    }
    return a + b;
}

}  // namespace

QString UsageCache::calendarDate(const QDateTime& now, int offsetDays, const QTimeZone& zone) {
    const QDateTime shifted = now.toTimeZone(zone).addDays(offsetDays);
    const QDateTime day = shifted.isValid() ? shifted : now.toTimeZone(zone);
    return day.date().toString(QStringLiteral("yyyy-MM-dd"));
}

QList<CachedAppUsage> UsageCache::load(const QString& usageFile, const QString& date) {
    const BoundedFile::Result file = BoundedFile::readOnce(usageFile);
    if (file.status != BoundedFile::Status::read) {
        return {};
    }
    return parse(file.data, date);
}

QList<CachedAppUsage> UsageCache::parse(const QByteArray& json, const QString& date) {
    // Merged by trimmed name, in the order names first appear.
    QList<CachedAppUsage> usages;
    QHash<QString, qsizetype> indexByName;
    for (const CachedAppUsage& entry : dayEntries(json, date)) {
        const auto found = indexByName.constFind(entry.name);
        if (found == indexByName.constEnd()) {
            indexByName.insert(entry.name, usages.size());
            usages.append(entry);
        } else {
            CachedAppUsage& usage = usages[*found];
            usage.receivedBytes = checkedAdd(usage.receivedBytes, entry.receivedBytes, entry.name);
            usage.sentBytes = checkedAdd(usage.sentBytes, entry.sentBytes, entry.name);
        }
    }

    std::stable_sort(usages.begin(), usages.end(),
                     [](const CachedAppUsage& a, const CachedAppUsage& b) {
                         return saturatingAdd(a.receivedBytes, a.sentBytes) >
                                saturatingAdd(b.receivedBytes, b.sentBytes);
                     });
    return usages;
}

namespace {

QJsonObject datesOf(const QByteArray& json) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        return {};
    }
    return document.object().value(QLatin1String("dates")).toObject();
}

QList<CachedAppUsage> entriesOf(const QJsonObject& apps) {
    QList<CachedAppUsage> entries;
    for (auto it = apps.begin(); it != apps.end(); ++it) {
        if (!it.value().isObject()) {
            continue;
        }
        const QJsonObject app = it.value().toObject();
        const quint64 received = byteCount(app.value(QLatin1String("received")));
        const quint64 sent = byteCount(app.value(QLatin1String("sent")));
        const QString name = it.key().trimmed();
        if (!name.isEmpty() && (received != 0 || sent != 0)) {
            entries.append({name, received, sent});
        }
    }
    return entries;
}

}  // namespace

QList<CachedAppUsage> UsageCache::dayEntries(const QByteArray& json, const QString& date) {
    const QJsonValue day = datesOf(json).value(date);
    return day.isObject() ? entriesOf(day.toObject()) : QList<CachedAppUsage>();
}

UsageCache::Days UsageCache::allDays(const QByteArray& json) {
    Days days;
    const QJsonObject dates = datesOf(json);
    for (auto it = dates.begin(); it != dates.end(); ++it) {
        if (it.value().isObject()) {
            days.insert(it.key(), entriesOf(it.value().toObject()));
        }
    }
    return days;
}

QByteArray UsageCache::encode(const Days& days) {
    QJsonObject dates;
    for (auto day = days.begin(); day != days.end(); ++day) {
        QJsonObject apps;
        for (const CachedAppUsage& usage : *day) {
            // Counts past 2^53 lose their last digits in a JSON number; a day of traffic never
            // comes near.
            apps.insert(usage.name,
                        QJsonObject{{QStringLiteral("received"), qint64(usage.receivedBytes)},
                                    {QStringLiteral("sent"), qint64(usage.sentBytes)}});
        }
        dates.insert(day.key(), apps);
    }
    return QJsonDocument(QJsonObject{{QStringLiteral("dates"), dates}})
        .toJson(QJsonDocument::Compact);
}

QString UsageCache::defaultFile(const Paths& paths) {
    return paths.dataDirectory(kZelvar2Folder) + QStringLiteral("/usage-by-date.json");
}

}  // namespace zelvar
