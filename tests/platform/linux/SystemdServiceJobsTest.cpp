#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <future>

#include "platform/linux/SystemdServiceJobs.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "process/ServiceJobParsers.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"
#include "support/SessionBus.h"
#include "support/Testing.h"

namespace {

QHash<Pid, QString> mainPids(ServiceJobs& jobs) {
    QHash<Pid, QString> map;
    for (const ServiceJobListing& listing : jobs.runningJobListings()) {
        if (listing.format == ServiceJobListing::Format::SystemdShow) {
            map.insert(parseSystemdShow(QString::fromUtf8(listing.text)));
        }
    }
    return map;
}

// One element of ListUnitsFiltered's a(ssssssouso); the fields the listing ignores are fixed.
struct UnitRow {
    QString id, sub;
    QDBusObjectPath path;
};
QDBusArgument& operator<<(QDBusArgument& out, const UnitRow& row) {
    out.beginStructure();
    out << row.id << QString() << QString("loaded") << QString("active") << row.sub << QString()
        << row.path << 0u << QString() << QDBusObjectPath("/");
    out.endStructure();
    return out;
}
const QDBusArgument& operator>>(const QDBusArgument& in, UnitRow&) {
    return in;
}  // only sent

}  // namespace

Q_DECLARE_METATYPE(UnitRow)

namespace {

// What the listing asks of systemd: the units in a state, and a service's main pid.
class FakeSystemd final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.systemd1.Manager")
public:
    QList<UnitRow> units;
public slots:
    QList<UnitRow> ListUnitsFiltered(const QStringList& states) {
        QList<UnitRow> rows = units;
        rows.removeIf([&](const UnitRow& row) { return !states.contains(row.sub); });
        return rows;
    }
};

class FakeService final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.systemd1.Service")
    Q_PROPERTY(uint MainPID MEMBER mainPid)
public:
    explicit FakeService(uint pid) : mainPid(pid) {}
    uint mainPid;
};

}  // namespace

TEST(SystemdServiceJobsLive, AsksTheManagerOnTheBusAndSystemctlOnlyWithoutOne) {
    qDBusRegisterMetaType<UnitRow>();
    qDBusRegisterMetaType<QList<UnitRow>>();
    SessionBus bus;
    ASSERT_TRUE(bus.started());
    QDBusConnection server = bus.connect("systemd-server");
    FakeSystemd systemd;
    FakeService sshd(612), cron(588), setup(700), forking(0);
    const std::tuple<const char*, const char*, FakeService*> units[] = {
        {"sshd.service", "running", &sshd},   {"cron.service", "running", &cron},
        {"setup.service", "exited", &setup},  {"forking.service", "running", &forking},
        {"gone.service", "running", nullptr},  // stopped between the two questions
    };
    for (const auto& [id, sub, service] : units) {
        const QString path = QString("/org/freedesktop/systemd1/unit/%1").arg(systemd.units.size());
        systemd.units << UnitRow{id, sub, QDBusObjectPath(path)};
        ASSERT_TRUE(!service ||
                    server.registerObject(path, service, QDBusConnection::ExportAllProperties));
    }
    ASSERT_TRUE(server.registerObject("/org/freedesktop/systemd1", &systemd,
                                      QDBusConnection::ExportAllSlots));
    LogCapture log;
    FakeCommandRunner runner;
    const QString show = "show --state=running --property=Id,MainPID *.service";
    runner.respond("/usr/bin/systemctl " + show, "Id=ssh.service\nMainPID=9\n");
    runner.respond("/usr/bin/systemctl --user " + show, "Id=pipewire.service\nMainPID=1402\n");
    SystemdServiceJobs jobs(runner, [&] {
        return SystemdServiceJobs::Buses{bus.connect("systemd-client"), QDBusConnection("none")};
    });
    // Lists on another thread while this one serves the fake's replies.
    const auto listed = [&] {
        auto listing = std::async(std::launch::async, [&] { return mainPids(jobs); });
        EXPECT_TRUE(processEventsUntil(
            [&] { return listing.wait_for(std::chrono::seconds(0)) == std::future_status::ready; },
            15000));
        return listing.get();
    };

    // No manager on the bus yet, and no user bus: both through systemctl.
    EXPECT_EQ(listed(), (QHash<Pid, QString>{{9, "ssh"}, {1402, "pipewire"}}));
    ASSERT_TRUE(server.registerService("org.freedesktop.systemd1"));
    runner.respond("/usr/bin/systemctl --user " + show, "", 1);  // no user manager
    // Not the exited service, not the one that vanished, not pid 0; systemctl for the user only.
    EXPECT_EQ(listed(), (QHash<Pid, QString>{{612, "sshd"}, {588, "cron"}}));
    ASSERT_EQ(runner.requests().size(), 3);
    EXPECT_EQ(runner.requests().constLast().arguments.constFirst(), "--user");
    for (const CommandRequest& request : runner.requests()) {  // a hung bus can't stall the cycle
        EXPECT_TRUE(request.timeoutSeconds &&
                    request.stderrMode == CommandRequest::Stderr::Discarded);
    }
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(SystemdServiceJobsLive, TheBusAndSystemctlAgreeOnThisMachine) {
    if (!QFileInfo::exists("/run/systemd/system")) {
        GTEST_SKIP() << "systemd is not the service manager here";
    }
    FakeCommandRunner noTools;
    SystemdServiceJobs overBus(noTools, &SystemdServiceJobs::defaultBuses);
    QProcessCommandRunner runner;
    SystemdServiceJobs throughSystemctl(runner, [] {
        return SystemdServiceJobs::Buses{QDBusConnection("none"), QDBusConnection("none")};
    });
    // A service may start or stop between the two listings; a few tries settle it.
    QHash<Pid, QString> bus, systemctl;
    for (int attempt = 0; attempt < 3 && (attempt == 0 || bus != systemctl); ++attempt) {
        bus = mainPids(overBus);
        systemctl = mainPids(throughSystemctl);
    }
    EXPECT_FALSE(bus.isEmpty());
    EXPECT_EQ(std::tuple(bus, noTools.requests().size()), std::tuple(systemctl, 0));
}

#include "SystemdServiceJobsTest.moc"
