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

const QString kSystemShow =
    "/usr/bin/systemctl show --state=running --property=Id,MainPID *.service";
const QString kUserShow =
    "/usr/bin/systemctl --user show --state=running --property=Id,MainPID *.service";

SystemdServiceJobs::Buses noBuses() {
    return {QDBusConnection("no-system-bus"), QDBusConnection("no-user-bus")};
}

// One element of ListUnitsFiltered's answer, a(ssssssouso).
struct UnitRow {
    QString id, description, load, active, sub, following;
    QDBusObjectPath path;
    uint jobId = 0;
    QString jobType;
    QDBusObjectPath jobPath{QStringLiteral("/")};
};

QDBusArgument& operator<<(QDBusArgument& argument, const UnitRow& row) {
    argument.beginStructure();
    argument << row.id << row.description << row.load << row.active << row.sub << row.following
             << row.path << row.jobId << row.jobType << row.jobPath;
    argument.endStructure();
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, UnitRow& row) {
    argument.beginStructure();
    argument >> row.id >> row.description >> row.load >> row.active >> row.sub >> row.following >>
        row.path >> row.jobId >> row.jobType >> row.jobPath;
    argument.endStructure();
    return argument;
}

}  // namespace

Q_DECLARE_METATYPE(UnitRow)

namespace {

// The part of systemd's manager that the listing asks: the units in any of the given states.
class FakeSystemdManager final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.systemd1.Manager")
public:
    QList<UnitRow> units;
public slots:
    QList<UnitRow> ListUnitsFiltered(const QStringList& states) {
        QList<UnitRow> matching;
        for (const UnitRow& row : units) {
            if (states.contains(row.load) || states.contains(row.active) ||
                states.contains(row.sub)) {
                matching << row;
            }
        }
        return matching;
    }
};

class FakeServiceUnit final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.systemd1.Service")
    Q_PROPERTY(uint MainPID READ mainPid)
public:
    explicit FakeServiceUnit(uint pid) : m_pid(pid) {}
    uint mainPid() const { return m_pid; }

private:
    uint m_pid;
};

}  // namespace

TEST(SystemdServiceJobs, WithoutABusAsksBothManagersThroughSystemctl) {
    LogCapture log;
    FakeCommandRunner runner;
    runner.respond(kSystemShow, "Id=ssh.service\nMainPID=612\n");
    runner.respond(kUserShow, "Id=pipewire.service\nMainPID=1402\n");
    const QList<ServiceJobListing> listings =
        SystemdServiceJobs(runner, noBuses).runningJobListings();
    ASSERT_EQ(listings.size(), 2);
    EXPECT_EQ(std::tuple(listings[0].format, listings[0].text, listings[1].text),
              std::tuple(ServiceJobListing::Format::SystemdShow, "Id=ssh.service\nMainPID=612\n",
                         "Id=pipewire.service\nMainPID=1402\n"));
    for (const CommandRequest& request : runner.requests()) {  // a hung bus can't stall the cycle
        EXPECT_TRUE(request.timeoutSeconds &&
                    request.stderrMode == CommandRequest::Stderr::Discarded);
    }
    // In a container the system manager complains and exits with 1; no user manager starts.
    FakeCommandRunner bare;
    bare.respond(kSystemShow, "", 1);
    EXPECT_TRUE(SystemdServiceJobs(bare, noBuses).runningJobListings().isEmpty());
    EXPECT_EQ(bare.requests().size(), 2);
    bare.respond(kSystemShow, "Id=cron.service\nMainPID=588\n");
    EXPECT_EQ(SystemdServiceJobs(bare, noBuses).runningJobListings().size(), 1);
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(SystemdServiceJobsLive, AsksAManagerOnTheBusAndSystemctlOnlyWithoutOne) {
    qDBusRegisterMetaType<UnitRow>();
    qDBusRegisterMetaType<QList<UnitRow>>();
    SessionBus bus;
    ASSERT_TRUE(bus.started());
    QDBusConnection server = bus.connect("systemd-server");
    FakeSystemdManager manager;
    const auto unitPath = [](const char* name) {
        return QDBusObjectPath(QStringLiteral("/org/freedesktop/systemd1/unit/") + name);
    };
    manager.units = {
        {"sshd.service", "", "loaded", "active", "running", "", unitPath("sshd")},
        {"cron.service", "", "loaded", "active", "running", "", unitPath("cron")},
        {"dbus.socket", "", "loaded", "active", "running", "", unitPath("dbus_2esocket")},
        {"setup.service", "", "loaded", "active", "exited", "", unitPath("setup")},
        {"gone.service", "", "loaded", "active", "running", "", unitPath("gone")},
        {"forking.service", "", "loaded", "active", "running", "", unitPath("forking")}};
    FakeServiceUnit sshd(612), cron(588), setup(700), forking(0);
    for (const auto& [name, unit] : {std::pair{"sshd", &sshd}, std::pair{"cron", &cron},
                                     std::pair{"setup", &setup}, std::pair{"forking", &forking}}) {
        ASSERT_TRUE(server.registerObject(unitPath(name).path(), unit,
                                          QDBusConnection::ExportAllProperties));
    }
    ASSERT_TRUE(server.registerObject("/org/freedesktop/systemd1", &manager,
                                      QDBusConnection::ExportAllSlots));
    FakeCommandRunner runner;
    runner.respond(kSystemShow, "Id=from-systemctl.service\nMainPID=9\n");
    SystemdServiceJobs jobs(runner, [&] {
        return SystemdServiceJobs::Buses{bus.connect("systemd-client"), QDBusConnection("none")};
    });
    // Lists on another thread while this one serves the fake's replies.
    const auto mainPids = [&] {
        auto listing = std::async(std::launch::async, [&] { return jobs.runningJobListings(); });
        EXPECT_TRUE(processEventsUntil(
            [&] { return listing.wait_for(std::chrono::seconds(0)) == std::future_status::ready; },
            15000));
        QHash<Pid, QString> map;
        for (const ServiceJobListing& l : listing.get()) {
            map.insert(parseSystemdShow(QString::fromUtf8(l.text)));
        }
        return map;
    };

    EXPECT_EQ(mainPids(), (QHash<Pid, QString>{{9, "from-systemctl"}}));  // no manager yet
    ASSERT_TRUE(server.registerService("org.freedesktop.systemd1"));
    const qsizetype runs = runner.requests().size();
    // Not the socket, not the exited service, not the unit that vanished, not pid 0.
    EXPECT_EQ(mainPids(), (QHash<Pid, QString>{{612, "sshd"}, {588, "cron"}}));
    // Only the user manager, which has no bus here, went through systemctl.
    ASSERT_EQ(runner.requests().size(), runs + 1);
    EXPECT_EQ(runner.requests().constLast().arguments.constFirst(), "--user");
}

TEST(SystemdServiceJobsLive, TheBusAndSystemctlAgreeOnThisMachine) {
    if (!QFileInfo::exists("/run/systemd/system")) {
        GTEST_SKIP() << "systemd is not the service manager here";
    }
    const auto mainPids = [](ServiceJobs& jobs) {
        QHash<Pid, QString> map;
        for (const ServiceJobListing& listing : jobs.runningJobListings()) {
            map.insert(parseSystemdShow(QString::fromUtf8(listing.text)));
        }
        return map;
    };
    FakeCommandRunner noTools;
    SystemdServiceJobs overBus(noTools, &SystemdServiceJobs::defaultBuses);
    QProcessCommandRunner runner;
    SystemdServiceJobs throughSystemctl(runner, noBuses);
    // A service may start or stop between the two listings; a few tries settle it.
    QHash<Pid, QString> bus, systemctl;
    for (int attempt = 0; attempt < 3 && (attempt == 0 || bus != systemctl); ++attempt) {
        bus = mainPids(overBus);
        systemctl = mainPids(throughSystemctl);
    }
    EXPECT_FALSE(bus.isEmpty());
    EXPECT_EQ(bus, systemctl);
    EXPECT_TRUE(noTools.requests().isEmpty());
}

#include "SystemdServiceJobsTest.moc"
