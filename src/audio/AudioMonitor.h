#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QThreadPool>
#include <functional>
#include <optional>

#include "audio/AudioAppDetection.h"
#include "audio/AudioAppEvent.h"

namespace zelvar {

class AudioDeviceState;
class Clock;
class CommandRunner;
class Scheduler;
class Workspace;
struct SystemProfile;

// Whether the default output device (speaker) and input device (microphone) are in use, and
// which application is responsible. Every second (a single-shot armed again when a refresh
// has ended) it asks whether the devices run, a cheap test; only a device that has just
// started running gets the expensive attribution. The system's log adds output events of its
// own, read at most every 5 seconds over windows that overlap by half a second. Only rising
// edges make events; both histories keep their newest 200. State lives on the main thread;
// the reads and commands run on the monitor's thread pool and come back by queued calls.
class AudioMonitor final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isOutputActive READ isOutputActive NOTIFY isOutputActiveChanged)
    Q_PROPERTY(bool isInputActive READ isInputActive NOTIFY isInputActiveChanged)
    Q_PROPERTY(
        QString mostRecentOutputApp READ mostRecentOutputAppText NOTIFY mostRecentOutputAppChanged)
    Q_PROPERTY(
        QString mostRecentInputApp READ mostRecentInputAppText NOTIFY mostRecentInputAppChanged)
    Q_PROPERTY(bool isElevatedAccessAvailable READ isElevatedAccessAvailable NOTIFY
                   isElevatedAccessAvailableChanged)
    Q_PROPERTY(QString outputStatusText READ outputStatusText NOTIFY outputStatusTextChanged)
    Q_PROPERTY(QString inputStatusText READ inputStatusText NOTIFY inputStatusTextChanged)

public:
    static constexpr double kRefreshIntervalSeconds = 1.0;
    static constexpr double kLogScanIntervalSeconds = 5.0;
    static constexpr double kLogScanOverlapSeconds = 0.5;
    static constexpr double kOutputDedupeSeconds = 2.0;
    static constexpr double kOutputKeyLifetimeSeconds = 10.0;
    static constexpr int kHistoryLimit = 200;

    struct Sources {
        AudioDeviceState& devices;
        CommandRunner& commands;
        Workspace& workspace;
        const Clock& clock;
        Scheduler& scheduler;
        const SystemProfile& system;
    };

    explicit AudioMonitor(Sources sources, QObject* parent = nullptr);
    ~AudioMonitor() override;

    // Begins the loop with a refresh at once, and tests the elevated access; does nothing
    // while the loop runs.
    void start();
    // Ends the loop; a refresh under way still finishes. State and histories stay.
    void stop();
    bool isRunning() const { return m_running; }
    // Tests the elevated access again; the property follows when the answer is in.
    void checkElevatedAccess();
    // Asks the user for consent to install the helper, then tests the access. Blocks until
    // the user has answered the system's dialog.
    void requestElevatedAccess();

    bool isOutputActive() const { return m_isOutputActive; }
    bool isInputActive() const { return m_isInputActive; }
    // Never cleared: when a device goes idle the name stays.
    const std::optional<QString>& mostRecentOutputApp() const { return m_mostRecentOutputApp; }
    const std::optional<QString>& mostRecentInputApp() const { return m_mostRecentInputApp; }
    QString mostRecentOutputAppText() const { return m_mostRecentOutputApp.value_or(QString()); }
    QString mostRecentInputAppText() const { return m_mostRecentInputApp.value_or(QString()); }
    // Oldest first.
    const QList<AudioAppEvent>& outputHistory() const { return m_outputHistory; }
    const QList<AudioAppEvent>& inputHistory() const { return m_inputHistory; }
    bool isElevatedAccessAvailable() const { return m_isElevatedAccessAvailable; }

    // The responsible application while the device is active, else "Speaker active" or
    // "Speaker idle"; the same with "Microphone" for the input.
    QString outputStatusText() const;
    QString inputStatusText() const;

    // Records an output use: the name becomes the most recent and the output active; an event
    // follows unless the same application (by bundle identifier when there is one) came from
    // the same source less than 2 seconds ago.
    void addOutputEvent(const QString& appName, const std::optional<QString>& bundleID,
                        const QString& source);

signals:
    void isOutputActiveChanged();
    void isInputActiveChanged();
    void mostRecentOutputAppChanged();
    void mostRecentInputAppChanged();
    void outputHistoryChanged();
    void inputHistoryChanged();
    void isElevatedAccessAvailableChanged();
    void outputStatusTextChanged();
    void inputStatusTextChanged();
    // An event was appended to a history.
    void eventAdded(const zelvar::AudioAppEvent& event);
    // A refresh has ended, attributions included.
    void refreshFinished();

private:
    // Runs `work` on the pool and `done` with its result on the main thread, unless the
    // monitor is gone by then.
    template <typename T>
    void offThread(std::function<T()> work, std::function<void(T)> done);

    void refresh(quint64 loop);
    void scanLogThen(std::function<void()> next);
    void readDevices(quint64 loop);
    void attributeInputThen(bool risen, quint64 loop);
    void finishRefresh(quint64 loop);
    void setOutputActive(bool active);
    void setInputActive(bool active);
    void setElevatedAccessAvailable(bool available);
    void appendInputEvent(const AudioAppDetection::Result& result);
    void trimHistory();
    void emitStatusTexts(const QString& outputBefore, const QString& inputBefore);
    AudioAppDetection::Sources detectionSources() const;

    Sources m_sources;
    bool m_isOutputActive = false;
    bool m_isInputActive = false;
    std::optional<QString> m_mostRecentOutputApp;
    std::optional<QString> m_mostRecentInputApp;
    QList<AudioAppEvent> m_outputHistory;
    QList<AudioAppEvent> m_inputHistory;
    bool m_isElevatedAccessAvailable = false;

    bool m_running = false;
    // Tells the loop's refreshes from those of a loop stopped since.
    quint64 m_loop = 0;
    QDateTime m_lastLogScanDate;
    QDateTime m_lastOutputLogScanAttempt;  // invalid: never
    bool m_outputLogScanInFlight = false;
    QHash<QString, QDateTime> m_recentOutputKeys;
    QThreadPool m_pool;
};

}  // namespace zelvar
