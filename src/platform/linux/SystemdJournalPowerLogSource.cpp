#include "platform/linux/SystemdJournalPowerLogSource.h"

#include <systemd/sd-journal.h>

#include <QDir>
#include <memory>
#include <vector>

namespace zelvar {
namespace {

struct JournalCloser {
    void operator()(sd_journal* journal) const { sd_journal_close(journal); }
};
using Journal = std::unique_ptr<sd_journal, JournalCloser>;

// The identifiers whose entries concern power; the kernel's carry "kernel".
constexpr const char* kIdentifiers[] = {"systemd-sleep", "systemd-logind", "systemd-coredump",
                                        "systemd-oomd", "kernel"};

// The value of `field` in the current entry, or empty.
QString field(sd_journal* journal, const char* name) {
    const void* data = nullptr;
    size_t length = 0;
    if (sd_journal_get_data(journal, name, &data, &length) < 0) {
        return {};
    }
    const std::size_t prefix = std::strlen(name) + 1;  // "NAME="
    if (length < prefix) {
        return {};
    }
    return QString::fromUtf8(static_cast<const char*>(data) + prefix,
                             static_cast<qsizetype>(length - prefix));
}

JournalEntry current(sd_journal* journal) {
    JournalEntry entry;
    uint64_t usec = 0;
    if (sd_journal_get_realtime_usec(journal, &usec) >= 0) {
        entry.realtimeMicroseconds = static_cast<qint64>(usec);
    }
    entry.bootId = field(journal, "_BOOT_ID");
    entry.identifier = field(journal, "SYSLOG_IDENTIFIER");
    if (entry.identifier.isEmpty()) {
        entry.identifier = field(journal, "_COMM");
    }
    entry.message = field(journal, "MESSAGE");
    entry.messageId = field(journal, "MESSAGE_ID");
    return entry;
}

Journal open(const QStringList& files) {
    sd_journal* journal = nullptr;
    int result = 0;
    if (files.isEmpty()) {
        result = sd_journal_open(&journal, SD_JOURNAL_LOCAL_ONLY);
    } else {
        std::vector<QByteArray> paths;
        for (const QString& file : files) {
            paths.push_back(QFile::encodeName(file));
        }
        std::vector<const char*> pointers;
        for (const QByteArray& path : paths) {
            pointers.push_back(path.constData());
        }
        pointers.push_back(nullptr);
        result = sd_journal_open_files(&journal, pointers.data(), 0);
    }
    return Journal(result < 0 ? nullptr : journal);
}

}  // namespace

SystemdJournalPowerLogSource::SystemdJournalPowerLogSource(Roots roots)
    : m_roots(std::move(roots)) {}

QList<JournalEntry> SystemdJournalPowerLogSource::journalEntries(const QDateTime& since) {
    const Journal journal = open(m_roots.journalFiles);
    if (!journal) {
        return {};
    }
    sd_journal* j = journal.get();
    // A message is rarely longer; the rest of a long one is of no use here.
    sd_journal_set_data_threshold(j, 64 * 1024);
    for (const char* identifier : kIdentifiers) {
        const QByteArray match = QByteArray("SYSLOG_IDENTIFIER=") + identifier;
        if (sd_journal_add_match(j, match.constData(), static_cast<size_t>(match.size())) < 0) {
            return {};
        }
    }
    const qint64 sinceMs = since.toMSecsSinceEpoch();
    if (sinceMs <= 0) {
        sd_journal_seek_head(j);
    } else {
        sd_journal_seek_realtime_usec(j, static_cast<uint64_t>(sinceMs) * 1000);
    }
    QList<JournalEntry> entries;
    // The entry before `since`, for the boot it belongs to.
    if (sinceMs > 0 && sd_journal_previous(j) > 0) {
        entries.append(current(j));
    }
    while (sd_journal_next(j) > 0) {
        entries.append(current(j));
    }
    return entries;
}

QStringList SystemdJournalPowerLogSource::batteryHistoryFiles() const {
    const QDir folder(m_roots.upower);
    QStringList files;
    for (const QString& name :
         folder.entryList({QStringLiteral("history-charge-*.dat")}, QDir::Files, QDir::Name)) {
        files << folder.filePath(name);
    }
    return files;
}

}  // namespace zelvar
