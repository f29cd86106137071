#include "platform/linux/FreedesktopNotificationCenter.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace zelvar {
namespace {

const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
constexpr int kCallTimeoutMs = 5000;

}  // namespace

FreedesktopNotificationCenter::FreedesktopNotificationCenter(QObject* parent) : QObject(parent) {}

QDBusConnection& FreedesktopNotificationCenter::connection() {
    if (!m_connection) {
        m_connection = QDBusConnection::sessionBus();
    }
    return *m_connection;
}

FreedesktopNotificationCenter::FreedesktopNotificationCenter(QDBusConnection connection,
                                                             QObject* parent)
    : QObject(parent), m_connection(std::move(connection)) {}

void FreedesktopNotificationCenter::call(
    const QString& method, const QVariantList& arguments,
    std::function<void(const QDBusMessage& reply, const QString& error)> done) {
    // Pending-call watchers need this object's event loop, so the call starts there.
    QMetaObject::invokeMethod(this, [this, method, arguments, done = std::move(done)] {
        QDBusConnection& bus = connection();
        if (!bus.isConnected()) {
            const QDBusError error = bus.lastError();
            done(QDBusMessage(),
                 error.isValid() ? error.message() : QStringLiteral("No D-Bus session bus"));
            return;
        }
        QDBusMessage message = QDBusMessage::createMethodCall(kService, kPath, kService, method);
        message.setArguments(arguments);
        auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(message, kCallTimeoutMs), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this,
                [done](QDBusPendingCallWatcher* finished) {
                    finished->deleteLater();
                    const QDBusMessage reply = finished->reply();
                    if (reply.type() == QDBusMessage::ErrorMessage) {
                        done(reply,
                             reply.errorName() + QStringLiteral(": ") + reply.errorMessage());
                    } else {
                        done(reply, QString());
                    }
                });
    });
}

void FreedesktopNotificationCenter::getAuthorizationStatus(
    std::function<void(int status)> completion) {
    call(QStringLiteral("GetServerInformation"), {},
         [completion = std::move(completion)](const QDBusMessage&, const QString& error) {
             completion(error.isEmpty() ? Authorized : NotDetermined);
         });
}

void FreedesktopNotificationCenter::requestAuthorization(
    std::function<void(bool granted, const QString& error)> completion) {
    call(QStringLiteral("GetServerInformation"), {},
         [completion = std::move(completion)](const QDBusMessage&, const QString& error) {
             completion(error.isEmpty(), error);
         });
}

QString FreedesktopNotificationCenter::deniedAdvice() const {
    return QStringLiteral("no notification service answers on the session bus (") + kService +
           QLatin1Char(')');
}

void FreedesktopNotificationCenter::add(const NotificationContent& content,
                                        std::function<void(const QString& error)> completion) {
    QVariantMap hints;
    hints.insert(QStringLiteral("category"), content.categoryIdentifier);
    hints.insert(QString::fromLatin1(kThreadHint), content.threadIdentifier);
    if (content.playSound) {
        hints.insert(QStringLiteral("sound-name"), QString::fromLatin1(kSoundName));
    } else {
        hints.insert(QStringLiteral("suppress-sound"), true);
    }
    // The protocol has no subtitle: it leads the body on a line of its own.
    const QString body = content.subtitle.isEmpty()
                             ? content.body
                             : content.subtitle + QLatin1Char('\n') + content.body;
    const QVariantList arguments{QStringLiteral("Zelvar+"),
                                 0u,  // replaces no earlier notification
                                 QString(),
                                 content.title,
                                 body,
                                 QStringList(),
                                 hints,
                                 -1};  // the server's default expiry
    call(QStringLiteral("Notify"), arguments,
         [completion = std::move(completion)](const QDBusMessage&, const QString& error) {
             completion(error);
         });
}

}  // namespace zelvar
