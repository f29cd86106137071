#include <gtest/gtest.h>

#include "audio/AudioAppDetection.h"
#include "audio/AudioFakes.h"
#include "platform/SystemProfile.h"
#include "support/FakePorts.h"
#include "support/Fixture.h"
#include "support/QtPrinters.h"

namespace zelvar {
namespace {

using test::FakeAudioDevices;
using test::FakeCommandRunner;
using test::FakeWorkspace;
using test::readFixture;
using Candidate = AudioAppDetection::Candidate;

const QString kChromeAudio = QStringLiteral(
    "/Applications/Google Chrome.app/Contents/Frameworks/Google Chrome Framework.framework/"
    "Helpers/Google Chrome Helper.app/Contents/MacOS/Google Chrome Helper --type=utility "
    "--utility-sub-type=audio.mojom.AudioService");

TEST(AudioAppDetectionTest, FriendlyNamesDropThePathTheBundleAndOneHelperSuffix) {
    EXPECT_EQ(AudioAppDetection::friendlyProcessName("/Applications/Music.app"), "Music");
    EXPECT_EQ(AudioAppDetection::friendlyProcessName("Slack Helper (GPU)"), "Slack");
    EXPECT_EQ(AudioAppDetection::friendlyProcessName("Discord Helper (Plugin)"),
              "Discord Helper (Plugin)");
    // One suffix only, and ".app" goes before it is looked at.
    EXPECT_EQ(AudioAppDetection::friendlyProcessName("/x/Foo Helper Helper.app"), "Foo Helper");
}

TEST(AudioAppDetectionTest, ApplicationPathsNameTheOutermostBundle) {
    EXPECT_EQ(AudioAppDetection::appNameFromApplicationPath(kChromeAudio), "Google Chrome");
    EXPECT_EQ(AudioAppDetection::appNameFromApplicationPath("run \"/Applications/Zoom.us.app\""),
              std::nullopt);  // the closing quote follows ".app": no slash, blank or end
    EXPECT_EQ(AudioAppDetection::appNameFromApplicationPath("/Applications/Zoom.us.app -x"),
              "Zoom.us");
    EXPECT_EQ(AudioAppDetection::appNameFromApplicationPath("/opt/google/chrome/chrome"),
              std::nullopt);
    EXPECT_EQ(AudioAppDetection::matches("abc", "(unclosed"), QStringList());
}

TEST(AudioAppDetectionTest, AudioServiceCandidatesAreScoredAndSorted) {
    // A real process list: Chrome's audio service is the one candidate; Discord's video
    // capture service alone is none.
    const QString ps = readFixture("audio/i-ps-aux-sort-mem-macos26-chrome-audioservice.txt");
    EXPECT_EQ(AudioAppDetection::audioServiceCandidates(ps, AudioDeviceType::Output),
              (QList<Candidate>{{10, "Google Chrome"}}));

    const QString lines =
        QStringList{
            // Equal scores sort by name ignoring case.
            "/Applications/Zoom.app/Contents/MacOS/Zoom "
            "--utility-sub-type=audio.mojom.AudioService",
            "/Applications/arc.app/Contents/MacOS/arc --utility-sub-type=audio.mojom.AudioService",
            "/Applications/Wispr Flow.app/x --utility-sub-type=audio.mojom.AudioService "
            "wispr-extension",
            "/Applications/Meet.app/x MacLoopbackAudioForScreenShare "
            "video_capture.mojom.VideoCaptureService",
            // A candidate without an application path, the program itself, and the desktop's own.
            "/usr/lib/chromium/chromium --utility-sub-type=audio.mojom.AudioService",
            "/Applications/Zelvar2.app/Contents/MacOS/x "
            "--utility-sub-type=audio.mojom.AudioService",
            "/System/Finder.app/x MacCatapSystemAudioLoopbackCapture",
            "/Applications/Cam.app/x video_capture.mojom.VideoCaptureService"}
            .join('\n');
    EXPECT_EQ(AudioAppDetection::audioServiceCandidates(lines, AudioDeviceType::Output),
              (QList<Candidate>{{30, "Meet"}, {20, "Wispr Flow"}, {10, "arc"}, {10, "Zoom"}}));
    // Only the microphone favours the dictation helper.
    EXPECT_EQ(AudioAppDetection::audioServiceCandidates(lines, AudioDeviceType::Input).first(),
              (Candidate{50, "Wispr Flow"}));
}

TEST(AudioAppDetectionTest, ClientListsSkipToolMessagesShortNamesAndTheDesktop) {
    EXPECT_EQ(AudioAppDetection::appFromHelperOutput(
                  "  \nlsof 4.91\nlatest revision: x\n[sudo] something\nusage: x\nDock Helper\n"
                  "X\n Spotify \nMusic\n"),
              "Spotify");
    EXPECT_EQ(AudioAppDetection::appFromHelperOutput("lsof: illegal option character\n"),
              std::nullopt);
    // On Linux the sound server holds the device nodes for its clients.
    EXPECT_EQ(AudioAppDetection::appFromHelperOutput("pipewire\nmpv\n",
                                                     linuxSystemProfile().soundServerProcesses),
              "mpv");

    const QString lsof =
        "COMMAND     PID   USER   FD   TYPE\n"
        "coreaudiod  190   _coreaudiod  3u  unix\n"
        "zoom.us     812   me   12u  unix ->coreaudiod\n"
        "Google      900   me   40u  unix\n"
        "Dock        400   me   3u   unix\n";
    // Sorted: "Dock" (excluded), "Google" (the first word of a name with blanks), "zoom.us".
    EXPECT_EQ(AudioAppDetection::appFromAudioDaemonFiles(lsof), "Google");
    EXPECT_EQ(
        AudioAppDetection::appFromAudioDaemonFiles(lsof + "lsof: illegal option character: E\n"),
        std::nullopt);
    EXPECT_EQ(AudioAppDetection::appFromAudioDaemonFiles("Use the ``-h'' option to get help"),
              std::nullopt);
}

TEST(AudioAppDetectionTest, BundleIdentifiersFromTheLogOnceWithDots) {
    EXPECT_EQ(AudioAppDetection::parseAudioBundleIDs(readFixture(
                  "audio/f-console-export-audiomxd-audioaccessoryd-typewhisper601.txt")),
              QStringList{"com.typewhisper.mac"});
    // JSON keys without a dot are no bundle identifiers.
    EXPECT_EQ(AudioAppDetection::parseAudioBundleIDs(
                  readFixture("audio/f-console-export-audiomxd-typewhisper189.txt")),
              QStringList());
    EXPECT_EQ(AudioAppDetection::parseAudioBundleIDs(
                  "MXCoreSession com.spotify.client sid:1 starting playing\n"
                  "Start apps { \"com.apple.audio.AudioSession\" : 1, \"com.spotify.client\" : "
                  "2, \"org.videolan.vlc\": 3 }\n"
                  "\"com.apple.coreaudiod\" : 1"),
              (QStringList{"com.spotify.client", "org.videolan.vlc"}));
    EXPECT_EQ(AudioAppDetection::parseAudioBundleIDs("\"com.apple.audio.AudioSession\" : 200"),
              QStringList());
}

struct Chain {
    FakeCommandRunner commands;
    FakeAudioDevices devices;
    FakeWorkspace workspace;
    SystemProfile system = linuxSystemProfile();
    AudioAppDetection::Sources sources() { return {commands, devices, workspace, system}; }
    AudioAppDetection::Result detect(AudioDeviceType scope = AudioDeviceType::Output) {
        return AudioAppDetection::detectAudioApp(sources(), scope);
    }
};

TEST(AudioAppDetectionTest, TheChainTakesTheFirstStrategyThatNamesAnApplication) {
    using Result = AudioAppDetection::Result;
    const auto same = [](const Result& a, const Result& b) {
        return a.appName == b.appName && a.bundleID == b.bundleID && a.source == b.source;
    };
    Chain chain;
    // Nothing anywhere.
    EXPECT_TRUE(same(chain.detect(), {"Unknown", std::nullopt, "device state"}));

    chain.workspace.setRunning(
        {{10, "Finder", true}, {11, "Zelvar2", false}, {12, "Music", false}});
    EXPECT_TRUE(same(chain.detect(), {"Music", std::nullopt, "frontmost fallback"}));

    // The process scan asks lsof about each application, this program included.
    chain.commands.respond("/usr/bin/lsof -nP -p 11", "zelvar2 11 me mem /dev/snd/pcmC0D0p\n");
    EXPECT_TRUE(same(chain.detect(), {"Zelvar2", std::nullopt, "process scan"}));

    // The sound server's streams, newest first, for the device that started.
    chain.devices.inputClients = QStringList{"X", "Dock Helper", "Recorder"};
    EXPECT_TRUE(same(chain.detect(AudioDeviceType::Input),
                     {"Recorder", std::nullopt, "coreaudiod clients"}));
    EXPECT_TRUE(
        same(chain.detect(AudioDeviceType::Output), {"Zelvar2", std::nullopt, "process scan"}));

    chain.commands.respond("/bin/ps -axo args", kChromeAudio.toUtf8());
    EXPECT_TRUE(same(chain.detect(), {"Google Chrome", std::nullopt, "audio service process"}));
}

TEST(AudioAppDetectionTest, WithoutAStreamListTheAudioDaemonsFilesNameTheClient) {
    Chain chain;
    chain.system = macSystemProfile();
    chain.devices.outputClients = std::nullopt;
    const QByteArray lsof = "COMMAND PID\ncoreaudiod 190\nSpotify 812\n";
    chain.commands.respond("/usr/sbin/lsof -nP +E -c coreaudiod", lsof);
    // Two daemons (or none) found: the strategy yields nothing.
    chain.commands.respond("/usr/bin/pgrep -x coreaudiod", "190\n191\n");
    EXPECT_EQ(chain.detect().source, "device state");
    chain.commands.respond("/usr/bin/pgrep -x coreaudiod", "190\n");
    EXPECT_EQ(chain.detect().appName, "Spotify");
}

TEST(AudioAppDetectionTest, TheLogIsReadOnlyWhereTheSystemKeepsOne) {
    Chain chain;
    const QDateTime since(QDate(2026, 1, 15), QTime(12, 0, 5));
    EXPECT_TRUE(AudioAppDetection::findRecentOutputEvents(chain.sources(), since).isEmpty());
    EXPECT_TRUE(chain.commands.requests().isEmpty());

    chain.system = macSystemProfile();
    chain.workspace.setName("com.spotify.client", "Spotify");
    chain.commands.respond(
        QStringList{"/usr/bin/log", "show", "--style", "compact", "--start", "2026-01-15 12:00:05",
                    "--predicate",
                    R"((process == "audiomxd" OR process == "audioaccessoryd") AND )"
                    R"((eventMessage CONTAINS[c] "Audio state update Start apps" OR )"
                    R"(eventMessage CONTAINS[c] "UpdateAudioState" OR eventMessage )"
                    R"(CONTAINS[c] "starting playing"))"}
            .join(' '),
        "\"com.spotify.client\" : 1, \"org.videolan.vlc\" : 2\n");
    const QList<AudioAppDetection::Result> events =
        AudioAppDetection::findRecentOutputEvents(chain.sources(), since);
    ASSERT_EQ(events.size(), 2);
    EXPECT_EQ(events[0].appName, "Spotify");
    EXPECT_EQ(events[0].bundleID, "com.spotify.client");
    EXPECT_EQ(events[0].source, "CoreAudio log");
    // No application known for it: the identifier's friendly form.
    EXPECT_EQ(events[1].appName, "org.videolan.vlc");
}

}  // namespace
}  // namespace zelvar
