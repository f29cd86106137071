#pragma once

#include <QHash>
#include <QString>

#include "platform/BatteryRegistry.h"

namespace zelvar {

// The battery from `<root>/*/uevent` (the kernel's power-supply class): the first supply of
// type Battery, in name order, that is present and powers the machine (a mouse's battery has
// the scope Device and is left out), and the supplies of type Mains for external power. The
// type comes from POWER_SUPPLY_TYPE, or from the `type` file on kernels whose uevent lacks it.
// The root is a parameter so that a fixture tree can stand in for /sys/class/power_supply.
class SysfsBatteryRegistry final : public BatteryRegistry {
public:
    // POWER_SUPPLY_ keys without their prefix, in lower case: "status", "current_now", ...
    using Uevent = QHash<QString, QString>;

    // No battery names a full-load current here, so the scale is the default one.
    static constexpr qint64 kScaleMaxMA = 3000;

    explicit SysfsBatteryRegistry(QString root = QStringLiteral("/sys/class/power_supply"));
    std::optional<BatteryReading> read() override;

    static Uevent parseUevent(const QByteArray& text);
    // `mainsOnline` is empty when the machine has no Mains supply.
    static BatteryReading readingFrom(const Uevent& battery, std::optional<bool> mainsOnline);

private:
    QString m_root;
};

}  // namespace zelvar
