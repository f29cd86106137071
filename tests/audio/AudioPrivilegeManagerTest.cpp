#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "audio/AudioPrivilegeManager.h"
#include "platform/SystemProfile.h"
#include "support/FakePorts.h"
#include "support/QtPrinters.h"

namespace zelvar {
namespace {

using test::FakeCommandRunner;

const QString kMacHelper =
    R"(#!/bin/bash
# zelvar2-audio-helper — runs lsof as root to find audio-using processes
set -e

COREAUDIO_PID=$(pgrep -x coreaudiod 2>/dev/null || true)

if [ -n "$COREAUDIO_PID" ]; then
    /usr/sbin/lsof -nP +E -c coreaudiod 2>/dev/null | awk 'NR>1 {print $1}' | sort -u | grep -v -E '^(coreaudiod|lsof|COMMAND)$' || true
fi

for dev in /dev/audio /dev/audio0 /dev/dsp /dev/mixer; do
    if [ -e "$dev" ]; then
        /usr/sbin/lsof -nP -F cn "$dev" 2>/dev/null | awk '/^c/{cmd=$0} /^n/{if(cmd && cmd!="c" && cmd!="ccoreaudiod" && cmd!="clsof"){print substr(cmd,2)}}' || true
    fi
done)";

// Whether `sh -n` (or bash -n) accepts `text` as a script.
bool parsesAsShell(const QString& shell, const QString& text) {
    QProcess process;
    process.start(shell, {"-n", "-c", text});
    return process.waitForFinished(5000) && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

TEST(AudioPrivilegeManagerTest, TheHelperAndTheSudoersLineAreExact) {
    EXPECT_EQ(AudioPrivilegeManager::helperScript(macSystemProfile()), kMacHelper);
    EXPECT_EQ(AudioPrivilegeManager::sudoersLine("anna"),
              "anna ALL=(root) NOPASSWD: /usr/local/bin/zelvar2-audio-helper\n");
    // Here: this system's lsof and ALSA's device nodes.
    QString linux = kMacHelper;
    linux.replace("/usr/sbin/lsof", "/usr/bin/lsof")
        .replace("/dev/audio /dev/audio0 /dev/dsp /dev/mixer", "/dev/snd/*");
    EXPECT_EQ(AudioPrivilegeManager::helperScript(linuxSystemProfile()), linux);
    EXPECT_TRUE(parsesAsShell("/bin/bash", linux));
}

TEST(AudioPrivilegeManagerTest, TheInstallTextIsEscapedForTheConsentDialog) {
    const QString user = "o'b\"r\\i$e`n`";
    const QString shell = AudioPrivilegeManager::installShellText(user, macSystemProfile());
    EXPECT_EQ(shell,
              "mkdir -p /usr/local/bin\n"
              "cat > /usr/local/bin/zelvar2-audio-helper <<'EOF'\n" +
                  kMacHelper +
                  "\nEOF\n"
                  "chmod +x /usr/local/bin/zelvar2-audio-helper\n"
                  "echo '" +
                  AudioPrivilegeManager::sudoersLine(user) +
                  "' | tee /etc/sudoers.d/zelvar2-audio\n"
                  "chmod 440 /etc/sudoers.d/zelvar2-audio\n");
    const QString script = AudioPrivilegeManager::appleScriptText(shell);
    EXPECT_TRUE(script.startsWith("do shell script \"mkdir -p /usr/local/bin\n"));
    EXPECT_TRUE(
        script.endsWith("chmod 440 /etc/sudoers.d/zelvar2-audio\n\" with administrator "
                        "privileges"));
    // Backslashes doubled first, then quotes escaped; $ and backticks untouched.
    EXPECT_TRUE(script.contains(R"(echo 'o'b\"r\\i$e`n` ALL=(root))"));
    EXPECT_TRUE(script.contains(R"(if [ -n \"$COREAUDIO_PID\" ]; then)"));
    EXPECT_EQ(AudioPrivilegeManager::appleScriptText(R"(a\"b)"),
              R"(do shell script "a\\\"b" with administrator privileges)");

    const CommandRequest osascript =
        AudioPrivilegeManager::consentRequest(shell, macSystemProfile());
    EXPECT_EQ(osascript.program, "/usr/bin/osascript");
    EXPECT_EQ(osascript.arguments, (QStringList{"-e", script}));
    EXPECT_EQ(osascript.timeoutSeconds, std::nullopt);
}

TEST(AudioPrivilegeManagerTest, PkexecInstallsTheFragmentOnlyAfterVisudoAcceptsIt) {
    const QString user = "o'b\"r\\i$e`n`";
    const QString shell = AudioPrivilegeManager::installShellText(user, linuxSystemProfile());
    const CommandRequest pkexec =
        AudioPrivilegeManager::consentRequest(shell, linuxSystemProfile());
    EXPECT_EQ(pkexec.program, "/usr/bin/pkexec");
    EXPECT_EQ(pkexec.arguments, (QStringList{"/bin/sh", "-c", shell}));
    EXPECT_TRUE(parsesAsShell("/bin/sh", shell));
    const qsizetype check = shell.indexOf("/usr/sbin/visudo -cf \"$tmp\"");
    ASSERT_GE(check, 0);
    EXPECT_LT(check, shell.indexOf("mv \"$tmp\" /etc/sudoers.d/zelvar2-audio\n"));
}

TEST(AudioPrivilegeManagerTest, AccessNeedsAnInstalledHelperThatPrintsWithoutAPassword) {
    EXPECT_FALSE(AudioPrivilegeManager::availableFromOutput("passwordmanager\n"));

    FakeCommandRunner commands;
    QTemporaryDir dir;
    const QString helper = dir.filePath("helper");
    // Not there, then not executable: sudo is never asked.
    EXPECT_FALSE(AudioPrivilegeManager::isElevatedAccessAvailable(commands, helper));
    QFile file(helper);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    EXPECT_FALSE(AudioPrivilegeManager::isElevatedAccessAvailable(commands, helper));
    EXPECT_TRUE(commands.requests().isEmpty());

    file.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    commands.respond("/usr/bin/sudo -n " + helper, "Spotify\n");
    EXPECT_TRUE(AudioPrivilegeManager::isElevatedAccessAvailable(commands, helper));
    commands.respond("/usr/bin/sudo -n " + helper, "");
    EXPECT_FALSE(AudioPrivilegeManager::isElevatedAccessAvailable(commands, helper));
    ASSERT_EQ(commands.requests().size(), 2);
    EXPECT_EQ(commands.requests().first().timeoutSeconds, 3.0);
    EXPECT_EQ(commands.requests().first().stderrMode, CommandRequest::Stderr::Merged);
}

}  // namespace
}  // namespace zelvar
