#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "audio/AudioFakes.h"
#include "audio/AudioMonitor.h"
#include "platform/SystemProfile.h"
#include "platform/linux/PactlAudioDeviceState.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "platform/qt/QtScheduler.h"
#include "platform/qt/SystemClock.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/QtPrinters.h"

namespace zelvar {
namespace {

using test::processEventsUntil;

// Two seconds of a square wave near 440 Hz, raw 16-bit mono at 44.1 kHz.
QByteArray tone() {
    QByteArray samples;
    for (int i = 0; i < 44100 * 2; ++i) {
        samples.append((i / 50) % 2 ? "\x00\x20" : "\x00\xe0", 2);
    }
    return samples;
}

// A private PulseAudio server with one null sink (whose monitor is the default source), on a
// socket of its own, so that nothing of the machine's own sound is touched. It runs as root
// too, with a warning, as long as it isn't asked to be the system-wide instance.
class AudioLiveTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!QFile::exists("/usr/bin/pulseaudio") || !QFile::exists("/usr/bin/pactl") ||
            !QFile::exists("/usr/bin/paplay")) {
            GTEST_SKIP() << "pulseaudio and pulseaudio-utils are not installed";
        }
        ASSERT_TRUE(m_dir.isValid());
        QDir(m_dir.path()).mkpath("runtime");
        QFile::setPermissions(m_dir.filePath("runtime"),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        const QString socket = m_dir.filePath("native");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_RUNTIME_DIR", m_dir.filePath("runtime"));
        environment.insert("HOME", m_dir.path());
        m_server.setProcessEnvironment(environment);
        m_server.setProcessChannelMode(QProcess::MergedChannels);
        m_server.start("/usr/bin/pulseaudio",
                       {"-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-L",
                        "module-null-sink sink_name=zelvar_test", "-L",
                        "module-native-protocol-unix auth-anonymous=1 socket=" + socket});
        ASSERT_TRUE(m_server.waitForStarted(5000));
        // The monitor's commands and the players inherit the server's address.
        m_previousServer = qgetenv("PULSE_SERVER");
        qputenv("PULSE_SERVER", ("unix:" + socket).toUtf8());
        ASSERT_TRUE(processEventsUntil(
            [] {
                QProcess info;
                info.start("/usr/bin/pactl", {"info"});
                return info.waitForFinished(2000) && info.exitCode() == 0;
            },
            10000))
            << m_server.readAll().toStdString();
    }

    void TearDown() override {
        for (QProcess* process : {&m_player, &m_recorder, &m_server}) {
            if (process->state() != QProcess::NotRunning) {
                process->kill();
                process->waitForFinished(3000);
            }
        }
        if (m_previousServer.isEmpty()) {
            qunsetenv("PULSE_SERVER");
        } else {
            qputenv("PULSE_SERVER", m_previousServer);
        }
    }

    // A copy of paplay named as an application, which names its stream after itself.
    QString playerNamed(const QString& name) {
        const QString path = m_dir.filePath(name);
        EXPECT_TRUE(QFile::copy("/usr/bin/paplay", path));
        return path;
    }

    QTemporaryDir m_dir;
    QProcess m_server;
    QProcess m_player;
    QProcess m_recorder;
    QByteArray m_previousServer;
};

TEST_F(AudioLiveTest, APlayingAndARecordingApplicationAreNamedThenIdle) {
    QProcessCommandRunner commands;
    PactlAudioDeviceState devices(commands);
    test::FakeWorkspace workspace;
    SystemClock clock;
    QtScheduler scheduler;
    const SystemProfile system = linuxSystemProfile();
    AudioMonitor monitor({devices, commands, workspace, clock, scheduler, system});
    int refreshes = 0;
    QObject::connect(&monitor, &AudioMonitor::refreshFinished, [&] { ++refreshes; });
    monitor.start();
    ASSERT_TRUE(processEventsUntil([&] { return refreshes >= 1; }, 10000));
    EXPECT_TRUE(devices.isSubscribed());
    EXPECT_EQ(monitor.outputStatusText(), "Speaker idle");
    EXPECT_EQ(monitor.inputStatusText(), "Microphone idle");

    QFile toneFile(m_dir.filePath("tone.raw"));
    ASSERT_TRUE(toneFile.open(QIODevice::WriteOnly) && toneFile.write(tone()) > 0);
    toneFile.close();
    m_player.start(playerNamed("Tonegen"), {"--raw", "--format=s16le", "--channels=1",
                                            "--rate=44100", toneFile.fileName()});
    ASSERT_TRUE(processEventsUntil([&] { return monitor.isOutputActive(); }, 10000));
    ASSERT_TRUE(processEventsUntil([&] { return !monitor.outputHistory().isEmpty(); }, 10000));
    EXPECT_EQ(monitor.outputHistory().last().appName, "Tonegen");
    EXPECT_EQ(monitor.outputHistory().last().source, "coreaudiod clients");
    EXPECT_EQ(monitor.outputStatusText(), "Tonegen");

    // The default source is the null sink's monitor: recording it runs the "microphone".
    m_recorder.start(playerNamed("Recorder"), {"--record", "--raw"});
    ASSERT_TRUE(processEventsUntil([&] { return !monitor.inputHistory().isEmpty(); }, 10000));
    EXPECT_EQ(monitor.inputHistory().last().appName, "Recorder");
    EXPECT_EQ(monitor.inputStatusText(), "Recorder");
    m_recorder.kill();
    m_recorder.waitForFinished(3000);

    // The tone ends after two seconds; the server then reports the sink idle.
    ASSERT_TRUE(m_player.state() == QProcess::NotRunning || m_player.waitForFinished(10000));
    EXPECT_EQ(m_player.exitCode(), 0) << m_player.readAll().toStdString();
    ASSERT_TRUE(processEventsUntil(
        [&] { return !monitor.isOutputActive() && !monitor.isInputActive(); }, 15000));
    EXPECT_EQ(monitor.outputStatusText(), "Speaker idle");
    EXPECT_EQ(monitor.inputStatusText(), "Microphone idle");
    EXPECT_EQ(monitor.outputHistory().size(), 1);
    EXPECT_EQ(monitor.inputHistory().size(), 1);
    monitor.stop();
}

}  // namespace
}  // namespace zelvar
