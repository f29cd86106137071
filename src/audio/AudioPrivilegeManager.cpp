#include "audio/AudioPrivilegeManager.h"

#include <QFileInfo>
#include <QStringDecoder>

#include "common/Log.h"
#include "platform/SystemProfile.h"

namespace zelvar {
namespace {

const QString kSudoProgram = QStringLiteral("/usr/bin/sudo");
const QString kOsascriptProgram = QStringLiteral("/usr/bin/osascript");
const QString kPkexecProgram = QStringLiteral("/usr/bin/pkexec");
constexpr double kSudoTimeout = 3.0;

QString utf8OrEmpty(const QByteArray& bytes) {
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8(bytes);
    return utf8.hasError() ? QString() : text;
}

// A word for the shell in single quotes.
QString shellQuoted(const QString& text) {
    return u'\'' + QString(text).replace(u'\'', QLatin1String("'\\''")) + u'\'';
}

}  // namespace

bool AudioPrivilegeManager::isElevatedAccessAvailable(CommandRunner& runner,
                                                      const QString& helperPath) {
    const QFileInfo helper(helperPath);
    if (!helper.isFile() || !helper.isExecutable()) {
        return false;
    }
    const CommandResult result = runner.run({.program = kSudoProgram,
                                             .arguments = {QStringLiteral("-n"), helperPath},
                                             .timeoutSeconds = kSudoTimeout,
                                             .pollStepSeconds = 0.05,
                                             .stderrMode = CommandRequest::Stderr::Merged,
                                             .killGraceSeconds = 0.2});
    return availableFromOutput(utf8OrEmpty(result.standardOutput));
}

bool AudioPrivilegeManager::availableFromOutput(const QString& output) {
    // sudo -n says that it needs a password when the fragment doesn't cover this user.
    return !output.isEmpty() && !output.contains(QLatin1String("password"));
}

bool AudioPrivilegeManager::requestElevatedAccess(CommandRunner& runner,
                                                  const SystemProfile& system) {
    if (isElevatedAccessAvailable(runner)) {
        return true;
    }
    const QString user = currentUserName();
    if (user.isEmpty()) {
        logLine(QStringLiteral("[AudioPrivilegeManager] No user name to give the helper to"));
        return false;
    }
    const CommandRequest request = consentRequest(installShellText(user, system), system);
    const CommandResult result = runner.run(request);
    if (!result.started) {
        logLine(QStringLiteral("[AudioPrivilegeManager] Could not ask for consent: ") +
                request.program + QStringLiteral(" did not start"));
        return false;
    }
    const QString output = utf8OrEmpty(result.standardOutput);
    if (!result.crashed && result.exitCode == 0 && !output.contains(QLatin1String("error"))) {
        logLine(QStringLiteral("[AudioPrivilegeManager] Installed elevated helper at ") +
                kHelperPath);
        return true;
    }
    logLine(QStringLiteral("[AudioPrivilegeManager] Failed to install elevated helper: ") +
            utf8OrEmpty(result.standardError));
    return false;
}

QString AudioPrivilegeManager::helperScript(const SystemProfile& system) {
    const QString& lsof = system.lsofProgram;
    return QStringList{
        QStringLiteral("#!/bin/bash"),
        QStringLiteral("# zelvar2-audio-helper — runs lsof as root to find audio-using processes"),
        QStringLiteral("set -e"),
        QString(),
        QStringLiteral("COREAUDIO_PID=$(pgrep -x coreaudiod 2>/dev/null || true)"),
        QString(),
        QStringLiteral("if [ -n \"$COREAUDIO_PID\" ]; then"),
        QStringLiteral("    ") + lsof +
            QStringLiteral(" -nP +E -c coreaudiod 2>/dev/null | awk 'NR>1 {print $1}' | sort -u "
                           "| grep -v -E '^(coreaudiod|lsof|COMMAND)$' || true"),
        QStringLiteral("fi"),
        QString(),
        QStringLiteral("for dev in ") + system.audioDeviceNodes + QStringLiteral("; do"),
        QStringLiteral("    if [ -e \"$dev\" ]; then"),
        QStringLiteral("        ") + lsof +
            QStringLiteral(" -nP -F cn \"$dev\" 2>/dev/null | awk '/^c/{cmd=$0} "
                           "/^n/{if(cmd && cmd!=\"c\" && cmd!=\"ccoreaudiod\" && "
                           "cmd!=\"clsof\"){print substr(cmd,2)}}' || true"),
        QStringLiteral("    fi"),
        QStringLiteral("done")}
        .join(u'\n');
}

QString AudioPrivilegeManager::sudoersLine(const QString& userName) {
    return userName + QStringLiteral(" ALL=(root) NOPASSWD: ") + kHelperPath + u'\n';
}

QString AudioPrivilegeManager::installShellText(const QString& userName,
                                                const SystemProfile& system) {
    QString text = QStringLiteral("mkdir -p /usr/local/bin\n") + QStringLiteral("cat > ") +
                   kHelperPath + QStringLiteral(" <<'EOF'\n") + helperScript(system) +
                   QStringLiteral("\nEOF\n") + QStringLiteral("chmod +x ") + kHelperPath + u'\n';
    if (system.coreAudio) {
        return text + QStringLiteral("echo '") + sudoersLine(userName) +
               QStringLiteral("' | tee ") + kSudoersPath + u'\n' + QStringLiteral("chmod 440 ") +
               kSudoersPath + u'\n';
    }
    // A broken fragment would lock every user out of sudo: it is written beside the real one
    // under a name with a dot, which sudo skips, checked, and only then moved into place.
    return text + QStringLiteral("tmp=$(mktemp ") + kSudoersPath +
           QStringLiteral(".XXXXXX) || exit 1\n") + QStringLiteral("printf '%s' ") +
           shellQuoted(sudoersLine(userName)) + QStringLiteral(" > \"$tmp\"\n") +
           QStringLiteral(
               "if ! /usr/sbin/visudo -cf \"$tmp\" >/dev/null; then rm -f "
               "\"$tmp\"; echo 'error: the sudoers fragment is invalid'; exit 1; "
               "fi\n") +
           QStringLiteral("chmod 440 \"$tmp\"\n") + QStringLiteral("mv \"$tmp\" ") + kSudoersPath +
           u'\n';
}

QString AudioPrivilegeManager::appleScriptText(const QString& shellText) {
    QString escaped = shellText;
    escaped.replace(u'\\', QLatin1String("\\\\"));
    escaped.replace(u'"', QLatin1String("\\\""));
    return QStringLiteral("do shell script \"") + escaped +
           QStringLiteral("\" with administrator privileges");
}

CommandRequest AudioPrivilegeManager::consentRequest(const QString& shellText,
                                                     const SystemProfile& system) {
    // No time-out: the dialog stays as long as the user leaves it.
    if (system.coreAudio) {
        return {.program = kOsascriptProgram,
                .arguments = {QStringLiteral("-e"), appleScriptText(shellText)},
                .timeoutSeconds = std::nullopt};
    }
    return {.program = kPkexecProgram,
            .arguments = {QStringLiteral("/bin/sh"), QStringLiteral("-c"), shellText},
            .timeoutSeconds = std::nullopt};
}

QString AudioPrivilegeManager::currentUserName() {
    const QString user = qEnvironmentVariable("USER");
    return user.isEmpty() ? qEnvironmentVariable("LOGNAME") : user;
}

}  // namespace zelvar
