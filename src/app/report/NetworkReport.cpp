#include "app/report/NetworkReport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "app/report/RunMonitors.h"
#include "common/TerminalText.h"
#include "network/BandwidthMonitor.h"
#include "network/ByteFormatter.h"
#include "network/UsageCache.h"

namespace zelvar {
namespace {

// JSON numbers are doubles; counts beyond 2^53 lose their last digits, which no real
// figure reaches.
QJsonValue count(quint64 value) {
    return static_cast<double>(value);
}

}  // namespace

ReportKind NetworkReport::kind() {
    return {
        QStringLiteral("network"),
        QStringLiteral("Download and upload rates, the day's totals, the Wi-Fi allowance "
                       "and the busiest processes."),
        {{.name = QStringLiteral("seconds"),
          .valueName = QStringLiteral("SECONDS"),
          .description = QStringLiteral("How long to sample"),
          .maximum = 3600,
          .defaultValue = 6,
          .defaultText = QStringLiteral("6")}},
        Monitors::Part::Bandwidth,
        ReportKind::runner(
            [](const ReportOptions& options) { return options.number(QStringLiteral("seconds")); },
            &sample, &formatText, &formatJson)};
}

NetworkReport::Snapshot NetworkReport::Snapshot::of(const BandwidthMonitor& monitor) {
    Snapshot s;
    s.networkName = monitor.networkName();
    s.downloadBytesPerSecond = monitor.downloadBytesPerSecond();
    s.uploadBytesPerSecond = monitor.uploadBytesPerSecond();
    s.receivedBytes = monitor.todayReceivedBytes();
    s.sentBytes = monitor.todaySentBytes();
    s.wifiBytes = monitor.monthWifiBytes();
    s.wifiLimitBytes = monitor.monthlyWifiLimitBytes();
    s.remainingWifiBytes = monitor.remainingMonthlyWifiBytes();
    s.processes = monitor.processUsages();
    s.dailyUsage = monitor.cachedAppUsages();
    return s;
}

NetworkReport::Snapshot NetworkReport::sample(Monitors& monitors, double seconds) {
    const BandwidthMonitor& monitor = *monitors.bandwidthMonitor();
    const RunTaken taken =
        runMonitors(monitors, monitor, &BandwidthMonitor::sampleFinished, {1, seconds});
    Snapshot snapshot = Snapshot::of(monitor);
    snapshot.seconds = taken.seconds;
    snapshot.samples = taken.samples;
    snapshot.date = UsageCache::calendarDate(monitors.ports().clock.now());
    return snapshot;
}

QString NetworkReport::formatText(const Snapshot& s) {
    QString text;
    QTextStream out(&text);
    out << "Sampled " << QString::number(s.seconds, 'f', 1) << " s in " << s.samples
        << " samples\n";
    out << "Network:   " << TerminalText::escaped(s.networkName) << '\n';
    out << "Download:  " << ByteFormatter::rate(s.downloadBytesPerSecond) << '\n';
    out << "Upload:    " << ByteFormatter::rate(s.uploadBytesPerSecond) << '\n';
    out << "Received:  " << ByteFormatter::bytes(s.receivedBytes) << " (" << s.receivedBytes
        << " bytes since start)\n";
    out << "Sent:      " << ByteFormatter::bytes(s.sentBytes) << " (" << s.sentBytes
        << " bytes since start)\n";
    out << "Wi-Fi:     " << ByteFormatter::bytes(s.wifiBytes) << " of "
        << ByteFormatter::bytes(s.wifiLimitBytes) << ", "
        << ByteFormatter::signedBytes(s.remainingWifiBytes) << " left\n";

    out << "\nProcesses (TCP)\n";
    out << QStringLiteral("%1 %2 %3 %4  %5\n")
               .arg(QStringLiteral("PID"), 7)
               .arg(QStringLiteral("DOWN"), 10)
               .arg(QStringLiteral("UP"), 10)
               .arg(QStringLiteral("SEEN"), 8)
               .arg(QStringLiteral("NAME"));
    for (const ProcessUsage& p : s.processes) {
        out << QStringLiteral("%1 %2 %3 %4  %5\n")
                   .arg(p.pid, 7)
                   .arg(ByteFormatter::rate(p.downloadBytesPerSecond), 10)
                   .arg(ByteFormatter::rate(p.uploadBytesPerSecond), 10)
                   .arg(ByteFormatter::bytes(p.observedBytes), 8)
                   .arg(TerminalText::escaped(p.name));
    }
    if (s.processes.isEmpty()) {
        out << "  (none yet: a process shows from its second sample on)\n";
    }

    out << "\nDaily usage " << s.date << '\n';
    out << QStringLiteral("%1 %2 %3  %4\n")
               .arg(QStringLiteral("RECEIVED"), 10)
               .arg(QStringLiteral("SENT"), 10)
               .arg(QStringLiteral("TOTAL"), 10)
               .arg(QStringLiteral("NAME"));
    for (const CachedAppUsage& u : s.dailyUsage) {
        out << QStringLiteral("%1 %2 %3  %4\n")
                   .arg(ByteFormatter::bytes(u.receivedBytes), 10)
                   .arg(ByteFormatter::bytes(u.sentBytes), 10)
                   .arg(ByteFormatter::bytes(u.totalBytes()), 10)
                   .arg(TerminalText::escaped(u.name));
    }
    if (s.dailyUsage.isEmpty()) {
        out << "  (no entries for today)\n";
    }
    return text;
}

QByteArray NetworkReport::formatJson(const Snapshot& s) {
    QJsonArray processes;
    for (const ProcessUsage& p : s.processes) {
        processes.append(
            QJsonObject{{QStringLiteral("id"), p.id},
                        {QStringLiteral("name"), p.name},
                        {QStringLiteral("pid"), p.pid},
                        {QStringLiteral("download_bytes_per_second"), p.downloadBytesPerSecond},
                        {QStringLiteral("upload_bytes_per_second"), p.uploadBytesPerSecond},
                        {QStringLiteral("observed_bytes"), count(p.observedBytes)}});
    }
    QJsonArray daily;
    for (const CachedAppUsage& u : s.dailyUsage) {
        daily.append(QJsonObject{{QStringLiteral("name"), u.name},
                                 {QStringLiteral("received_bytes"), count(u.receivedBytes)},
                                 {QStringLiteral("sent_bytes"), count(u.sentBytes)}});
    }
    const QJsonObject root{
        {QStringLiteral("seconds"), s.seconds},
        {QStringLiteral("samples"), s.samples},
        {QStringLiteral("network_name"), s.networkName},
        {QStringLiteral("download_bytes_per_second"), s.downloadBytesPerSecond},
        {QStringLiteral("upload_bytes_per_second"), s.uploadBytesPerSecond},
        {QStringLiteral("received_bytes"), count(s.receivedBytes)},
        {QStringLiteral("sent_bytes"), count(s.sentBytes)},
        {QStringLiteral("wifi_bytes"), count(s.wifiBytes)},
        {QStringLiteral("wifi_limit_bytes"), count(s.wifiLimitBytes)},
        {QStringLiteral("remaining_wifi_bytes"), static_cast<double>(s.remainingWifiBytes)},
        {QStringLiteral("processes"), processes},
        {QStringLiteral("date"), s.date},
        {QStringLiteral("daily_usage"), daily},
    };
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

}  // namespace zelvar
