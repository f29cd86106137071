#include "platform/portable/WifiToolOutput.h"
#include "platform/qt/LaunchctlServiceJobs.h"
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

TEST(ToolNetworkSourcesTest, ProcessToolsRunWithTheirExactCommandLineAndNoTimeOut) {
    FakeCommandRunner runner;
    runner.respond("/usr/bin/nettop -P -x -J bytes_in,bytes_out -l 1", "nettop text", 1);
    runner.respond("/bin/ss -tinpH", "ss text");
    const ProcessNetworkReading nettop = NettopProcessNetworkSource(runner).read();
    const ProcessNetworkReading ss = SocketStatisticsProcessNetworkSource(runner).read();
    // The exit status isn't looked at.
    EXPECT_EQ(std::tuple(nettop.grammar, nettop.text, ss.grammar, ss.text),
              std::tuple(ProcessNetworkReading::Grammar::Nettop, "nettop text",
                         ProcessNetworkReading::Grammar::SocketStatistics, "ss text"));
    // A hung tool holds up its sample rather than losing it.
    for (const CommandRequest& request : runner.requests()) {
        EXPECT_FALSE(request.timeoutSeconds.has_value()) << request.program.toStdString();
    }
    FakeCommandRunner none;
    EXPECT_TRUE(NettopProcessNetworkSource(none).read().text.isEmpty());
}

namespace {

// `networksetup -listallhardwareports` as the tool lays it out (a blank line, then three
// lines a port), on a Mac whose Wi-Fi is en1.
const QByteArray kHardwarePorts =
    "\nHardware Port: Ethernet\nDevice: en0\nEthernet Address: 3c:07:54:00:00:01\n"
    "\nHardware Port: Wi-Fi\nDevice: en1\nEthernet Address: 3c:07:54:00:00:02\n"
    "\nHardware Port: Thunderbolt Bridge\nDevice: bridge0\nEthernet Address: N/A\n"
    "\nVLAN Configurations\n===================\n";

// `ipconfig getsummary en1`, abridged to the lines around the name.
QByteArray summary(const QByteArray& ssid) {
    return "<dictionary> {\n  BSSID : 0:11:22:33:44:55\n  InterfaceType : WiFi\n"
           "  LinkStatusActive : TRUE\n  SSID : " +
           ssid + "\n  Security : WPA2_PSK\n}\n";
}

}  // namespace

TEST(ToolNetworkSourcesTest, MacNameComesFromTheWifiDevicesSummaryThenFromNetworksetup) {
    EXPECT_EQ(std::tuple(WifiToolOutput::wifiDevice(QString::fromUtf8(kHardwarePorts)),
                         WifiToolOutput::wifiDevice("Hardware Port: AirPort\nDevice: en0\n"),
                         WifiToolOutput::wifiDevice("Hardware Port: Ethernet\nDevice: en0\n")),
              std::tuple("en1", "en0", ""));
    EXPECT_EQ(std::tuple(WifiToolOutput::summarySsid(QString::fromUtf8(summary("Café Wi-Fi 5G "))),
                         WifiToolOutput::summarySsid(QString::fromUtf8(summary("<redacted>"))),
                         WifiToolOutput::summarySsid("<dictionary> {\n  BSSID : 0:1:2:3:4:5\n}")),
              std::tuple("Café Wi-Fi 5G", "", ""));

    FakeCommandRunner runner;
    runner.respond("/usr/sbin/networksetup -listallhardwareports", kHardwarePorts);
    runner.respond("/usr/sbin/ipconfig getsummary en1", summary("Office"));
    const NetworkNameReading named = MacNetworkNameSource(runner).read();
    EXPECT_EQ(std::tuple(named.form, named.text),
              std::tuple(NetworkNameReading::Form::ConnectionName, "Office"));
    // A hidden name falls back to networksetup's text for the same device.
    runner.respond("/usr/sbin/ipconfig getsummary en1", summary("<redacted>"));
    runner.respond("/usr/sbin/networksetup -getairportnetwork en1",
                   "Current Wi-Fi Network: Caf\xc3\xa9\n");
    const NetworkNameReading fallback = MacNetworkNameSource(runner).read();
    EXPECT_EQ(std::tuple(fallback.form, fallback.text),
              std::tuple(NetworkNameReading::Form::AirportToolOutput,
                         QStringLiteral("Current Wi-Fi Network: Café\n")));
    for (const CommandRequest& request : runner.requests()) {
        EXPECT_EQ(request.timeoutSeconds, 5.0) << request.arguments.join(' ').toStdString();
    }
    // Without a Wi-Fi port nothing more is run, and undecodable text says nothing.
    FakeCommandRunner wired;
    wired.respond("/usr/sbin/networksetup -listallhardwareports", "Hardware Port: Ethernet\n");
    EXPECT_TRUE(MacNetworkNameSource(wired).read().text.isEmpty());
    runner.respond("/usr/sbin/networksetup -getairportnetwork en1", "Current \xff\xfe network");
    EXPECT_EQ(std::tuple(wired.requests().size(), MacNetworkNameSource(runner).read().text),
              std::tuple(1, QString()));
}

TEST(LaunchctlServiceJobsTest, ListsThroughTheShellWithinFiveSecondsAndDropsEmptyOrLateRuns) {
    FakeCommandRunner runner;
    const QString command = "/bin/sh -c launchctl list";
    runner.respond(command, "PID\tStatus\tLabel\n412\t0\tcom.apple.Finder\n");
    LaunchctlServiceJobs jobs(runner);
    const QList<ServiceJobListing> listed = jobs.runningJobListings();
    ASSERT_EQ(listed.size(), 1);
    EXPECT_EQ(
        std::tuple(listed[0].format, listed[0].text, runner.requests().value(0).timeoutSeconds),
        std::tuple(ServiceJobListing::Format::LaunchctlList,
                   "PID\tStatus\tLabel\n412\t0\tcom.apple.Finder\n", 5.0));
    runner.respond(command, " \n");
    EXPECT_TRUE(jobs.runningJobListings().isEmpty());
    runner.respond(command, {.started = true, .timedOut = true, .standardOutput = "PID\tStatus"});
    EXPECT_TRUE(jobs.runningJobListings().isEmpty());
    FakeCommandRunner none;
    EXPECT_TRUE(LaunchctlServiceJobs(none).runningJobListings().isEmpty());
}
