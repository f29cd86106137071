#include <gtest/gtest.h>

#include "process/ProcessOriginDetector.h"
#include "support/FakePorts.h"

using namespace zelvar;
using namespace zelvar::test;

namespace zelvar {
void PrintTo(const ProcessOriginDetector::Origins& origins, std::ostream* out) {
    *out << origins.immediate.fullLabel().toStdString() << " / "
         << origins.root.fullLabel().toStdString();
}
}  // namespace zelvar

namespace {

using Origins = ProcessOriginDetector::Origins;
const Origins kSystem{ProcessOrigin::system(), ProcessOrigin::system()};
const Origins kUnknown{ProcessOrigin::unknown(), ProcessOrigin::unknown()};

Origins both(const ProcessOrigin& origin) {
    return {origin, origin};
}

// One system's name tables with a system, a GUI and a terminal name taken from them.
struct System {
    const char* label;
    SystemProfile profile;
    QString systemName, guiName, terminal;
};

// Names the parameter in test listings, which would otherwise show its bytes.
void PrintTo(const System& system, std::ostream* out) {
    *out << system.label;
}

class ProcessOriginDetectorTest : public ::testing::TestWithParam<System> {
protected:
    void add(Pid id, Pid ppid, const QString& name) {
        m_all.insert(id, ProcessInfo{id, ppid, name, 1.0, 0.0, m_clock.now(), {}, {}});
    }
    Origins originsOf(Pid id) {
        QList<ProcessInfo> snapshot = m_all.values();
        m_detector.assignOrigins(snapshot);
        for (const ProcessInfo& p : snapshot) {
            if (p.id == id) {
                EXPECT_EQ(m_detector.origins(m_all[id], m_all),
                          (Origins{p.immediateOrigin, p.rootOrigin}));
                return {p.immediateOrigin, p.rootOrigin};
            }
        }
        ADD_FAILURE() << "no pid " << id;
        return {};
    }
    void setJobs(const QByteArray& launchctlBody) {
        m_jobs.setLaunchctlList("PID\tStatus\tLabel\n" + launchctlBody);
        m_clock.advance(ProcessOriginDetector::kLaunchctlCacheTTL);
        m_detector.refresh();
    }

    const System& m_system = GetParam();
    FakeClock m_clock;
    FakeServiceJobs m_jobs;
    ProcessOriginDetector m_detector{m_jobs, m_clock, m_system.profile.originNames};
    QHash<Pid, ProcessInfo> m_all;
};

INSTANTIATE_TEST_SUITE_P(BothSystems, ProcessOriginDetectorTest,
                         ::testing::Values(System{"linux", linuxSystemProfile(), "systemd",
                                                  "firefox", "gnome-terminal-server"},
                                           System{"macos", macSystemProfile(), "launchd", "Safari",
                                                  "Terminal"}),
                         [](const auto& info) { return std::string(info.param.label); });

}  // namespace

TEST_P(ProcessOriginDetectorTest, ThingsThatAreTheSystemThemselves) {
    add(0, 0, "swapper");
    add(1, 0, "init-of-some-name");
    add(400, 300, m_system.systemName);  // by name, whatever its pid and parents
    add(300, 1, "bash");
    add(2, 0, "kthreadd");
    add(35, 2, "kworker/0:1-events");
    add(36, 37, "");
    add(37, 0, "");
    EXPECT_EQ(originsOf(0), kSystem);
    EXPECT_EQ(originsOf(1), kSystem);
    EXPECT_EQ(originsOf(400), kSystem);
    // Kernel threads, the children of their own parent, only where the table has them.
    const bool kernelThreads = !m_system.profile.originNames.kernelThreadParent.isEmpty();
    EXPECT_EQ(originsOf(35) == kSystem, kernelThreads);
    EXPECT_EQ(originsOf(36), kUnknown);

    // In a container pid 2 may be an ordinary process.
    m_all.clear();
    add(1, 0, "tini");
    add(2, 1, "bash");
    add(9, 2, "make");
    EXPECT_EQ(originsOf(9), (Origins{ProcessOrigin::cli("bash"), ProcessOrigin::system()}));
}

TEST_P(ProcessOriginDetectorTest, NamesOfTheProcessItselfAreNotClassifiedOnlyItsAncestors) {
    const QString terminal = m_system.terminal;
    add(1, 0, "init");
    add(10, 1, terminal);
    add(20, 10, "zsh");
    add(30, 20, m_system.guiName);  // started from a shell: not a GUI app by its own name
    add(40, 10, "helper");          // started by the terminal, no shell between
    EXPECT_EQ(originsOf(30), (Origins{ProcessOrigin::cli("zsh"), ProcessOrigin::system()}));
    EXPECT_EQ(originsOf(40), (Origins{ProcessOrigin::gui(terminal), ProcessOrigin::system()}));
    EXPECT_EQ(originsOf(20), (Origins{ProcessOrigin::gui(terminal), ProcessOrigin::system()}));
    EXPECT_EQ(originsOf(10), kSystem);  // child of pid 1 with no job entry
}

TEST_P(ProcessOriginDetectorTest, TheWalkStopsAtAGapARepeatedIdOrTwentyAncestors) {
    add(50, 49, "orphan");
    EXPECT_EQ(originsOf(50), kUnknown);

    add(10, 11, "worker");
    add(11, 12, "bash");
    add(12, 11, "loop");
    EXPECT_EQ(originsOf(10), both(ProcessOrigin::cli("bash")));
    add(20, 20, "own-parent");
    EXPECT_EQ(originsOf(20), kUnknown);
    add(25, 26, "zsh");  // the walk comes back to the process itself, which it doesn't classify
    add(26, 25, "worker");
    EXPECT_EQ(originsOf(25), kUnknown);

    // 30 <- 31 <- ... <- 50: twenty unclassified ancestors, then a shell at the 21st.
    add(30, 31, "worker");
    for (Pid pid = 31; pid <= 50; ++pid) {
        add(pid, pid + 1, "unclassified");
    }
    add(51, 1, "bash");
    add(1, 0, "init");
    EXPECT_EQ(originsOf(30), kUnknown);

    m_all[50].name = "bash";  // the 20th ancestor is still looked at
    EXPECT_EQ(originsOf(30), both(ProcessOrigin::cli("bash")));
}

TEST_P(ProcessOriginDetectorTest, JobsClassifyThemselvesAndTheirDescendants) {
    setJobs("60\t0\tcom.example.agent\n70\t0\tcom.example.tool.x\n");
    const ProcessOrigin agent = ProcessOrigin::launchAgent("com.example.agent");
    add(1, 0, "init");
    add(60, 1, "agent");
    add(61, 60, "bash");
    add(62, 61, "child");
    add(70, 61, "tool");  // its own entry decides, the shell above it is not looked at
    add(80, 81, "far");
    add(81, 60, "dash");
    EXPECT_EQ(originsOf(60), both(agent));
    EXPECT_EQ(originsOf(70), both(ProcessOrigin::launchAgent("com.example.tool.x")));
    EXPECT_EQ(originsOf(62), (Origins{ProcessOrigin::cli("bash"), ProcessOrigin::system()}));

    m_all.remove(1);  // the chain now ends at the job
    EXPECT_EQ(originsOf(62), (Origins{ProcessOrigin::cli("bash"), agent}));
    EXPECT_EQ(originsOf(80), (Origins{ProcessOrigin::cli("dash"), agent}));

    // A shell or GUI name beats a job entry when classifying an ancestor.
    setJobs("61\t0\tcom.example.shell-job\n");
    EXPECT_EQ(originsOf(62), both(ProcessOrigin::cli("bash")));
}

TEST_P(ProcessOriginDetectorTest, JobMapIsCachedForThirtySecondsFromTheEndOfItsListing) {
    m_detector.refresh();  // the first refresh always asks, and finds nothing
    EXPECT_EQ(m_jobs.calls(), 1);
    EXPECT_TRUE(m_detector.launchctlMap().isEmpty());

    m_jobs.setLaunchctlList("PID\tStatus\tLabel\n5\t0\tcom.example.a\n");
    m_clock.advance(29.9);
    m_detector.refresh();
    EXPECT_TRUE(m_detector.launchctlMap().isEmpty());

    m_clock.advance(0.1);  // 30 seconds exactly
    m_jobs.onListing([this] { m_clock.advance(10); });
    m_detector.refresh();
    EXPECT_EQ(m_detector.launchctlMap().value(5), "com.example.a");

    // That listing took ten seconds: the map's age counts from its end.
    m_clock.advance(25);
    m_detector.refresh();
    EXPECT_EQ(m_jobs.calls(), 2);
    m_clock.advance(5);
    m_detector.refresh();
    EXPECT_EQ(m_jobs.calls(), 3);
}

TEST_P(ProcessOriginDetectorTest, ListingsMergeAndUndecodableOnesCountAsNothing) {
    using Format = ServiceJobListing::Format;
    m_jobs.setListings({
        {Format::SystemdShow, "Id=ssh.service\nMainPID=612\n\nId=cron.service\nMainPID=588\n"},
        {Format::SystemdShow, "Id=bad\xff\xfe.service\nMainPID=700\n"},
        {Format::SystemdShow,
         "Id=pipewire.service\nMainPID=1402\n\nId=later.service\nMainPID=588\n"},
    });
    m_detector.refresh();
    EXPECT_EQ(m_detector.launchctlMap(),
              (QHash<Pid, QString>{{612, "ssh"}, {588, "later"}, {1402, "pipewire"}}));
    add(612, 1, "sshd");
    EXPECT_EQ(originsOf(612), both(ProcessOrigin::launchAgent("ssh")));
}
