#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <optional>
#include <utility>

#include "platform/SystemLoadSource.h"

namespace zelvar {

// /proc/stat, /proc/meminfo, /proc/loadavg and /proc/diskstats; the backlight and the thermal
// zones under /sys/class. Both roots are parameters so that fixture trees stand in for them.
class LinuxSystemLoadSource final : public SystemLoadSource {
public:
    explicit LinuxSystemLoadSource(const QString& procRoot = QStringLiteral("/proc"),
                                   const QString& sysRoot = QStringLiteral("/sys"));

    SystemLoadReading read() override;

    // The parsers of the four /proc files, for the tests and the fuzzer.
    static std::optional<CpuTicks> parseCpuLine(const QByteArray& stat);
    static std::optional<MemoryFigures> parseMeminfo(const QByteArray& meminfo);
    // Sectors of 512 bytes, summed over the devices that `countsDevice` accepts.
    static std::optional<std::pair<quint64, quint64>> parseDiskstats(
        const QByteArray& diskstats, const std::function<bool(const QByteArray&)>& countsDevice);

private:
    bool isWholeDisk(const QByteArray& device) const;

    QString m_procRoot;
    QString m_sysRoot;
};

}  // namespace zelvar
