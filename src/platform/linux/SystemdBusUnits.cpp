#include "platform/linux/SystemdBusUnits.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QDeadlineTimer>
#include <QList>
#include <algorithm>
#include <utility>

namespace zelvar {
namespace {

const QString kService = QStringLiteral("org.freedesktop.systemd1");
const QString kManagerPath = QStringLiteral("/org/freedesktop/systemd1");
const QString kManagerInterface = QStringLiteral("org.freedesktop.systemd1.Manager");

struct Unit {
    QString id;
    QString path;
};

bool isTimeout(const QDBusError& error) {
    return error.type() == QDBusError::NoReply || error.type() == QDBusError::Timeout ||
           error.type() == QDBusError::TimedOut;
}

// The id and object path of each element of ListUnitsFiltered's a(ssssssouso): id,
// description, load, active and sub state, followed unit, path, job id, job type, job path.
QList<Unit> readUnits(const QDBusArgument& argument) {
    QList<Unit> units;
    argument.beginArray();
    while (!argument.atEnd()) {
        QString id;
        QString description;
        QString load;
        QString active;
        QString sub;
        QString following;
        QDBusObjectPath path;
        uint jobId = 0;
        QString jobType;
        QDBusObjectPath jobPath;
        argument.beginStructure();
        argument >> id >> description >> load >> active >> sub >> following >> path >> jobId >>
            jobType >> jobPath;
        argument.endStructure();
        units.append({id, path.path()});
    }
    argument.endArray();
    return units;
}

}  // namespace

SystemdBusUnits::Answer SystemdBusUnits::runningServices(const QDBusConnection& bus,
                                                         int timeoutMs) {
    const QDeadlineTimer deadline(timeoutMs);
    if (!bus.isConnected()) {
        return {};
    }
    QDBusMessage list = QDBusMessage::createMethodCall(kService, kManagerPath, kManagerInterface,
                                                       QStringLiteral("ListUnitsFiltered"));
    // The state matches a unit's load, active or sub state, as systemctl's --state does.
    list << QStringList{QStringLiteral("running")};
    const QDBusMessage listed = bus.call(list, QDBus::Block, timeoutMs);
    if (listed.type() != QDBusMessage::ReplyMessage) {
        return {
            isTimeout(QDBusError(listed)) ? Answer::Status::TimedOut : Answer::Status::Unreachable,
            {}};
    }
    if (listed.arguments().isEmpty() ||
        !listed.arguments().constFirst().canConvert<QDBusArgument>()) {
        return {};
    }
    QList<Unit> units = readUnits(qvariant_cast<QDBusArgument>(listed.arguments().constFirst()));
    units.removeIf([](const Unit& unit) { return !unit.id.endsWith(u".service"); });
    // systemctl prints units by name; the order decides which one keeps a shared main pid.
    std::sort(units.begin(), units.end(), [](const Unit& a, const Unit& b) { return a.id < b.id; });

    QList<QDBusPendingCall> calls;
    calls.reserve(units.size());
    for (const Unit& unit : units) {
        QDBusMessage get = QDBusMessage::createMethodCall(
            kService, unit.path, QStringLiteral("org.freedesktop.DBus.Properties"),
            QStringLiteral("Get"));
        get << QStringLiteral("org.freedesktop.systemd1.Service") << QStringLiteral("MainPID");
        calls.append(bus.asyncCall(get, std::max(1, int(deadline.remainingTime()))));
    }

    Answer answer{Answer::Status::Answered, {}};
    for (qsizetype i = 0; i < units.size(); ++i) {
        QDBusPendingCall& call = calls[i];
        call.waitForFinished();  // each call times out by the deadline on its own
        const QDBusMessage reply = call.reply();
        if (reply.type() != QDBusMessage::ReplyMessage) {
            if (isTimeout(call.error())) {
                return {Answer::Status::TimedOut, {}};
            }
            continue;  // the unit went away after the listing
        }
        if (reply.arguments().isEmpty()) {
            continue;
        }
        const QVariant pid = qvariant_cast<QDBusVariant>(reply.arguments().constFirst()).variant();
        if (pid.metaType().id() != QMetaType::UInt) {
            continue;
        }
        answer.showText +=
            "Id=" + units[i].id.toUtf8() + "\nMainPID=" + QByteArray::number(pid.toUInt()) + "\n\n";
    }
    return answer;
}

}  // namespace zelvar
