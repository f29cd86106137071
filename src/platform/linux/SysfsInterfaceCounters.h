#pragma once

#include "platform/InterfaceCounters.h"

namespace zelvar {

// Interface counters from sysfs: `<root>/<if>/statistics/rx_bytes` and `tx_bytes`, 64-bit.
// An interface is physical when `<root>/<if>/device` exists. The root is a parameter so that
// a fixture tree can stand in for /sys/class/net.
class SysfsInterfaceCounters final : public InterfaceCounters {
public:
    explicit SysfsInterfaceCounters(QString root = QStringLiteral("/sys/class/net"));
    std::optional<QList<InterfaceCounter>> read() override;

private:
    QString m_root;
};

}  // namespace zelvar
