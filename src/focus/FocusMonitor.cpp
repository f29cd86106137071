#include "focus/FocusMonitor.h"

#include "platform/Clock.h"
#include "platform/Workspace.h"

namespace zelvar {

FocusMonitor::FocusMonitor(Workspace& workspace, const Clock& clock, QObject* parent)
    : QObject(parent), m_workspace(workspace), m_clock(clock) {}

FocusMonitor::~FocusMonitor() {
    // The workspace outlives this monitor and must not call into it afterwards.
    if (m_isMonitoring) {
        m_workspace.unsubscribeActivations();
    }
}

void FocusMonitor::start() {
    if (m_isMonitoring) {
        return;
    }
    m_isMonitoring = true;
    emit isMonitoringChanged();

    const std::optional<RunningApplication> frontmost = m_workspace.frontmostApplication();
    const QString current =
        frontmost && !frontmost->localizedName.isEmpty() ? frontmost->localizedName : kUnknownApp;
    if (current != m_currentApp) {
        m_currentApp = current;
        emit currentAppChanged();
    }
    // A restart measures from here, so the time stopped never counts into a duration.
    m_lastApp = m_currentApp;
    m_lastFocusTime = m_clock.now();
    m_workspace.subscribeActivations(
        [this](const RunningApplication& application) { appActivated(application); });
}

void FocusMonitor::stop() {
    if (!m_isMonitoring) {
        return;
    }
    m_workspace.unsubscribeActivations();
    m_isMonitoring = false;
    emit isMonitoringChanged();
}

void FocusMonitor::appActivated(const RunningApplication& application) {
    const QString& name = application.localizedName;
    if (name.isEmpty()) {
        return;
    }
    const QDateTime now = m_clock.now();
    std::optional<double> duration;
    if (m_lastFocusTime) {
        duration = secondsBetween(*m_lastFocusTime, now);
    }
    // Activating the current application again is no change: the time it holds the focus
    // keeps counting from when it took it.
    if (name == m_currentApp) {
        return;
    }
    m_focusHistory.append(FocusEvent(now, name, m_currentApp, duration));
    if (m_focusHistory.size() > kMaxHistory) {
        m_focusHistory.remove(0, m_focusHistory.size() - kMaxHistory);
    }
    m_lastApp = m_currentApp;
    m_currentApp = name;
    m_lastFocusTime = now;
    emit focusHistoryChanged();
    emit currentAppChanged();
}

std::optional<QString> FocusMonitor::lastStolenBy() const {
    if (m_focusHistory.size() < 2) {
        return std::nullopt;
    }
    const FocusEvent& latest = m_focusHistory.last();
    const FocusEvent& previous = m_focusHistory[m_focusHistory.size() - 2];
    if (!previous.previousApp || latest.appName != *previous.previousApp) {
        return std::nullopt;
    }
    if (latest.duration && *latest.duration < kStealSeconds) {
        return previous.appName;
    }
    return std::nullopt;
}

}  // namespace zelvar
