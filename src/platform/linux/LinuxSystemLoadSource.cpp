#include "platform/linux/LinuxSystemLoadSource.h"

#include <dirent.h>

#include <QDir>
#include <QFile>

#include "platform/linux/ProcFile.h"

namespace zelvar {

namespace {

QList<QByteArray> fieldsOf(const QByteArray& line) {
    return line.simplified().split(' ');
}

std::optional<qint64> readNumber(const QString& path) {
    bool ok = false;
    const qint64 value = readProcFile(QFile::encodeName(path), 64).trimmed().toLongLong(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

}  // namespace

LinuxSystemLoadSource::LinuxSystemLoadSource(const QString& procRoot, const QString& sysRoot)
    : m_procRoot(procRoot), m_sysRoot(sysRoot) {}

std::optional<CpuTicks> LinuxSystemLoadSource::parseCpuLine(const QByteArray& stat) {
    const QByteArray first = stat.left(stat.indexOf('\n'));
    const QList<QByteArray> fields = fieldsOf(first);
    if (fields.size() < 5 || fields[0] != "cpu") {
        return std::nullopt;
    }
    quint64 values[8] = {};
    for (qsizetype i = 1; i < fields.size() && i <= 8; ++i) {
        bool ok = false;
        values[i - 1] = fields[i].toULongLong(&ok);
        if (!ok) {
            return std::nullopt;
        }
    }
    // user nice system idle iowait irq softirq steal; guest time is already inside user.
    return CpuTicks{.user = values[0] + values[1],
                    .system = values[2] + values[5] + values[6],
                    .idle = values[3] + values[4],
                    .other = values[7]};
}

std::optional<MemoryFigures> LinuxSystemLoadSource::parseMeminfo(const QByteArray& meminfo) {
    MemoryFigures figures;
    int found = 0;
    for (const QByteArray& line : meminfo.split('\n')) {
        const qsizetype colon = line.indexOf(':');
        if (colon < 0) {
            continue;
        }
        const QByteArray key = line.left(colon);
        quint64* target = key == "MemTotal"       ? &figures.totalKB
                          : key == "MemAvailable" ? &figures.availableKB
                          : key == "SwapTotal"    ? &figures.swapTotalKB
                          : key == "SwapFree"     ? &figures.swapFreeKB
                                                  : nullptr;
        if (!target) {
            continue;
        }
        const QList<QByteArray> fields = fieldsOf(line.mid(colon + 1));
        bool ok = false;
        *target = fields.value(0).toULongLong(&ok);
        found += ok ? 1 : 0;
    }
    return found == 4 && figures.totalKB > 0 ? std::optional(figures) : std::nullopt;
}

std::optional<std::pair<quint64, quint64>> LinuxSystemLoadSource::parseDiskstats(
    const QByteArray& diskstats, const std::function<bool(const QByteArray&)>& countsDevice) {
    if (diskstats.isEmpty()) {
        return std::nullopt;
    }
    quint64 read = 0;
    quint64 written = 0;
    for (const QByteArray& line : diskstats.split('\n')) {
        // major minor name reads merged sectors-read ms writes merged sectors-written ...
        const QList<QByteArray> fields = fieldsOf(line);
        if (fields.size() < 10 || !countsDevice(fields[2])) {
            continue;
        }
        read += fields[5].toULongLong();
        written += fields[9].toULongLong();
    }
    return std::pair(read, written);
}

bool LinuxSystemLoadSource::isWholeDisk(const QByteArray& device) const {
    // Partitions have no entry of their own under /sys/block; loop, RAM and mapped devices sit
    // on top of real disks (or of nothing) and would count the same bytes twice.
    for (const char* prefix : {"loop", "ram", "zram", "dm-", "md", "sr"}) {
        if (device.startsWith(prefix)) {
            return false;
        }
    }
    return QFile::exists(m_sysRoot + QStringLiteral("/block/") + QString::fromLocal8Bit(device));
}

SystemLoadReading LinuxSystemLoadSource::read() {
    SystemLoadReading reading;
    const QByteArray proc = QFile::encodeName(m_procRoot);
    reading.cpu = parseCpuLine(readProcFile(proc + "/stat", 4096));
    reading.memory = parseMeminfo(readProcFile(proc + "/meminfo"));
    bool ok = false;
    const double load = fieldsOf(readProcFile(proc + "/loadavg", 256)).value(0).toDouble(&ok);
    if (ok) {
        reading.load1m = load;
    }
    // One listing of the folder, no file per process.
    if (DIR* dir = opendir(proc.constData())) {
        qint64 count = 0;
        while (const dirent* entry = readdir(dir)) {
            count += entry->d_name[0] >= '1' && entry->d_name[0] <= '9' ? 1 : 0;
        }
        closedir(dir);
        reading.processCount = count;
    }
    if (const auto sectors =
            parseDiskstats(readProcFile(proc + "/diskstats", 256 * 1024),
                           [this](const QByteArray& d) { return isWholeDisk(d); })) {
        reading.diskReadBytes = sectors->first * 512;
        reading.diskWrittenBytes = sectors->second * 512;
    }

    const QDir backlights(m_sysRoot + QStringLiteral("/class/backlight"));
    for (const QString& entry :
         backlights.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const QString dir = backlights.filePath(entry);
        const auto brightness = readNumber(dir + QStringLiteral("/brightness"));
        const auto maximum = readNumber(dir + QStringLiteral("/max_brightness"));
        if (brightness && maximum) {
            reading.backlightBrightness = brightness;
            reading.backlightMaximum = maximum;
            break;
        }
    }

    const QDir thermal(m_sysRoot + QStringLiteral("/class/thermal"));
    for (const QString& entry :
         thermal.entryList({QStringLiteral("thermal_zone*")}, QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (const auto temperature =
                readNumber(thermal.filePath(entry) + QStringLiteral("/temp"))) {
            reading.hottestZoneMilliC =
                std::max(reading.hottestZoneMilliC.value_or(*temperature), *temperature);
        }
    }
    return reading;
}

}  // namespace zelvar
