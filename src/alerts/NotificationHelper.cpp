#include "alerts/NotificationHelper.h"

#include <QPointer>
#include <QUuid>
#include <cmath>

#include "common/Log.h"
#include "platform/NotificationCenter.h"

namespace zelvar {
namespace {

QString whole(double megabytes) {
    return QString::number(static_cast<qint64>(std::trunc(megabytes)));
}

}  // namespace

NotificationHelper::NotificationHelper(NotificationCenter& center, QObject* parent)
    : QObject(parent), m_center(center) {
    checkAuthorization();
}

void NotificationHelper::checkAuthorization() {
    QPointer<NotificationHelper> self(this);
    m_center.getAuthorizationStatus([self](int status) {
        QMetaObject::invokeMethod(self, [self, status] {
            if (!self) {
                return;
            }
            switch (status) {
                case NotificationCenter::NotDetermined:
                    self->requestAuthorization();
                    break;
                case NotificationCenter::Denied:
                    self->setAuthorized(false);
                    logLine(QStringLiteral("⚠️ Notification permissions denied - ") +
                            self->m_center.deniedAdvice());
                    break;
                case NotificationCenter::Authorized:
                case NotificationCenter::Provisional:
                case NotificationCenter::Ephemeral:
                    self->setAuthorized(true);
                    logLine(QStringLiteral("✅ Notification permissions already granted"));
                    break;
                default:
                    self->setAuthorized(false);
                    break;
            }
        });
    });
}

void NotificationHelper::requestAuthorization() {
    QPointer<NotificationHelper> self(this);
    m_center.requestAuthorization([self](bool granted, const QString& error) {
        if (!error.isEmpty()) {
            logLine(QStringLiteral("❌ Notification authorization error: ") + error);
        }
        QMetaObject::invokeMethod(self, [self, granted] {
            if (!self) {
                return;
            }
            self->setAuthorized(granted);
            logLine(granted ? QStringLiteral("✅ Notification permissions granted")
                            : QStringLiteral("⚠️ Notification permissions denied - ") +
                                  self->m_center.refusedAdvice());
        });
    });
}

void NotificationHelper::setAuthorized(bool authorized) {
    if (m_isAuthorized.exchange(authorized) != authorized) {
        emit isAuthorizedChanged();
    }
}

QString NotificationHelper::limitAlertBody(const QString& processName, qint32 pid, double currentMB,
                                           double limitMB) {
    const auto over = static_cast<qint64>(std::trunc(currentMB - limitMB));
    const QString suffix = over >= 1 ? QStringLiteral(" (over by %1MB)").arg(over) : QString();
    return QStringLiteral("%1 (PID %2) is using %3MB (limit: %4MB)%5")
        .arg(processName, QString::number(pid), whole(currentMB), whole(limitMB), suffix);
}

void NotificationHelper::showLimitAlert(const QString& processName, qint32 pid, double currentMB,
                                        double limitMB, bool playSound) {
    deliver(QStringLiteral("RAM Limit Exceeded"), QString(),
            limitAlertBody(processName, pid, currentMB, limitMB), QStringLiteral("RAM_ALERT"),
            processName, playSound);
}

void NotificationHelper::showDiskChangeAlert(const QString& title, const QString& subtitle,
                                             const QString& body, bool playSound) {
    deliver(title, subtitle, body, QStringLiteral("DISK_ALERT"), QStringLiteral("disk_changes"),
            playSound);
}

void NotificationHelper::deliver(const QString& title, const QString& subtitle, const QString& body,
                                 const QString& category, const QString& thread, bool playSound) {
    if (!isAuthorized()) {
        logLine(QStringLiteral("Notifications not authorized for Zelvar+"));
        return;
    }
    NotificationContent content;
    content.identifier = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    content.title = title;
    content.subtitle = subtitle;
    content.body = body;
    content.categoryIdentifier = category;
    content.threadIdentifier = thread;
    content.playSound = playSound;
    m_center.add(content, [](const QString& error) {
        if (!error.isEmpty()) {
            logLine(QStringLiteral("Notification error: ") + error);
        }
    });
}

}  // namespace zelvar
