#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QUuid>
#include <optional>

namespace zelvar {

// The decoding of the daemon's records, which accepts numbers, booleans and texts in each
// other's forms so that older and newer writers can share a file. Each operation tries the
// keys in order and, for each key, the attempts in order; a missing key or a value of the
// wrong type moves on, and when nothing decodes the result is empty.
class TolerantJson {
public:
    TolerantJson() = delete;

    static QStringList keys(std::initializer_list<const char*> names);

    // The writing side: `key` set to the value when there is one, left out otherwise.
    template <typename T>
    static void insertIfPresent(QJsonObject& object, const char* key,
                                const std::optional<T>& value) {
        if (value) {
            object.insert(QLatin1StringView(key), QJsonValue(*value));
        }
    }

    // A number; text parsed as a number.
    static std::optional<double> decodeDouble(const QJsonObject& object, const QStringList& keys);
    // Text; a whole number as its decimal text; another number as its shortest decimal text.
    static std::optional<QString> decodeText(const QJsonObject& object, const QStringList& keys);
    // A boolean; a number, non-zero being true; text "true", "yes", "1" or "false", "no", "0"
    // in any case.
    static std::optional<bool> decodeBool(const QJsonObject& object, const QStringList& keys);
    // A whole number; another number rounded halves away from zero; text parsed as a whole
    // number.
    static std::optional<qint64> decodeInt(const QJsonObject& object, const QStringList& keys);
    static std::optional<qint64> decodeInt64(const QJsonObject& object, const QStringList& keys);
    // Text (as decodeText gives it) that is a UUID.
    static std::optional<QUuid> decodeUuid(const QJsonObject& object, const QStringList& keys);
};

}  // namespace zelvar
