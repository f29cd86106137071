#include "audio/AudioMonitor.h"

#include <utility>

#include "audio/AudioPrivilegeManager.h"
#include "platform/AudioDeviceState.h"
#include "platform/Clock.h"
#include "platform/Scheduler.h"

namespace zelvar {

AudioMonitor::AudioMonitor(Sources sources, QObject* parent)
    : QObject(parent),
      m_sources(sources),
      // The first scan covers the five seconds before the monitor was made.
      m_lastLogScanDate(
          m_sources.clock.now().addMSecs(-static_cast<qint64>(kLogScanIntervalSeconds * 1000))) {
    // A device read, an attribution and a log scan at the same time at most.
    m_pool.setMaxThreadCount(3);
}

AudioMonitor::~AudioMonitor() {
    // The pool's work still reads the sources; what it posts back dies with this object.
    m_pool.waitForDone();
}

template <typename T>
void AudioMonitor::offThread(std::function<T()> work, std::function<void(T)> done) {
    m_pool.start([this, work = std::move(work), done = std::move(done)] {
        T result = work();
        QMetaObject::invokeMethod(
            this, [done, result = std::move(result)] { done(result); }, Qt::QueuedConnection);
    });
}

AudioAppDetection::Sources AudioMonitor::detectionSources() const {
    return {m_sources.commands, m_sources.devices, m_sources.workspace, m_sources.system};
}

void AudioMonitor::start() {
    if (m_running) {
        return;
    }
    m_running = true;
    ++m_loop;
    checkElevatedAccess();
    refresh(m_loop);
}

void AudioMonitor::stop() {
    m_running = false;
    ++m_loop;
}

void AudioMonitor::checkElevatedAccess() {
    CommandRunner& commands = m_sources.commands;
    offThread<bool>(
        [&commands] { return AudioPrivilegeManager::isElevatedAccessAvailable(commands); },
        [this](bool available) { setElevatedAccessAvailable(available); });
}

void AudioMonitor::requestElevatedAccess() {
    AudioPrivilegeManager::requestElevatedAccess(m_sources.commands, m_sources.system);
    setElevatedAccessAvailable(
        AudioPrivilegeManager::isElevatedAccessAvailable(m_sources.commands));
}

void AudioMonitor::refresh(quint64 loop) {
    scanLogThen([this, loop] { readDevices(loop); });
}

void AudioMonitor::scanLogThen(std::function<void()> next) {
    const QDateTime now = m_sources.clock.now();
    if (m_outputLogScanInFlight ||
        (m_lastOutputLogScanAttempt.isValid() &&
         secondsBetween(m_lastOutputLogScanAttempt, now) < kLogScanIntervalSeconds)) {
        next();
        return;
    }
    m_outputLogScanInFlight = true;
    m_lastOutputLogScanAttempt = now;
    const QDateTime windowStart = m_lastLogScanDate;
    // The next window overlaps this one by half a second, for lines written late.
    m_lastLogScanDate =
        m_sources.clock.now().addMSecs(-static_cast<qint64>(kLogScanOverlapSeconds * 1000));
    const AudioAppDetection::Sources sources = detectionSources();
    offThread<QList<AudioAppDetection::Result>>(
        [sources, windowStart] {
            return AudioAppDetection::findRecentOutputEvents(sources, windowStart);
        },
        [this, next = std::move(next)](const QList<AudioAppDetection::Result>& events) {
            for (const AudioAppDetection::Result& event : events) {
                addOutputEvent(event.appName, event.bundleID, event.source);
            }
            m_outputLogScanInFlight = false;
            next();
        });
}

void AudioMonitor::readDevices(quint64 loop) {
    AudioDeviceState& devices = m_sources.devices;
    offThread<std::pair<bool, bool>>(
        [&devices] {
            const bool output = devices.isDeviceRunning(AudioDeviceState::Device::Output);
            return std::pair(output, devices.isDeviceRunning(AudioDeviceState::Device::Input));
        },
        [this, loop](std::pair<bool, bool> running) {
            // Read after the log scan: an output event it has just added counts as the
            // previous state, so the transition needs no attribution of its own.
            const bool wasOutputActive = m_isOutputActive;
            const bool wasInputActive = m_isInputActive;
            setOutputActive(running.first);
            setInputActive(running.second);
            const bool inputRose = !wasInputActive && running.second;
            if (!wasOutputActive && running.first) {
                const AudioAppDetection::Sources sources = detectionSources();
                offThread<AudioAppDetection::Result>(
                    [sources] {
                        return AudioAppDetection::detectAudioApp(sources, AudioDeviceType::Output);
                    },
                    [this, inputRose, loop](const AudioAppDetection::Result& result) {
                        addOutputEvent(result.appName, result.bundleID, result.source);
                        attributeInputThen(inputRose, loop);
                    });
            } else {
                attributeInputThen(inputRose, loop);
            }
        });
}

void AudioMonitor::attributeInputThen(bool risen, quint64 loop) {
    if (!risen) {
        finishRefresh(loop);
        return;
    }
    const AudioAppDetection::Sources sources = detectionSources();
    offThread<AudioAppDetection::Result>(
        [sources] { return AudioAppDetection::detectAudioApp(sources, AudioDeviceType::Input); },
        [this, loop](const AudioAppDetection::Result& result) {
            appendInputEvent(result);
            finishRefresh(loop);
        });
}

void AudioMonitor::finishRefresh(quint64 loop) {
    emit refreshFinished();
    if (m_running && loop == m_loop) {
        m_sources.scheduler.callAfter(kRefreshIntervalSeconds, this, [this, loop] {
            if (m_running && loop == m_loop) {
                refresh(loop);
            }
        });
    }
}

void AudioMonitor::appendInputEvent(const AudioAppDetection::Result& result) {
    const QString outputBefore = outputStatusText();
    const QString inputBefore = inputStatusText();
    m_mostRecentInputApp = result.appName;
    emit mostRecentInputAppChanged();
    const AudioAppEvent event =
        AudioAppEvent::make(m_sources.clock.now(), result.appName, result.bundleID,
                            AudioDeviceType::Input, result.source);
    m_inputHistory.append(event);
    trimHistory();
    emit inputHistoryChanged();
    emit eventAdded(event);
    emitStatusTexts(outputBefore, inputBefore);
}

void AudioMonitor::addOutputEvent(const QString& appName, const std::optional<QString>& bundleID,
                                  const QString& source) {
    const QString outputBefore = outputStatusText();
    const QString inputBefore = inputStatusText();
    m_mostRecentOutputApp = appName;
    emit mostRecentOutputAppChanged();
    setOutputActive(true);
    const QString key = bundleID.value_or(appName) + u'|' + source;
    const QDateTime now = m_sources.clock.now();
    if (const auto seen = m_recentOutputKeys.constFind(key);
        seen != m_recentOutputKeys.cend() && secondsBetween(*seen, now) < kOutputDedupeSeconds) {
        emitStatusTexts(outputBefore, inputBefore);
        return;
    }
    m_recentOutputKeys.insert(key, now);
    m_recentOutputKeys.removeIf([&](const QHash<QString, QDateTime>::iterator it) {
        return secondsBetween(it.value(), now) >= kOutputKeyLifetimeSeconds;
    });
    const AudioAppEvent event =
        AudioAppEvent::make(now, appName, bundleID, AudioDeviceType::Output, source);
    m_outputHistory.append(event);
    trimHistory();
    emit outputHistoryChanged();
    emit eventAdded(event);
    emitStatusTexts(outputBefore, inputBefore);
}

void AudioMonitor::trimHistory() {
    for (QList<AudioAppEvent>* history : {&m_outputHistory, &m_inputHistory}) {
        if (history->size() > kHistoryLimit) {
            history->remove(0, history->size() - kHistoryLimit);
        }
    }
}

void AudioMonitor::setOutputActive(bool active) {
    if (m_isOutputActive != active) {
        const QString before = outputStatusText();
        m_isOutputActive = active;
        emit isOutputActiveChanged();
        emitStatusTexts(before, inputStatusText());
    }
}

void AudioMonitor::setInputActive(bool active) {
    if (m_isInputActive != active) {
        const QString before = inputStatusText();
        m_isInputActive = active;
        emit isInputActiveChanged();
        emitStatusTexts(outputStatusText(), before);
    }
}

void AudioMonitor::setElevatedAccessAvailable(bool available) {
    if (m_isElevatedAccessAvailable != available) {
        m_isElevatedAccessAvailable = available;
        emit isElevatedAccessAvailableChanged();
    }
}

void AudioMonitor::emitStatusTexts(const QString& outputBefore, const QString& inputBefore) {
    if (outputStatusText() != outputBefore) {
        emit outputStatusTextChanged();
    }
    if (inputStatusText() != inputBefore) {
        emit inputStatusTextChanged();
    }
}

QString AudioMonitor::outputStatusText() const {
    if (m_isOutputActive && m_mostRecentOutputApp) {
        return *m_mostRecentOutputApp;
    }
    return m_isOutputActive ? QStringLiteral("Speaker active") : QStringLiteral("Speaker idle");
}

QString AudioMonitor::inputStatusText() const {
    if (m_isInputActive && m_mostRecentInputApp) {
        return *m_mostRecentInputApp;
    }
    return m_isInputActive ? QStringLiteral("Microphone active")
                           : QStringLiteral("Microphone idle");
}

}  // namespace zelvar
