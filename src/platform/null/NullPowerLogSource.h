#pragma once

#include "platform/PowerLogSource.h"

namespace zelvar {

// No power log, no reports: an empty history.
class NullPowerLogSource final : public PowerLogSource {
public:
    Log log() const override { return Log::None; }
    QList<JournalEntry> journalEntries(const QDateTime&) override { return {}; }
    QStringList diagnosticDirectories() const override { return {}; }
    QStringList panicRecordDirectories() const override { return {}; }
    QStringList crashReportDirectories() const override { return {}; }
    QStringList batteryHistoryFiles() const override { return {}; }
};

}  // namespace zelvar
