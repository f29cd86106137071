#include "power/TolerantJson.h"

#include <QJsonValue>
#include <QLocale>
#include <cmath>

namespace zelvar {
namespace {

// Doubles that convert to a 64-bit integer without overflow.
constexpr double kInt64Limit = 9223372036854775807.0;

std::optional<qint64> wholeNumber(const QJsonValue& value) {
    if (!value.isDouble()) {
        return std::nullopt;
    }
    const double d = value.toDouble();
    if (std::trunc(d) != d || std::abs(d) >= kInt64Limit) {
        return std::nullopt;
    }
    // Integers beyond 2^53 keep their digits only through toInteger().
    return value.toInteger(static_cast<qint64>(d));
}

std::optional<qint64> roundedNumber(const QJsonValue& value) {
    if (!value.isDouble()) {
        return std::nullopt;
    }
    const double rounded = std::round(value.toDouble());
    if (!std::isfinite(rounded) || std::abs(rounded) >= kInt64Limit) {
        return std::nullopt;
    }
    return static_cast<qint64>(rounded);
}

std::optional<qint64> parsedWholeNumber(const QJsonValue& value) {
    if (!value.isString()) {
        return std::nullopt;
    }
    bool ok = false;
    const qint64 parsed = value.toString().toLongLong(&ok);
    return ok ? std::optional(parsed) : std::nullopt;
}

template <typename T, typename Attempt>
std::optional<T> firstKey(const QJsonObject& object, const QStringList& keys, Attempt attempt) {
    for (const QString& key : keys) {
        const auto found = object.constFind(key);
        if (found == object.constEnd()) {
            continue;
        }
        if (std::optional<T> decoded = attempt(*found)) {
            return decoded;
        }
    }
    return std::nullopt;
}

std::optional<qint64> decodeWhole(const QJsonValue& value) {
    if (const auto whole = wholeNumber(value)) {
        return whole;
    }
    if (const auto rounded = roundedNumber(value)) {
        return rounded;
    }
    return parsedWholeNumber(value);
}

}  // namespace

QStringList TolerantJson::keys(std::initializer_list<const char*> names) {
    QStringList list;
    for (const char* name : names) {
        list << QString::fromLatin1(name);
    }
    return list;
}

std::optional<double> TolerantJson::decodeDouble(const QJsonObject& object,
                                                 const QStringList& keys) {
    return firstKey<double>(object, keys, [](const QJsonValue& value) -> std::optional<double> {
        if (value.isDouble()) {
            return value.toDouble();
        }
        if (value.isString()) {
            const QString text = value.toString();
            bool ok = false;
            const double parsed = text.toDouble(&ok);
            // toDouble() forgives surrounding blanks; a strict number parse doesn't.
            if (ok && text.trimmed().size() == text.size()) {
                return parsed;
            }
        }
        return std::nullopt;
    });
}

std::optional<QString> TolerantJson::decodeText(const QJsonObject& object,
                                                const QStringList& keys) {
    return firstKey<QString>(object, keys, [](const QJsonValue& value) -> std::optional<QString> {
        if (value.isString()) {
            return value.toString();
        }
        if (const auto whole = wholeNumber(value)) {
            return QString::number(*whole);
        }
        if (value.isDouble()) {
            return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
        }
        return std::nullopt;
    });
}

std::optional<bool> TolerantJson::decodeBool(const QJsonObject& object, const QStringList& keys) {
    return firstKey<bool>(object, keys, [](const QJsonValue& value) -> std::optional<bool> {
        if (value.isBool()) {
            return value.toBool();
        }
        if (value.isDouble()) {
            return value.toDouble() != 0.0;
        }
        if (value.isString()) {
            const QString text = value.toString().toLower();
            if (text == QLatin1String("true") || text == QLatin1String("yes") ||
                text == QLatin1String("1")) {
                return true;
            }
            if (text == QLatin1String("false") || text == QLatin1String("no") ||
                text == QLatin1String("0")) {
                return false;
            }
        }
        return std::nullopt;
    });
}

std::optional<qint64> TolerantJson::decodeInt(const QJsonObject& object, const QStringList& keys) {
    return firstKey<qint64>(object, keys, &decodeWhole);
}

std::optional<qint64> TolerantJson::decodeInt64(const QJsonObject& object,
                                                const QStringList& keys) {
    // Integers are 64 bits wide here, so both operations take the same attempts.
    return firstKey<qint64>(object, keys, &decodeWhole);
}

std::optional<QUuid> TolerantJson::decodeUuid(const QJsonObject& object, const QStringList& keys) {
    for (const QString& key : keys) {
        if (const auto text = decodeText(object, {key})) {
            const QUuid uuid = QUuid::fromString(*text);
            if (!uuid.isNull()) {
                return uuid;
            }
        }
    }
    return std::nullopt;
}

}  // namespace zelvar
