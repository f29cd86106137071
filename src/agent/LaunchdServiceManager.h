#pragma once

#include <QMap>
#include <QVariant>

#include "agent/ServiceManager.h"

namespace zelvar {

class CommandRunner;

// The agent as a launchd property list in ~/Library/LaunchAgents, run through launchctl in
// the user's "gui/<uid>" domain. Removal also boots out and deletes the earlier generations'
// labels and any property list whose label or arguments carry one of their markers.
class LaunchdServiceManager final : public ServiceManager {
public:
    static inline const QString kLaunchctl = QStringLiteral("/bin/launchctl");

    LaunchdServiceManager(CommandRunner& runner, QString launchAgentsDirectory,
                          QString logDirectory, uint uid);

    QString definitionFile() const override;
    bool isLoaded() override;
    std::optional<QStringList> installedArguments() const override;
    void uninstall() override;
    std::optional<AgentError> writeDefinition(const QStringList& programArguments) override;
    std::optional<AgentError> load() override;

    // The property list's XML, as the system's serialiser writes it: keys sorted, tabs.
    static QByteArray plistText(const QStringList& programArguments, const QString& logDirectory);
    // A property list's top-level "Label" (string) and "ProgramArguments" (strings); none for
    // a file that isn't a property list with a dictionary at its top.
    struct PlistFields {
        QString label;
        QStringList programArguments;
    };
    static std::optional<PlistFields> readPlist(const QByteArray& xml);

private:
    QString domainTarget() const;
    QString serviceTarget(const QString& label) const;
    void removeMatchingLegacyPlists();

    CommandRunner& m_runner;
    QString m_directory;
    QString m_logDirectory;
    uint m_uid;
};

}  // namespace zelvar
