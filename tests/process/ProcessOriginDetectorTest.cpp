#include <gtest/gtest.h>

#include <QRandomGenerator>
#include <QSet>
#include <functional>

#include "process/ProcessOriginDetector.h"
#include "support/FakeClock.h"
#include "support/FakeServiceJobs.h"

using namespace zelvar;
using namespace zelvar::test;

namespace zelvar {
void PrintTo(const ProcessOriginDetector::Origins& origins, std::ostream* out) {
    *out << origins.immediate.fullLabel().toStdString() << " / "
         << origins.root.fullLabel().toStdString();
}
}  // namespace zelvar

namespace {

const QString kSystemName = QStringLiteral("systemd");
const QString kGuiName = QStringLiteral("firefox");
const QString kTerminal = QStringLiteral("gnome-terminal-server");

using Origins = ProcessOriginDetector::Origins;

class ProcessOriginDetectorTest : public ::testing::Test {
protected:
    void add(Pid id, Pid ppid, const QString& name) {
        m_all.insert(id, ProcessInfo{id, ppid, name, 1.0, 0.0, m_clock.now(), {}, {}});
    }
    // What the detector answers for one process, after checking that the whole-snapshot path
    // gives the same answer.
    Origins originsOf(Pid id) {
        const Origins alone = m_detector.origins(m_all.value(id), m_all);
        QList<ProcessInfo> snapshot = m_all.values();
        m_detector.assignOrigins(snapshot);
        for (const ProcessInfo& p : snapshot) {
            if (p.id == id) {
                EXPECT_EQ((Origins{p.immediateOrigin, p.rootOrigin}), alone) << "pid " << id;
            }
        }
        return alone;
    }
    void setJobs(const QByteArray& launchctlBody) {
        m_jobs.setLaunchctlList("PID\tStatus\tLabel\n" + launchctlBody);
        m_clock.advance(ProcessOriginDetector::kLaunchctlCacheTTL);
        m_detector.refresh();
    }

    FakeClock m_clock;
    FakeServiceJobs m_jobs;
    ProcessOriginDetector m_detector{m_jobs, m_clock, linuxSystemProfile().originNames};
    QHash<Pid, ProcessInfo> m_all;
};

const Origins kSystem{ProcessOrigin::system(), ProcessOrigin::system()};
const Origins kUnknown{ProcessOrigin::unknown(), ProcessOrigin::unknown()};

}  // namespace

TEST_F(ProcessOriginDetectorTest, ThingsThatAreTheSystemThemselves) {
    add(0, 0, "swapper");
    add(1, 0, "init-of-some-name");
    add(400, 300, kSystemName);  // by name, whatever its pid and parents
    add(300, 1, "bash");
    EXPECT_EQ(originsOf(0), kSystem);
    EXPECT_EQ(originsOf(1), kSystem);
    EXPECT_EQ(originsOf(400), kSystem);
}

TEST_F(ProcessOriginDetectorTest, KernelThreadsAreTheSystemButNotEveryChildOfPidTwo) {
    add(2, 0, "kthreadd");
    add(35, 2, "kworker/0:1-events");
    EXPECT_EQ(originsOf(2), kSystem);
    EXPECT_EQ(originsOf(35), kSystem);

    // In a container pid 2 may be an ordinary process.
    m_all.clear();
    add(1, 0, "tini");
    add(2, 1, "bash");
    add(9, 2, "make");
    EXPECT_EQ(originsOf(9), (Origins{ProcessOrigin::cli("bash"), ProcessOrigin::system()}));
}

TEST_F(ProcessOriginDetectorTest, NamesOfTheProcessItselfAreNotClassifiedOnlyItsAncestors) {
    add(1, 0, "init");
    add(10, 1, kTerminal);
    add(20, 10, "zsh");
    add(30, 20, kGuiName);  // started from a shell: not a GUI app by its own name
    add(40, 10, "helper");  // started by the terminal, no shell between
    EXPECT_EQ(originsOf(30), (Origins{ProcessOrigin::cli("zsh"), ProcessOrigin::system()}));
    EXPECT_EQ(originsOf(40), (Origins{ProcessOrigin::gui(kTerminal), ProcessOrigin::system()}));
    EXPECT_EQ(originsOf(20), (Origins{ProcessOrigin::gui(kTerminal), ProcessOrigin::system()}));
    EXPECT_EQ(originsOf(10), kSystem);  // child of pid 1 with no job entry
}

TEST_F(ProcessOriginDetectorTest, TheWalkStopsAtAGapARepeatedIdOrTwentyAncestors) {
    add(50, 49, "orphan");
    EXPECT_EQ(originsOf(50), kUnknown);

    add(10, 11, "worker");
    add(11, 12, "bash");
    add(12, 11, "loop");
    EXPECT_EQ(originsOf(10), (Origins{ProcessOrigin::cli("bash"), ProcessOrigin::cli("bash")}));
    add(20, 20, "own-parent");
    EXPECT_EQ(originsOf(20), kUnknown);

    // 30 <- 31 <- ... <- 50: twenty unclassified ancestors, then a shell at the 21st.
    add(30, 31, "worker");
    for (Pid pid = 31; pid <= 50; ++pid) {
        add(pid, pid + 1, "unclassified");
    }
    add(51, 1, "bash");
    add(1, 0, "init");
    EXPECT_EQ(originsOf(30), kUnknown);

    m_all[50].name = "bash";  // the 20th ancestor is still looked at
    EXPECT_EQ(originsOf(30), (Origins{ProcessOrigin::cli("bash"), ProcessOrigin::cli("bash")}));
}

TEST_F(ProcessOriginDetectorTest, JobsClassifyThemselvesAndTheirDescendants) {
    setJobs("60\t0\tcom.example.agent\n70\t0\tcom.example.tool.x\n");
    add(1, 0, "init");
    add(60, 1, "agent");
    add(61, 60, "bash");
    add(62, 61, "child");
    add(70, 61, "tool");  // its own entry decides, the shell above it is not looked at
    add(80, 81, "far");
    add(81, 60, "dash");
    EXPECT_EQ(originsOf(60), (Origins{ProcessOrigin::launchAgent("com.example.agent"),
                                      ProcessOrigin::launchAgent("com.example.agent")}));
    EXPECT_EQ(originsOf(70), (Origins{ProcessOrigin::launchAgent("com.example.tool.x"),
                                      ProcessOrigin::launchAgent("com.example.tool.x")}));
    EXPECT_EQ(originsOf(62), (Origins{ProcessOrigin::cli("bash"), ProcessOrigin::system()}));

    m_all.remove(1);  // the chain now ends at the job
    EXPECT_EQ(originsOf(62), (Origins{ProcessOrigin::cli("bash"),
                                      ProcessOrigin::launchAgent("com.example.agent")}));
    EXPECT_EQ(originsOf(80), (Origins{ProcessOrigin::cli("dash"),
                                      ProcessOrigin::launchAgent("com.example.agent")}));

    // A shell or GUI name beats a job entry when classifying an ancestor.
    setJobs("61\t0\tcom.example.shell-job\n");
    EXPECT_EQ(originsOf(62), (Origins{ProcessOrigin::cli("bash"), ProcessOrigin::cli("bash")}));
}

TEST_F(ProcessOriginDetectorTest, JobMapIsCachedForThirtySecondsFromTheEndOfItsListing) {
    m_detector.refresh();  // the first refresh always asks, and finds nothing
    EXPECT_EQ(m_jobs.calls(), 1);
    EXPECT_TRUE(m_detector.launchctlMap().isEmpty());

    m_jobs.setLaunchctlList("PID\tStatus\tLabel\n5\t0\tcom.example.a\n");
    m_clock.advance(29.9);
    m_detector.refresh();
    EXPECT_EQ(m_jobs.calls(), 1);
    EXPECT_TRUE(m_detector.launchctlMap().isEmpty());

    m_clock.advance(0.1);  // 30 seconds exactly
    m_jobs.onListing([this] { m_clock.advance(10); });
    m_detector.refresh();
    EXPECT_EQ(m_jobs.calls(), 2);
    EXPECT_EQ(m_detector.launchctlMap().value(5), "com.example.a");

    // That listing took ten seconds: the map's age counts from its end.
    m_clock.advance(25);
    m_detector.refresh();
    EXPECT_EQ(m_jobs.calls(), 2);
    m_clock.advance(5);
    m_detector.refresh();
    EXPECT_EQ(m_jobs.calls(), 3);
}

TEST_F(ProcessOriginDetectorTest, ListingsMergeAndUndecodableOnesCountAsNothing) {
    using Format = ServiceJobListing::Format;
    m_jobs.setListings({
        {Format::SystemdShow, "Id=ssh.service\nMainPID=612\n\nId=cron.service\nMainPID=588\n"},
        {Format::SystemdShow, "Id=bad\xff\xfe.service\nMainPID=700\n"},
        {Format::SystemdShow,
         "Id=pipewire.service\nMainPID=1402\n\nId=later.service\n"
         "MainPID=588\n"},
    });
    m_detector.refresh();
    EXPECT_EQ(m_detector.launchctlMap(),
              (QHash<Pid, QString>{{612, "ssh"}, {588, "later"}, {1402, "pipewire"}}));
    add(612, 1, "sshd");
    EXPECT_EQ(originsOf(612),
              (Origins{ProcessOrigin::launchAgent("ssh"), ProcessOrigin::launchAgent("ssh")}));
}

TEST_F(ProcessOriginDetectorTest, WholeSnapshotAnswersAsEachProcessAlone) {
    const QStringList names = {"bash",     "zsh",    kGuiName, kTerminal, kSystemName,
                               "kthreadd", "worker", "helper", "agent",   "tool"};
    QRandomGenerator random(42);
    for (int round = 0; round < 200; ++round) {
        QByteArray jobs;
        for (int j = 0; j < 4; ++j) {
            jobs += QByteArray::number(random.bounded(1, 60)) + "\t0\tcom.example.job" +
                    QByteArray::number(j) + "\n";
        }
        setJobs(jobs);

        // Random parents among a small pid range give chains, cycles, gaps and pid 0/1/2;
        // long chains come from parents just below the pid.
        QList<ProcessInfo> processes;
        QSet<Pid> used;
        const int count = random.bounded(1, 60);
        for (int i = 0; i < count; ++i) {
            const Pid id = random.bounded(0, 80);
            if (used.contains(id)) {
                continue;
            }
            used.insert(id);
            const Pid ppid = random.bounded(4) == 0 ? id + 1 : random.bounded(0, 82);
            processes.append(ProcessInfo{
                id, ppid, names[random.bounded(names.size())], 1.0, 0.0, m_clock.now(), {}, {}});
        }
        QHash<Pid, ProcessInfo> byPid;
        for (const ProcessInfo& p : processes) {
            byPid.insert(p.id, p);
        }
        QList<ProcessInfo> assigned = processes;
        m_detector.assignOrigins(assigned);
        for (qsizetype i = 0; i < processes.size(); ++i) {
            ASSERT_EQ((Origins{assigned[i].immediateOrigin, assigned[i].rootOrigin}),
                      m_detector.origins(processes[i], byPid))
                << "round " << round << " pid " << processes[i].id;
        }
    }
}
