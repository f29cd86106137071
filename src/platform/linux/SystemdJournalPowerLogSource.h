#pragma once

#include <QString>
#include <QStringList>

#include "platform/PowerLogSource.h"

namespace zelvar {

// Linux's power log: the systemd journal read through sd-journal (only the entries of
// systemd-sleep, systemd-logind, systemd-coredump, systemd-oomd and the kernel), pstore's
// panic records, apport's crash reports and upower's charge history files. A machine without a
// journal (a container) gives no entries, silently.
class SystemdJournalPowerLogSource final : public PowerLogSource {
public:
    struct Roots {
        // Journal files to read instead of the machine's own journal; for tests.
        QStringList journalFiles;
        QString pstore = QStringLiteral("/sys/fs/pstore");
        QString upower = QStringLiteral("/var/lib/upower");
        QString crash = QStringLiteral("/var/crash");
    };

    explicit SystemdJournalPowerLogSource(Roots roots);

    Log log() const override { return Log::Journal; }
    QList<JournalEntry> journalEntries(const QDateTime& since) override;
    QStringList diagnosticDirectories() const override { return {}; }
    QStringList panicRecordDirectories() const override { return {m_roots.pstore}; }
    QStringList crashReportDirectories() const override { return {m_roots.crash}; }
    QStringList batteryHistoryFiles() const override;

private:
    Roots m_roots;
};

}  // namespace zelvar
