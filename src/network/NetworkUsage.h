#pragma once

#include <QHash>
#include <QMap>
#include <QMetaType>
#include <QString>
#include <array>
#include <limits>
#include <optional>

namespace zelvar {

// Sum of two byte counts that sticks at the largest value instead of wrapping.
constexpr quint64 saturatingAdd(quint64 a, quint64 b) {
    return a > std::numeric_limits<quint64>::max() - b ? std::numeric_limits<quint64>::max()
                                                       : a + b;
}

// One interface's byte counters in a sample.
struct InterfaceUsage {
    QString name;
    quint64 receivedBytes = 0;
    quint64 sentBytes = 0;
    // Counts towards the Wi-Fi figures: an "en" interface on macOS, a physical one on Linux.
    bool wifiLike = false;

    friend bool operator==(const InterfaceUsage&, const InterfaceUsage&) = default;
};
using InterfaceMap = QMap<QString, InterfaceUsage>;

// One process's byte counters as the per-process tool reports them.
struct ProcessCounter {
    QString name;
    qint32 pid = 0;
    quint64 inBytes = 0;
    quint64 outBytes = 0;

    // The key of a process in every per-process table: name, ".", pid.
    static QString key(const QString& name, qint32 pid) {
        return name + QLatin1Char('.') + QString::number(pid);
    }
    QString key() const { return key(name, pid); }

    friend bool operator==(const ProcessCounter&, const ProcessCounter&) = default;
};
// Keyed by ProcessCounter::key(). A QMap so that iteration, and so the order of ties in the
// sorted table, is stable from run to run.
using ProcessCounterMap = QMap<QString, ProcessCounter>;

// One row of the per-process table: smoothed rates of a process seen in two readings.
struct ProcessUsage {
    QString id;  // the counter's key
    QString name;
    qint32 pid = 0;
    double downloadBytesPerSecond = 0.0;
    double uploadBytesPerSecond = 0.0;
    quint64 observedBytes = 0;    // both directions, in this sample
    quint64 cumulativeBytes = 0;  // always 0

    double combinedBytesPerSecond() const { return downloadBytesPerSecond + uploadBytesPerSecond; }

    friend bool operator==(const ProcessUsage&, const ProcessUsage&) = default;
};

// One application's totals for a day, as the daemon keeps them.
struct CachedAppUsage {
    QString name;  // trimmed
    quint64 receivedBytes = 0;
    quint64 sentBytes = 0;

    const QString& id() const { return name; }
    quint64 totalBytes() const;  // overflow stops the process

    friend bool operator==(const CachedAppUsage&, const CachedAppUsage&) = default;
};

// The Network tab's choice between the live table and the daily totals.
enum class AppUsageMode { current, daily };
// Every mode, in the order the tab offers them.
inline constexpr std::array<AppUsageMode, 2> kAllAppUsageModes = {AppUsageMode::current,
                                                                  AppUsageMode::daily};

QString appUsageModeRawValue(AppUsageMode mode);
std::optional<AppUsageMode> appUsageModeFromRawValue(const QString& rawValue);

}  // namespace zelvar

Q_DECLARE_METATYPE(zelvar::ProcessUsage)
Q_DECLARE_METATYPE(zelvar::CachedAppUsage)
