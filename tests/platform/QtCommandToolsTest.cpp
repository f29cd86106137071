#include "platform/qt/QProcessCommandRunner.h"
#include "platform/qt/ToolNetworkSources.h"
#include "support/FakePorts.h"
#include "support/Testing.h"

namespace {

CommandResult sh(const QString& script, std::optional<double> timeout = std::nullopt,
                 CommandRequest::Stderr mode = CommandRequest::Stderr::Separate) {
    return QProcessCommandRunner().run({.program = "/bin/sh",
                                        .arguments = {"-c", script},
                                        .timeoutSeconds = timeout,
                                        .stderrMode = mode,
                                        .killGraceSeconds = 0.5});
}

}  // namespace

TEST(QProcessCommandRunnerLive, SeparatesOrMergesStderrDrainsBothAndKillsOnTimeOut) {
    const CommandResult separate = sh("echo out; echo err >&2; exit 3");
    EXPECT_EQ(std::tuple(separate.started, separate.exitCode, separate.succeeded(),
                         separate.standardOutput, separate.standardError),
              std::tuple(true, 3, false, "out\n", "err\n"));
    const CommandResult merged =
        sh("echo out; sleep 0.05; echo err >&2", std::nullopt, CommandRequest::Stderr::Merged);
    EXPECT_EQ(std::tuple(merged.succeeded(), merged.standardOutput),
              std::tuple(true, "out\nerr\n"));
    EXPECT_FALSE(QProcessCommandRunner().run({.program = "/nonexistent/tool"}).started);
    // Far more than a pipe holds, on both channels at once.
    const CommandResult large =
        sh("head -c 8000000 /dev/zero; head -c 3000000 /dev/zero >&2", 20.0);
    EXPECT_EQ(
        std::tuple(large.succeeded(), large.standardOutput.size(), large.standardError.size()),
        std::tuple(true, 8000000, 3000000));
    // The shell ignores SIGTERM, so only the kill after the grace ends it.
    const CommandResult hung = sh("trap '' TERM; echo partial; while :; do sleep 0.05; done", 0.3);
    EXPECT_EQ(std::tuple(hung.timedOut, hung.succeeded(), hung.standardOutput),
              std::tuple(true, false, "partial\n"));
}

TEST(ToolNetworkSourcesTest, EachToolRunsWithItsExactCommandLineAndNoTimeOut) {
    FakeCommandRunner runner;
    runner.respond("/usr/bin/nettop -P -x -J bytes_in,bytes_out -l 1", "nettop text", 1);
    runner.respond("/bin/ss -tinpH", "ss text");
    runner.respond("/usr/sbin/networksetup -getairportnetwork en0",
                   "Current Wi-Fi Network: Caf\xc3\xa9\n");
    const ProcessNetworkReading nettop = NettopProcessNetworkSource(runner).read();
    const ProcessNetworkReading ss = SocketStatisticsProcessNetworkSource(runner).read();
    const NetworkNameReading name = AirportNetworkNameSource(runner).read();
    // The exit status isn't looked at.
    EXPECT_EQ(std::tuple(nettop.grammar, nettop.text, ss.grammar, ss.text, name.form, name.text),
              std::tuple(ProcessNetworkReading::Grammar::Nettop, "nettop text",
                         ProcessNetworkReading::Grammar::SocketStatistics, "ss text",
                         NetworkNameReading::Form::AirportToolOutput,
                         QStringLiteral("Current Wi-Fi Network: Café\n")));
    // A hung tool holds up its sample rather than losing it.
    for (const CommandRequest& request : runner.requests()) {
        EXPECT_FALSE(request.timeoutSeconds.has_value()) << request.program.toStdString();
    }

    runner.respond("/usr/sbin/networksetup -getairportnetwork en0", "Current \xff\xfe network");
    FakeCommandRunner none;
    EXPECT_TRUE(AirportNetworkNameSource(runner).read().text.isEmpty() &&
                NettopProcessNetworkSource(none).read().text.isEmpty());
}
