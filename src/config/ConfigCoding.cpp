#include "config/ConfigCoding.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <limits>

#include "common/IsoDate.h"

namespace zelvar {
namespace {

// Decoding stops at the first problem; the exception never leaves this file.
struct DecodeError {
    QString message;
};

[[noreturn]] void fail(const QString& path, const QString& what) {
    throw DecodeError{QStringLiteral("%1 at \"%2\"").arg(what, path)};
}

double number(const QJsonValue& v, const QString& path) {
    if (!v.isDouble()) {
        fail(path, QStringLiteral("expected a number"));
    }
    return v.toDouble();
}

qint64 integer(const QJsonValue& v, const QString& path) {
    const double d = number(v, path);
    if (std::trunc(d) != d || std::abs(d) > 9.007199254740992e15) {
        fail(path, QStringLiteral("expected a whole number"));
    }
    return static_cast<qint64>(d);
}

bool boolean(const QJsonValue& v, const QString& path) {
    if (!v.isBool()) {
        fail(path, QStringLiteral("expected true or false"));
    }
    return v.toBool();
}

QString string(const QJsonValue& v, const QString& path) {
    if (!v.isString()) {
        fail(path, QStringLiteral("expected a string"));
    }
    return v.toString();
}

QDateTime date(const QJsonValue& v, const QString& path) {
    const auto parsed = parseIsoDate(string(v, path));
    if (!parsed) {
        fail(path, QStringLiteral("expected an ISO 8601 date"));
    }
    return *parsed;
}

QUuid uuid(const QJsonValue& v, const QString& path) {
    const QUuid id = QUuid::fromString(string(v, path));
    if (id.isNull()) {
        fail(path, QStringLiteral("expected a UUID"));
    }
    return id;
}

QJsonArray array(const QJsonValue& v, const QString& path) {
    if (!v.isArray()) {
        fail(path, QStringLiteral("expected an array"));
    }
    return v.toArray();
}

// Absent and null keys both take the default.
bool present(const QJsonObject& o, const char* key) {
    const auto it = o.constFind(QLatin1String(key));
    return it != o.constEnd() && !it->isNull();
}

QJsonValue required(const QJsonObject& o, const char* key, const QString& path) {
    if (!present(o, key)) {
        fail(path + u'.' + QLatin1String(key), QStringLiteral("missing required key"));
    }
    return o.value(QLatin1String(key));
}

ProcessLimit decodeLimit(const QJsonValue& value, const QString& path) {
    if (!value.isObject()) {
        fail(path, QStringLiteral("expected an object"));
    }
    const QJsonObject o = value.toObject();
    auto at = [&](const char* key) { return path + u'.' + QLatin1String(key); };
    ProcessLimit limit;
    limit.id = uuid(required(o, "id", path), at("id"));
    limit.processName = string(required(o, "process_name", path), at("process_name"));
    limit.limitMB = number(required(o, "limit_mb", path), at("limit_mb"));
    limit.autoKillEnabled =
        boolean(required(o, "auto_kill_enabled", path), at("auto_kill_enabled"));
    limit.createdAt = date(required(o, "created_at", path), at("created_at"));
    if (present(o, "last_triggered")) {
        limit.lastTriggered = date(o.value(QLatin1String("last_triggered")), at("last_triggered"));
    }
    return limit;
}

MonitorConfig decodeConfig(const QJsonObject& o) {
    MonitorConfig config;
    if (present(o, "check_interval")) {
        config.checkIntervalSeconds = number(o.value(u"check_interval"), "check_interval");
    }
    if (present(o, "enable_sound")) {
        config.enableSoundAlerts = boolean(o.value(u"enable_sound"), "enable_sound");
    }
    if (present(o, "enable_notifications")) {
        config.enableNotifications =
            boolean(o.value(u"enable_notifications"), "enable_notifications");
    }
    if (present(o, "launch_at_login")) {
        config.launchAtLogin = boolean(o.value(u"launch_at_login"), "launch_at_login");
    }
    if (present(o, "swap_threshold")) {
        config.swapThresholdMB = integer(o.value(u"swap_threshold"), "swap_threshold");
    }
    if (present(o, "limits")) {
        const QJsonArray limits = array(o.value(u"limits"), "limits");
        for (qsizetype i = 0; i < limits.size(); ++i) {
            config.limits.append(decodeLimit(limits.at(i), QStringLiteral("limits[%1]").arg(i)));
        }
    }
    if (present(o, "whitelist")) {
        const QJsonArray entries = array(o.value(u"whitelist"), "whitelist");
        for (qsizetype i = 0; i < entries.size(); ++i) {
            config.whitelistedProcesses.insert(
                string(entries.at(i), QStringLiteral("whitelist[%1]").arg(i)));
        }
    }
    return config;
}

QJsonObject encodeLimit(const ProcessLimit& limit) {
    QJsonObject o;
    o.insert(u"id", limit.id.toString(QUuid::WithoutBraces).toUpper());
    o.insert(u"process_name", limit.processName);
    o.insert(u"limit_mb", limit.limitMB);
    o.insert(u"auto_kill_enabled", limit.autoKillEnabled);
    o.insert(u"created_at", formatIsoDate(limit.createdAt));
    if (limit.lastTriggered) {
        o.insert(u"last_triggered", formatIsoDate(*limit.lastTriggered));
    }
    return o;
}

}  // namespace

QByteArray ConfigCoding::encode(const MonitorConfig& config) {
    QJsonArray limits;
    for (const ProcessLimit& limit : config.limits) {
        limits.append(encodeLimit(limit));
    }
    QJsonArray whitelist;  // std::set iterates in ascending order
    for (const QString& entry : config.whitelistedProcesses) {
        whitelist.append(entry);
    }
    // QJsonObject keeps its keys sorted, so every object in the file is written in key order.
    QJsonObject o;
    o.insert(u"check_interval", config.checkIntervalSeconds);
    o.insert(u"enable_sound", config.enableSoundAlerts);
    o.insert(u"enable_notifications", config.enableNotifications);
    o.insert(u"launch_at_login", config.launchAtLogin);
    o.insert(u"swap_threshold", config.swapThresholdMB);
    o.insert(u"limits", limits);
    o.insert(u"whitelist", whitelist);
    return QJsonDocument(o).toJson(QJsonDocument::Indented);
}

ConfigDecodeResult ConfigCoding::decode(const QByteArray& json) {
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        return {std::nullopt, QStringLiteral("invalid JSON at offset %1: %2")
                                  .arg(parseError.offset)
                                  .arg(parseError.errorString())};
    }
    if (!document.isObject()) {
        return {std::nullopt, QStringLiteral("expected a JSON object at the top level")};
    }
    try {
        return {decodeConfig(document.object()), {}};
    } catch (const DecodeError& error) {
        return {std::nullopt, error.message};
    }
}

}  // namespace zelvar
