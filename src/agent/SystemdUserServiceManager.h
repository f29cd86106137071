#pragma once

#include "agent/ServiceManager.h"

namespace zelvar {

class CommandRunner;

// The agent as a systemd user unit, `<label>.service` in the user's unit folder, run through
// `systemctl --user`: restarted whenever it ends, at nice 10 and idle I/O priority, its output
// appended to daemon.stdout.log and daemon.stderr.log, started with the user's session.
class SystemdUserServiceManager final : public ServiceManager {
public:
    static inline const QString kDefaultSystemctl = QStringLiteral("/usr/bin/systemctl");

    SystemdUserServiceManager(CommandRunner& runner, QString unitDirectory, QString logDirectory,
                              QString systemctl = kDefaultSystemctl);

    QString definitionFile() const override;
    bool isLoaded() override;
    std::optional<QStringList> installedArguments() const override;
    void uninstall() override;
    std::optional<AgentError> writeDefinition(const QStringList& programArguments) override;
    std::optional<AgentError> load() override;

    // Whether a user manager answers at all: without one (a container, a minimal session) the
    // daemon is started by hand instead.
    static bool userManagerRunning(CommandRunner& runner, const QString& systemctl);

    static QString unitText(const QStringList& programArguments, const QString& logDirectory);
    // One word of ExecStart=, quoted so that blanks, quotes, backslashes, '%' and '$' survive.
    static QString quoteWord(const QString& word);
    // The words of an ExecStart= value, undoing quoteWord (and plain unquoted words).
    static QStringList splitWords(const QString& value);

private:
    std::optional<AgentError> systemctl(const QStringList& arguments);

    CommandRunner& m_runner;
    QString m_unitDirectory;
    QString m_logDirectory;
    QString m_systemctl;
};

}  // namespace zelvar
