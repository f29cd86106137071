#include "platform/linux/PactlAudioDeviceState.h"

#include <QMutexLocker>
#include <QProcessEnvironment>
#include <algorithm>

#include "platform/CommandRunner.h"

namespace zelvar {
namespace {

constexpr double kCommandTimeoutSeconds = 2.0;
// Without the subscription, how long a read of the states serves both devices' questions.
constexpr qint64 kUnsubscribedStateMs = 500;
constexpr int kUnsubscribedDefaultsEvery = 10;

}  // namespace

PactlAudioDeviceState::PactlAudioDeviceState(CommandRunner& runner, QString pactlProgram)
    : m_runner(runner), m_pactl(std::move(pactlProgram)) {
    // The event lines are translated; the C locale keeps them parseable.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    m_subscription.setProcessEnvironment(environment);
    m_subscription.setProcessChannelMode(QProcess::SeparateChannels);
    m_subscription.setStandardErrorFile(QProcess::nullDevice());
    QObject::connect(&m_subscription, &QProcess::readyReadStandardOutput, &m_subscription,
                     [this] { onSubscriptionOutput(); });
    QObject::connect(&m_subscription, &QProcess::started, &m_subscription, [this] {
        m_subscribed = true;
        // Whatever changed before the subscription began.
        m_statesStale = true;
        m_defaultsStale = true;
    });
    QObject::connect(&m_subscription, &QProcess::finished, &m_subscription,
                     [this] { m_subscribed = false; });
    QObject::connect(&m_subscription, &QProcess::errorOccurred, &m_subscription,
                     [this] { m_subscribed = false; });
    m_subscription.start(m_pactl, {QStringLiteral("subscribe")});
}

PactlAudioDeviceState::~PactlAudioDeviceState() {
    m_subscription.disconnect();
    if (m_subscription.state() != QProcess::NotRunning) {
        m_subscription.kill();
        m_subscription.waitForFinished(1000);
    }
}

void PactlAudioDeviceState::onSubscriptionOutput() {
    while (m_subscription.canReadLine()) {
        const QString facility =
            PactlOutput::subscribedFacility(QString::fromUtf8(m_subscription.readLine()));
        if (facility == QLatin1String("server")) {
            m_defaultsStale = true;
        }
        // Devices and streams change the state; clients come and go with every pactl run,
        // this adapter's own included, and would have each read cause the next.
        static const QStringList kStateFacilities{
            QStringLiteral("server"),     QStringLiteral("sink"),          QStringLiteral("source"),
            QStringLiteral("sink-input"), QStringLiteral("source-output"), QStringLiteral("card")};
        if (kStateFacilities.contains(facility)) {
            m_statesStale = true;
        }
    }
}

QByteArray PactlAudioDeviceState::run(const QStringList& arguments, bool jsonWhenKnown) {
    const auto attempt = [&](bool json) {
        const QStringList full =
            json ? QStringList{QStringLiteral("--format=json")} + arguments : arguments;
        return m_runner
            .run({.program = m_pactl,
                  .arguments = full,
                  .timeoutSeconds = kCommandTimeoutSeconds,
                  .stderrMode = CommandRequest::Stderr::Discarded})
            .standardOutput;
    };
    if (!jsonWhenKnown) {
        return attempt(false);
    }
    if (!m_jsonKnown) {
        const QByteArray output = attempt(true);
        if (PactlOutput::isJson(output)) {
            m_jsonKnown = true;
            return output;
        }
        // An older pactl rejects the option; one with no server also prints nothing, so the
        // question stays open until an answer comes.
        if (!output.isEmpty() || !attempt(false).isEmpty()) {
            m_jsonKnown = false;
        }
    }
    return attempt(m_jsonKnown.value_or(false));
}

bool PactlAudioDeviceState::isDeviceRunning(Device device) {
    const QMutexLocker lock(&m_mutex);
    const bool subscribed = m_subscribed;
    if (!subscribed && ++m_unsubscribedReads % kUnsubscribedDefaultsEvery == 1) {
        m_defaultsStale = true;
    }
    if (m_defaultsStale.exchange(false)) {
        const std::optional<PactlDefaults> defaults =
            PactlOutput::parseInfo(run({QStringLiteral("info")}, true));
        // Unread (no server yet): asked again on the next server event, or read without
        // the subscription.
        m_defaults = defaults.value_or(PactlDefaults{});
    }
    const bool statesExpired =
        !subscribed && (!m_statesAge.isValid() || m_statesAge.elapsed() >= kUnsubscribedStateMs);
    if (m_statesStale.exchange(false) || statesExpired) {
        m_states = PactlOutput::parseShortStates(
            run({QStringLiteral("list"), QStringLiteral("short")}, false));
        m_statesAge.start();
    }
    const QString& name = device == Device::Output ? m_defaults.sink : m_defaults.source;
    return !name.isEmpty() && m_states.value(name) == QLatin1String("RUNNING");
}

std::optional<QStringList> PactlAudioDeviceState::clientApplications(Device device) {
    const QString kind =
        device == Device::Output ? QStringLiteral("sink-inputs") : QStringLiteral("source-outputs");
    QList<PactlStream> streams;
    {
        const QMutexLocker lock(&m_mutex);
        streams = PactlOutput::parseStreams(run({QStringLiteral("list"), kind}, true));
    }
    // The stream that just made the device run is most likely the newest.
    std::stable_sort(streams.begin(), streams.end(),
                     [](const PactlStream& a, const PactlStream& b) { return a.index > b.index; });
    QStringList names;
    for (const PactlStream& stream : streams) {
        if (!stream.corked && !stream.displayName().isEmpty()) {
            names.append(stream.displayName());
        }
    }
    return names;
}

}  // namespace zelvar
