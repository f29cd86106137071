#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

namespace zelvar {

// One entry of the system journal, as much of it as the power history reads.
struct JournalEntry {
    qint64 realtimeMicroseconds = 0;  // since 1970
    QString bootId;
    QString identifier;  // SYSLOG_IDENTIFIER, else _COMM
    QString message;
    QString messageId;  // MESSAGE_ID, empty when absent

    bool operator==(const JournalEntry&) const = default;
};

// Where this system keeps the raw material of the power history: which power log it keeps
// (macOS: `pmset -g log`, which the power subsystem runs through the command runner; Linux:
// the journal), the journal's entries, and the folders and files of diagnostic reports, panic
// records and battery history. It fetches; the power subsystem decides what each line means.
class PowerLogSource {
public:
    enum class Log {
        None,     // no power log at all
        Pmset,    // `/usr/bin/pmset -g log`
        Journal,  // journalEntries()
    };

    virtual ~PowerLogSource() = default;

    virtual Log log() const = 0;
    // The journal's entries that concern power (sleep, lid, kernel, crashes, out-of-memory
    // kills) later than `since`, oldest first, after the last such entry at or before it, so
    // that a boot begun before `since` is not taken for a new one. Nothing without a journal.
    // Blocks; call it off the main thread.
    virtual QList<JournalEntry> journalEntries(const QDateTime& since) = 0;
    // Folders of diagnostic reports named by the system's crash reporter, in scan order.
    virtual QStringList diagnosticDirectories() const = 0;
    // Folders of the kernel's panic records kept over a reboot.
    virtual QStringList panicRecordDirectories() const = 0;
    // Folders of crash reports in apport's "Key: value" form.
    virtual QStringList crashReportDirectories() const = 0;
    // Files of the battery's charge history, lines of "time<TAB>percent<TAB>state".
    virtual QStringList batteryHistoryFiles() const = 0;
};

}  // namespace zelvar
