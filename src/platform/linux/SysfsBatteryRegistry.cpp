#include "platform/linux/SysfsBatteryRegistry.h"

#include <QDir>
#include <QFile>
#include <cmath>

namespace zelvar {
namespace {

// Enough for any uevent of the power-supply class.
constexpr qint64 kMaxFileBytes = 16 * 1024;

QByteArray readSmallFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(kMaxFileBytes) : QByteArray();
}

std::optional<qint64> number(const SysfsBatteryRegistry::Uevent& uevent, const char* key) {
    bool ok = false;
    const qint64 value = uevent.value(QString::fromLatin1(key)).trimmed().toLongLong(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

// Micro-units to milli-units, halves away from zero.
std::optional<qint64> milli(std::optional<qint64> micro) {
    if (!micro) {
        return std::nullopt;
    }
    return static_cast<qint64>(std::round(static_cast<double>(*micro) / 1000.0));
}

}  // namespace

SysfsBatteryRegistry::SysfsBatteryRegistry(QString root) : m_root(std::move(root)) {}

SysfsBatteryRegistry::Uevent SysfsBatteryRegistry::parseUevent(const QByteArray& text) {
    static const QByteArray prefix("POWER_SUPPLY_");
    Uevent uevent;
    for (const QByteArray& line : text.split('\n')) {
        const qsizetype equals = line.indexOf('=');
        if (!line.startsWith(prefix) || equals < 0) {
            continue;
        }
        uevent.insert(QString::fromUtf8(line.mid(prefix.size(), equals - prefix.size())).toLower(),
                      QString::fromUtf8(line.mid(equals + 1)));
    }
    return uevent;
}

BatteryReading SysfsBatteryRegistry::readingFrom(const Uevent& battery,
                                                 std::optional<bool> mainsOnline) {
    const QString status = battery.value(QStringLiteral("status")).trimmed();
    const bool charging = status == QLatin1String("Charging");
    const bool discharging = status == QLatin1String("Discharging");

    BatteryReading r;
    r.percent = number(battery, "capacity");
    r.isCharging = charging;
    // Without a Mains supply to ask, a battery that isn't discharging is on external power.
    r.isExternalConnected = mainsOnline.value_or(!status.isEmpty() && !discharging);
    r.voltageMV = milli(number(battery, "voltage_now"));
    if (const auto power = number(battery, "power_now")) {
        r.batteryPowerMW = std::abs(*milli(power));
    }
    std::optional<qint64> current = milli(number(battery, "current_now"));
    if (!current && r.batteryPowerMW && r.voltageMV && *r.voltageMV > 0) {
        // Energy-style batteries give power instead of current: mW / V = mA.
        current = static_cast<qint64>(std::round(static_cast<double>(*r.batteryPowerMW) * 1000.0 /
                                                 static_cast<double>(*r.voltageMV)));
    }
    if (current) {
        // Many drivers give the current unsigned; the status tells its direction.
        if (discharging) {
            current = -std::abs(*current);
        } else if (charging) {
            current = std::abs(*current);
        }
    }
    r.amperageMA = current;
    r.amperageScaleMaxMA = kScaleMaxMA;
    if (battery.contains(QStringLiteral("charge_full"))) {
        r.maxCapacity = milli(number(battery, "charge_full"));
        r.designCapacity = milli(number(battery, "charge_full_design"));
    } else {
        r.maxCapacity = milli(number(battery, "energy_full"));
        r.designCapacity = milli(number(battery, "energy_full_design"));
    }
    if (const auto tenths = number(battery, "temp")) {
        r.temperatureC = static_cast<double>(*tenths) / 10.0;
    }
    r.cycleCount = number(battery, "cycle_count");
    return r;
}

std::optional<BatteryReading> SysfsBatteryRegistry::read() {
    const QDir root(m_root);
    std::optional<Uevent> battery;
    std::optional<bool> mainsOnline;
    // The entries are symbolic links into /sys/devices, so links must be listed too.
    for (const QString& name : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const QString base = m_root + QLatin1Char('/') + name;
        const Uevent uevent = parseUevent(readSmallFile(base + QStringLiteral("/uevent")));
        QString type = uevent.value(QStringLiteral("type")).trimmed();
        if (type.isEmpty()) {
            type = QString::fromUtf8(readSmallFile(base + QStringLiteral("/type")).trimmed());
        }
        if (type == QLatin1String("Mains")) {
            const bool online = number(uevent, "online").value_or(0) != 0;
            mainsOnline = mainsOnline.value_or(false) || online;
        } else if (type == QLatin1String("Battery") && !battery &&
                   number(uevent, "present").value_or(1) != 0 &&
                   uevent.value(QStringLiteral("scope")).trimmed() != QLatin1String("Device")) {
            battery = uevent;
        }
    }
    if (!battery) {
        return std::nullopt;
    }
    return readingFrom(*battery, mainsOnline);
}

}  // namespace zelvar
