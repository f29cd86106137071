#pragma once

#include <QObject>
#include <atomic>

namespace zelvar {

class NotificationCenter;

// Turns alerts into desktop notifications. Checks the permission once at creation, asking for
// it when the answer is not yet known; alerts are dropped with a log line while it is missing.
// The show operations may be called from any thread.
class NotificationHelper final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isAuthorized READ isAuthorized NOTIFY isAuthorizedChanged)

public:
    explicit NotificationHelper(NotificationCenter& center, QObject* parent = nullptr);

    bool isAuthorized() const { return m_isAuthorized.load(); }

    void requestAuthorization();
    void showLimitAlert(const QString& processName, qint32 pid, double currentMB, double limitMB,
                        bool playSound);
    void showDiskChangeAlert(const QString& title, const QString& subtitle, const QString& body,
                             bool playSound);

    // "<name> (PID <pid>) is using <n>MB (limit: <m>MB)", with " (over by <k>MB)" when the
    // excess is a whole megabyte or more. Every figure is cut to a whole number.
    static QString limitAlertBody(const QString& processName, qint32 pid, double currentMB,
                                  double limitMB);

signals:
    void isAuthorizedChanged();

private:
    void checkAuthorization();
    void setAuthorized(bool authorized);  // main thread
    void deliver(const QString& title, const QString& subtitle, const QString& body,
                 const QString& category, const QString& thread, bool playSound);

    NotificationCenter& m_center;
    std::atomic<bool> m_isAuthorized = false;
};

}  // namespace zelvar
