#include "agent/SystemdUserServiceManager.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

#include "agent/LaunchAgentManager.h"
#include "agent/ServiceCommand.h"
#include "platform/CommandRunner.h"

namespace zelvar {

namespace {

QString unitName(const QString& label) {
    return label + QStringLiteral(".service");
}

// In paths of StandardOutput= only specifiers are expanded.
QString escapeSpecifiers(QString path) {
    return path.replace(QLatin1Char('%'), QStringLiteral("%%"));
}

}  // namespace

SystemdUserServiceManager::SystemdUserServiceManager(CommandRunner& runner, QString unitDirectory,
                                                     QString logDirectory, QString systemctl)
    : m_runner(runner),
      m_unitDirectory(std::move(unitDirectory)),
      m_logDirectory(std::move(logDirectory)),
      m_systemctl(std::move(systemctl)) {}

QString SystemdUserServiceManager::definitionFile() const {
    return QDir(m_unitDirectory).filePath(unitName(LaunchAgentManager::kLabel));
}

QString SystemdUserServiceManager::quoteWord(const QString& word) {
    QString quoted = QStringLiteral("\"");
    for (const QChar c : word) {
        if (c == QLatin1Char('\\') || c == QLatin1Char('"')) {
            quoted += QLatin1Char('\\');
            quoted += c;
        } else if (c == QLatin1Char('%')) {
            quoted += QStringLiteral("%%");
        } else if (c == QLatin1Char('$')) {
            quoted += QStringLiteral("$$");
        } else if (c == QLatin1Char('\n')) {
            quoted += QStringLiteral("\\n");
        } else {
            quoted += c;
        }
    }
    return quoted + QLatin1Char('"');
}

QStringList SystemdUserServiceManager::splitWords(const QString& value) {
    QStringList words;
    QString word;
    bool inWord = false;
    bool quoted = false;
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar c = value[i];
        const QChar next = i + 1 < value.size() ? value[i + 1] : QChar();
        if (!quoted && c.isSpace()) {
            if (inWord) {
                words.append(word);
                word.clear();
                inWord = false;
            }
            continue;
        }
        inWord = true;
        if (c == QLatin1Char('"')) {
            quoted = !quoted;
        } else if (c == QLatin1Char('\\') && !next.isNull()) {
            word += next == QLatin1Char('n') ? QChar(QLatin1Char('\n')) : next;
            ++i;
        } else if ((c == QLatin1Char('%') || c == QLatin1Char('$')) && next == c) {
            word += c;
            ++i;
        } else {
            word += c;
        }
    }
    if (inWord) {
        words.append(word);
    }
    return words;
}

QString SystemdUserServiceManager::unitText(const QStringList& programArguments,
                                            const QString& logDirectory) {
    QStringList words;
    for (const QString& argument : programArguments) {
        words.append(quoteWord(argument));
    }
    const QDir logs(logDirectory);
    return QStringLiteral(
               "[Unit]\n"
               "Description=Zelvar+ background sampler\n"
               "\n"
               "[Service]\n"
               "ExecStart=%1\n"
               "Restart=always\n"
               "Nice=10\n"
               "IOSchedulingClass=idle\n"
               "StandardOutput=append:%2\n"
               "StandardError=append:%3\n"
               "\n"
               "[Install]\n"
               "WantedBy=default.target\n")
        .arg(words.join(QLatin1Char(' ')),
             escapeSpecifiers(logs.filePath(QStringLiteral("daemon.stdout.log"))),
             escapeSpecifiers(logs.filePath(QStringLiteral("daemon.stderr.log"))));
}

std::optional<AgentError> SystemdUserServiceManager::systemctl(const QStringList& arguments) {
    const auto result = ServiceCommand::run(m_runner, m_systemctl,
                                            QStringList{QStringLiteral("--user")} + arguments);
    if (const auto* error = std::get_if<AgentError>(&result)) {
        return *error;
    }
    return std::nullopt;
}

bool SystemdUserServiceManager::isLoaded() {
    const auto result = ServiceCommand::run(
        m_runner, m_systemctl,
        {QStringLiteral("--user"), QStringLiteral("show"),
         QStringLiteral("--property=LoadState,ActiveState"), unitName(LaunchAgentManager::kLabel)});
    const auto* output = std::get_if<QString>(&result);
    if (!output) {
        return false;
    }
    const QStringList lines = output->split(QLatin1Char('\n'));
    return lines.contains(QStringLiteral("LoadState=loaded")) &&
           (lines.contains(QStringLiteral("ActiveState=active")) ||
            lines.contains(QStringLiteral("ActiveState=activating")));
}

std::optional<QStringList> SystemdUserServiceManager::installedArguments() const {
    QFile file(definitionFile());
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith("ExecStart=")) {
            return splitWords(QString::fromUtf8(line.mid(10)));
        }
    }
    return std::nullopt;
}

void SystemdUserServiceManager::uninstall() {
    bool removed = false;
    for (const QString& label :
         QStringList{LaunchAgentManager::kLabel} + LaunchAgentManager::kLegacyLabels) {
        const QString unit = QDir(m_unitDirectory).filePath(unitName(label));
        if (!QFile::exists(unit)) {
            continue;
        }
        ServiceCommand::runIgnoringErrors(m_runner, m_systemctl,
                                          {QStringLiteral("--user"), QStringLiteral("disable"),
                                           QStringLiteral("--now"), unitName(label)});
        removed = QFile::remove(unit) || removed;
    }
    if (removed) {
        ServiceCommand::runIgnoringErrors(
            m_runner, m_systemctl, {QStringLiteral("--user"), QStringLiteral("daemon-reload")});
    }
}

std::optional<AgentError> SystemdUserServiceManager::writeDefinition(
    const QStringList& programArguments) {
    QSaveFile file(definitionFile());
    const QByteArray text = unitText(programArguments, m_logDirectory).toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit()) {
        return AgentError{-1, file.errorString()};
    }
    return std::nullopt;
}

std::optional<AgentError> SystemdUserServiceManager::load() {
    const QString unit = unitName(LaunchAgentManager::kLabel);
    for (const QStringList& step :
         {QStringList{QStringLiteral("daemon-reload")}, QStringList{QStringLiteral("enable"), unit},
          QStringList{QStringLiteral("restart"), unit}}) {
        if (auto error = systemctl(step)) {
            return error;
        }
    }
    return std::nullopt;
}

bool SystemdUserServiceManager::userManagerRunning(CommandRunner& runner,
                                                   const QString& systemctl) {
    CommandRequest request;
    request.program = systemctl;
    request.arguments = {QStringLiteral("--user"), QStringLiteral("show-environment")};
    request.timeoutSeconds = 2.0;
    request.stderrMode = CommandRequest::Stderr::Discarded;
    return runner.run(request).succeeded();
}

}  // namespace zelvar
