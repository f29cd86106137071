#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <optional>

#include "focus/FocusEvent.h"

namespace zelvar {

class Clock;
class Workspace;
struct RunningApplication;

// Which application holds the keyboard focus, each change of it with how long the previous
// application held it, and whether an application just took the focus for a moment and gave
// it back. Driven by the workspace's activations alone: no polling, no thread of its own. The
// history lives in memory. Main thread only.
class FocusMonitor final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString currentApp READ currentApp NOTIFY currentAppChanged)
    Q_PROPERTY(QList<FocusEvent> focusHistory READ focusHistory NOTIFY focusHistoryChanged)
    Q_PROPERTY(bool isMonitoring READ isMonitoring NOTIFY isMonitoringChanged)

public:
    static constexpr qsizetype kMaxHistory = 200;
    // A visit shorter than this that returns the focus to where it was counts as stolen.
    static constexpr double kStealSeconds = 3.0;
    static inline const QString kUnknownApp = QStringLiteral("Unknown");

    FocusMonitor(Workspace& workspace, const Clock& clock, QObject* parent = nullptr);
    ~FocusMonitor() override;

    // Reads the frontmost application (no event for it) and follows the activations from
    // here; does nothing while monitoring.
    void start();
    // Stops following the activations; the current application and the history stay.
    void stop();

    const QString& currentApp() const { return m_currentApp; }
    // Oldest first, at most kMaxHistory.
    const QList<FocusEvent>& focusHistory() const { return m_focusHistory; }
    bool isMonitoring() const { return m_isMonitoring; }
    // The application that held the focus less than kStealSeconds between the last two
    // changes, when the last one gave the focus back to where it was before them.
    std::optional<QString> lastStolenBy() const;

signals:
    void currentAppChanged();
    void focusHistoryChanged();
    void isMonitoringChanged();

private:
    void appActivated(const RunningApplication& application);

    Workspace& m_workspace;
    const Clock& m_clock;
    QString m_currentApp = kUnknownApp;
    QList<FocusEvent> m_focusHistory;
    bool m_isMonitoring = false;
    std::optional<QString> m_lastApp;
    std::optional<QDateTime> m_lastFocusTime;
};

}  // namespace zelvar
