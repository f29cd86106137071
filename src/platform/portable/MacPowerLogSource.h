#pragma once

#include <QString>

#include "platform/PowerLogSource.h"

namespace zelvar {

// macOS's power log is `pmset -g log`, which the power subsystem runs through the command
// runner; its diagnostic reports are the system's and the user's DiagnosticReports folders.
// No journal, no panic records or crash files apart from the reports, no charge history files.
class MacPowerLogSource final : public PowerLogSource {
public:
    explicit MacPowerLogSource(QString home) : m_home(std::move(home)) {}

    Log log() const override { return Log::Pmset; }
    QList<JournalEntry> journalEntries(const QDateTime&) override { return {}; }
    QStringList diagnosticDirectories() const override {
        return {QStringLiteral("/Library/Logs/DiagnosticReports"),
                m_home + QStringLiteral("/Library/Logs/DiagnosticReports")};
    }
    QStringList panicRecordDirectories() const override { return {}; }
    QStringList crashReportDirectories() const override { return {}; }
    QStringList batteryHistoryFiles() const override { return {}; }

private:
    QString m_home;
};

}  // namespace zelvar
