#include "agent/LaunchdServiceManager.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QXmlStreamReader>

#include "agent/LaunchAgentManager.h"
#include "agent/ServiceCommand.h"

namespace zelvar {

namespace {

QString escapeXml(const QString& text) {
    QString escaped = text;
    escaped.replace(QLatin1Char('&'), QStringLiteral("&amp;"));
    escaped.replace(QLatin1Char('<'), QStringLiteral("&lt;"));
    escaped.replace(QLatin1Char('>'), QStringLiteral("&gt;"));
    return escaped;
}

QString stringElement(const QString& value, int depth) {
    return QString(depth, QLatin1Char('\t')) + QStringLiteral("<string>") + escapeXml(value) +
           QStringLiteral("</string>\n");
}

}  // namespace

LaunchdServiceManager::LaunchdServiceManager(CommandRunner& runner, QString launchAgentsDirectory,
                                             QString logDirectory, uint uid)
    : m_runner(runner),
      m_directory(std::move(launchAgentsDirectory)),
      m_logDirectory(std::move(logDirectory)),
      m_uid(uid) {}

QString LaunchdServiceManager::definitionFile() const {
    return QDir(m_directory).filePath(LaunchAgentManager::kLabel + QStringLiteral(".plist"));
}

QString LaunchdServiceManager::domainTarget() const {
    return QStringLiteral("gui/") + QString::number(m_uid);
}

QString LaunchdServiceManager::serviceTarget(const QString& label) const {
    return domainTarget() + QLatin1Char('/') + label;
}

QByteArray LaunchdServiceManager::plistText(const QStringList& programArguments,
                                            const QString& logDirectory) {
    const QDir logs(logDirectory);
    QString text = QStringLiteral(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist version=\"1.0\">\n"
        "<dict>\n"
        "\t<key>KeepAlive</key>\n"
        "\t<true/>\n"
        "\t<key>Label</key>\n");
    text += stringElement(LaunchAgentManager::kLabel, 1);
    text += QStringLiteral(
        "\t<key>LowPriorityIO</key>\n"
        "\t<true/>\n"
        "\t<key>Nice</key>\n"
        "\t<integer>10</integer>\n"
        "\t<key>ProcessType</key>\n"
        "\t<string>Background</string>\n"
        "\t<key>ProgramArguments</key>\n"
        "\t<array>\n");
    for (const QString& argument : programArguments) {
        text += stringElement(argument, 2);
    }
    text += QStringLiteral(
        "\t</array>\n"
        "\t<key>RunAtLoad</key>\n"
        "\t<true/>\n"
        "\t<key>StandardErrorPath</key>\n");
    text += stringElement(logs.filePath(QStringLiteral("daemon.stderr.log")), 1);
    text += QStringLiteral("\t<key>StandardOutPath</key>\n");
    text += stringElement(logs.filePath(QStringLiteral("daemon.stdout.log")), 1);
    text += QStringLiteral("</dict>\n</plist>\n");
    return text.toUtf8();
}

std::optional<LaunchdServiceManager::PlistFields> LaunchdServiceManager::readPlist(
    const QByteArray& xml) {
    QXmlStreamReader reader(xml);
    PlistFields fields;
    int depth = 0;  // 1 inside <plist>, 2 inside the top <dict>
    bool sawDictionary = false;
    QString key;
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        if (token == QXmlStreamReader::StartElement) {
            const auto name = reader.name();
            if (depth == 0 && name == QLatin1String("plist")) {
                depth = 1;
            } else if (depth == 1 && name == QLatin1String("dict") && !sawDictionary) {
                depth = 2;
                sawDictionary = true;
            } else if (depth == 2 && name == QLatin1String("key")) {
                key = reader.readElementText();
            } else if (depth == 2 && key == QLatin1String("Label") &&
                       name == QLatin1String("string")) {
                fields.label = reader.readElementText();
                key.clear();
            } else if (depth == 2 && key == QLatin1String("ProgramArguments") &&
                       name == QLatin1String("array")) {
                QStringList arguments;
                bool allStrings = true;
                while (reader.readNextStartElement()) {
                    if (reader.name() == QLatin1String("string")) {
                        arguments.append(reader.readElementText());
                    } else {
                        allStrings = false;
                        reader.skipCurrentElement();
                    }
                }
                fields.programArguments = allStrings ? arguments : QStringList();
                key.clear();
            } else if (depth == 2) {
                reader.skipCurrentElement();
                key.clear();
            } else {
                return std::nullopt;
            }
        } else if (token == QXmlStreamReader::EndElement && depth == 2 &&
                   reader.name() == QLatin1String("dict")) {
            depth = 1;
        }
    }
    if (reader.hasError() || !sawDictionary) {
        return std::nullopt;
    }
    return fields;
}

bool LaunchdServiceManager::isLoaded() {
    const auto result = ServiceCommand::run(
        m_runner, kLaunchctl, {QStringLiteral("print"), serviceTarget(LaunchAgentManager::kLabel)});
    const auto* output = std::get_if<QString>(&result);
    return output && output->contains(LaunchAgentManager::kLabel);
}

std::optional<QStringList> LaunchdServiceManager::installedArguments() const {
    QFile file(definitionFile());
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const auto fields = readPlist(file.readAll());
    if (!fields) {
        return std::nullopt;
    }
    return fields->programArguments;
}

void LaunchdServiceManager::uninstall() {
    for (const QString& label :
         QStringList{LaunchAgentManager::kLabel} + LaunchAgentManager::kLegacyLabels) {
        const QString plist = QDir(m_directory).filePath(label + QStringLiteral(".plist"));
        ServiceCommand::runIgnoringErrors(m_runner, kLaunchctl,
                                          {QStringLiteral("bootout"), serviceTarget(label)});
        ServiceCommand::runIgnoringErrors(m_runner, kLaunchctl,
                                          {QStringLiteral("bootout"), domainTarget(), plist});
        QFile::remove(plist);
    }
    removeMatchingLegacyPlists();
}

void LaunchdServiceManager::removeMatchingLegacyPlists() {
    const QDir directory(m_directory);
    if (!directory.exists()) {
        return;
    }
    for (const QFileInfo& entry : directory.entryInfoList(QDir::Files, QDir::Name)) {
        // The extension test is exact: "PLIST" isn't read.
        if (entry.suffix() != QLatin1String("plist")) {
            continue;
        }
        QFile file(entry.filePath());
        if (!file.open(QIODevice::ReadOnly)) {
            continue;
        }
        const auto fields = readPlist(file.readAll());
        if (!fields) {
            continue;
        }
        const QString arguments = fields->programArguments.join(QLatin1Char(' '));
        const bool matches =
            std::any_of(LaunchAgentManager::kLegacyMarkers.begin(),
                        LaunchAgentManager::kLegacyMarkers.end(), [&](const QString& marker) {
                            return fields->label.contains(marker) || arguments.contains(marker);
                        });
        if (!matches) {
            continue;
        }
        if (!fields->label.isEmpty()) {
            ServiceCommand::runIgnoringErrors(
                m_runner, kLaunchctl, {QStringLiteral("bootout"), serviceTarget(fields->label)});
        }
        ServiceCommand::runIgnoringErrors(
            m_runner, kLaunchctl, {QStringLiteral("bootout"), domainTarget(), entry.filePath()});
        QFile::remove(entry.filePath());
    }
}

std::optional<AgentError> LaunchdServiceManager::writeDefinition(
    const QStringList& programArguments) {
    QSaveFile file(definitionFile());
    const QByteArray text = plistText(programArguments, m_logDirectory);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit()) {
        return AgentError{-1, file.errorString()};
    }
    return std::nullopt;
}

std::optional<AgentError> LaunchdServiceManager::load() {
    for (const QStringList& step :
         {QStringList{QStringLiteral("bootstrap"), domainTarget(), definitionFile()},
          QStringList{QStringLiteral("kickstart"), QStringLiteral("-k"),
                      serviceTarget(LaunchAgentManager::kLabel)}}) {
        const auto result = ServiceCommand::run(m_runner, kLaunchctl, step);
        if (const auto* error = std::get_if<AgentError>(&result)) {
            return *error;
        }
    }
    return std::nullopt;
}

}  // namespace zelvar
