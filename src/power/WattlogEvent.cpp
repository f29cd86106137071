#include "power/WattlogEvent.h"

#include <QRandomGenerator>
#include <cmath>

#include "power/TolerantJson.h"

namespace zelvar {

QUuid WattlogEvent::newId() {
    // A version 4 id from the fast generator: a log of half a million lines makes as many
    // events, and the ids only need to be distinct within one run.
    quint32 bits[4];
    QRandomGenerator::global()->fillRange(bits);
    QUuid id;
    id.data1 = bits[0];
    id.data2 = static_cast<ushort>(bits[1]);
    id.data3 = static_cast<ushort>(((bits[1] >> 16) & 0x0FFF) | 0x4000);
    for (int i = 0; i < 8; ++i) {
        id.data4[i] = static_cast<uchar>(bits[2 + i / 4] >> (8 * (i % 4)));
    }
    id.data4[0] = static_cast<uchar>((id.data4[0] & 0x3F) | 0x80);
    return id;
}

QDateTime WattlogEvent::utcTime(qint64 msecsSinceEpoch) {
    return QDateTime::fromMSecsSinceEpoch(msecsSinceEpoch, Qt::UTC);
}

WattlogEvent WattlogEvent::decode(const QJsonObject& o) {
    using J = TolerantJson;
    WattlogEvent e;
    e.id = J::decodeUuid(o, J::keys({"id"})).value_or(newId());
    const double seconds = J::decodeDouble(o, J::keys({"timestamp", "ts"})).value_or(0.0);
    e.timestamp = utcTime(std::isfinite(seconds) ? std::llround(seconds * 1000.0) : 0);
    const std::optional<QString> kindText = J::decodeText(o, J::keys({"kind"}));
    e.kind = kindText
                 ? WattlogEventKinds::fromLabel(*kindText).value_or(WattlogEventKind::BatteryLevel)
                 : WattlogEventKind::BatteryLevel;
    e.detail = J::decodeText(o, J::keys({"detail"})).value_or(WattlogEventKinds::label(e.kind));
    if (const std::optional<qint64> percent = J::decodeInt(
            o, J::keys({"batteryPercent", "battery_percent", "battery_pct", "percent"}))) {
        e.batteryPercent = static_cast<int>(std::clamp<qint64>(*percent, INT_MIN, INT_MAX));
    }
    if (const std::optional<QString> source =
            J::decodeText(o, J::keys({"powerSource", "source"}))) {
        e.powerSource = WattlogEventKinds::sourceFromText(*source);
    }
    e.rawLine = J::decodeText(o, J::keys({"rawLine"})).value_or(QString());
    return e;
}

QJsonObject WattlogEvent::toJson() const {
    QJsonObject o{
        {QStringLiteral("id"), id.toString(QUuid::WithoutBraces)},
        {QStringLiteral("timestamp"), static_cast<double>(timestamp.toMSecsSinceEpoch()) / 1000.0},
        {QStringLiteral("kind"), WattlogEventKinds::label(kind)},
        {QStringLiteral("detail"), detail},
        {QStringLiteral("rawLine"), rawLine}};
    if (batteryPercent) {
        o.insert(QStringLiteral("batteryPercent"), *batteryPercent);
    }
    if (powerSource) {
        o.insert(QStringLiteral("powerSource"), WattlogEventKinds::sourceText(*powerSource));
    }
    return o;
}

}  // namespace zelvar
