#pragma once

#include <QString>

#include "platform/CommandRunner.h"

namespace zelvar {

struct SystemProfile;

// Installs, once and with the user's consent, a small root-owned script that lists the
// processes using audio, and a sudoers fragment that lets this one user run that one script
// without a password; then tells whether that works. The consent comes from the system's
// administrator dialog: osascript on macOS, pkexec elsewhere. No state beyond the two files.
class AudioPrivilegeManager final {
public:
    AudioPrivilegeManager() = delete;

    static inline const QString kHelperPath = QStringLiteral("/usr/local/bin/zelvar2-audio-helper");
    static inline const QString kSudoersPath = QStringLiteral("/etc/sudoers.d/zelvar2-audio");

    // Whether the helper is installed and runs through `sudo -n`, printing something that is
    // not a password request. With no audio client at that moment the helper prints nothing,
    // which also reads as unavailable. Starts a process: call it off the main thread.
    static bool isElevatedAccessAvailable(CommandRunner& runner,
                                          const QString& helperPath = kHelperPath);
    // The rule on the helper's output alone.
    static bool availableFromOutput(const QString& output);
    // Installs the helper after the system's password dialog, unless access is there already.
    // Blocks until the user has answered.
    static bool requestElevatedAccess(CommandRunner& runner, const SystemProfile& system);

    // The helper script: the audio daemon's clients (CoreAudio), then the holders of the
    // system's audio device nodes.
    static QString helperScript(const SystemProfile& system);
    // "<user> ALL=(root) NOPASSWD: <helper>\n".
    static QString sudoersLine(const QString& userName);
    // The root shell text that installs both files. Where the consent comes from pkexec the
    // fragment is checked with `visudo -cf` before it takes its place.
    static QString installShellText(const QString& userName, const SystemProfile& system);
    // `do shell script "<text>" with administrator privileges`, backslashes and then double
    // quotes escaped.
    static QString appleScriptText(const QString& shellText);
    // The command that asks for consent and runs `shellText` as root.
    static CommandRequest consentRequest(const QString& shellText, const SystemProfile& system);
    // The user running this program, empty when unknown.
    static QString currentUserName();
};

}  // namespace zelvar
