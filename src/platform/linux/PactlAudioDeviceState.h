#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QHash>
#include <QMutex>
#include <QProcess>
#include <atomic>
#include <optional>

#include "platform/AudioDeviceState.h"
#include "platform/portable/PactlOutput.h"

namespace zelvar {

class CommandRunner;

// The default sink's and source's state from the pulse server (PulseAudio or PipeWire's
// pulse server) through pactl. A kept-running `pactl subscribe` marks the cached state stale
// when the server reports a change, so that a second without change runs no command and one
// with a change runs one (`pactl list short`); the default devices' names are read again
// only on a server event. Without the subscription (pactl missing or ended) the state is read
// at most twice a second and the names every tenth read. JSON output is used when this pactl
// knows --format=json. Create it on the main thread, which receives the subscription's lines;
// the reads may come from any thread.
class PactlAudioDeviceState final : public AudioDeviceState {
public:
    explicit PactlAudioDeviceState(CommandRunner& runner,
                                   QString pactlProgram = QStringLiteral("/usr/bin/pactl"));
    ~PactlAudioDeviceState() override;

    bool isDeviceRunning(Device device) override;
    std::optional<QStringList> clientApplications(Device device) override;

    // Whether the server's change events are arriving.
    bool isSubscribed() const { return m_subscribed; }

private:
    QByteArray run(const QStringList& arguments, bool jsonWhenKnown);
    void onSubscriptionOutput();

    CommandRunner& m_runner;
    const QString m_pactl;
    QProcess m_subscription;
    std::atomic<bool> m_subscribed{false};
    std::atomic<bool> m_statesStale{true};
    std::atomic<bool> m_defaultsStale{true};

    QMutex m_mutex;  // guards what follows
    std::optional<bool> m_jsonKnown;
    PactlDefaults m_defaults;
    QHash<QString, QString> m_states;
    QElapsedTimer m_statesAge;
    int m_unsubscribedReads = 0;
};

}  // namespace zelvar
