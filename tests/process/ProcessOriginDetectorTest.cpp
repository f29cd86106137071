#include "process/ProcessOriginDetector.h"
#include "support/FakePorts.h"
#include "support/Testing.h"

namespace {

// "kind:value / kind:value" for the immediate and the root origin.
QString text(const ProcessOriginDetector::Origins& origins) {
    QStringList parts;
    for (const ProcessOrigin& origin : {origins.immediate, origins.root}) {
        const QString kind = origin.toJson().value("type").toString();
        parts << (origin.value().isEmpty() ? kind : kind + ':' + origin.value());
    }
    return parts.join(" / ");
}

// One system's name tables with a system, a GUI and a terminal name taken from them.
struct System {
    const char* label;
    SystemProfile profile;
    QString systemName, guiName, terminal;
};

void PrintTo(const System& system, std::ostream* out) {
    *out << system.label;
}

class ProcessOriginDetectorTest : public ::testing::TestWithParam<System> {
protected:
    void add(std::initializer_list<std::tuple<Pid, Pid, QString>> processes) {
        for (const auto& [id, ppid, name] : processes) {
            m_all.insert(id, ProcessInfo{id, ppid, name, 1.0, 0.0, m_clock.now(), {}, {}});
        }
    }
    // Classifies the whole table at once, and checks that one process's own walk agrees.
    QString originsOf(Pid id) {
        QList<ProcessInfo> snapshot = m_all.values();
        m_detector.assignOrigins(snapshot);
        const ProcessInfo& p = snapshot.at(m_all.keys().indexOf(id));
        const QString origins = text({p.immediateOrigin, p.rootOrigin});
        EXPECT_EQ(text(m_detector.origins(m_all[id], m_all)), origins);
        return origins;
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
    add({{0, 0, "swapper"}, {1, 0, "any-init"}, {300, 1, "bash"}, {36, 37, ""}, {37, 0, ""}});
    add({{400, 300, m_system.systemName}, {2, 0, "kthreadd"}, {35, 2, "kworker/0:1"}});
    EXPECT_EQ(originsOf(0), "system / system");
    EXPECT_EQ(originsOf(1), "system / system");
    EXPECT_EQ(originsOf(400), "system / system");  // by name, whatever its pid and parents
    // Kernel threads, the children of their own parent, only where the table has them.
    const bool kernelThreads = !m_system.profile.originNames.kernelThreadParent.isEmpty();
    EXPECT_EQ(originsOf(35) == "system / system", kernelThreads);
    EXPECT_EQ(originsOf(36), "unknown / unknown");
}

TEST_P(ProcessOriginDetectorTest, NamesOfTheProcessItselfAreNotClassifiedOnlyItsAncestors) {
    add({{1, 0, "init"}, {10, 1, m_system.terminal}, {20, 10, "zsh"}, {30, 20, m_system.guiName}});
    add({{40, 10, "helper"}});
    EXPECT_EQ(originsOf(30), "cli:zsh / system");  // not a GUI app by its own name
    EXPECT_EQ(originsOf(40), "gui:" + m_system.terminal + " / system");  // no shell between
}

TEST_P(ProcessOriginDetectorTest, TheWalkStopsAtAGapARepeatedIdOrTwentyAncestors) {
    add({{10, 11, "worker"}, {11, 12, "bash"}, {12, 11, "loop"}});
    EXPECT_EQ(originsOf(10), "cli:bash / cli:bash");
    // The walk comes back to the process itself, which it doesn't classify.
    add({{25, 26, "zsh"}, {26, 25, "worker"}});
    EXPECT_EQ(originsOf(25), "unknown / unknown");

    // 30 <- 31 <- ... <- 50: twenty unclassified ancestors, then a shell at the 21st.
    for (Pid pid = 30; pid <= 50; ++pid) {
        add({{pid, pid + 1, "unclassified"}});
    }
    add({{51, 1, "bash"}, {1, 0, "init"}});
    EXPECT_EQ(originsOf(30), "unknown / unknown");

    m_all[50].name = "bash";  // the 20th ancestor is still looked at
    EXPECT_EQ(originsOf(30), "cli:bash / cli:bash");
}

TEST_P(ProcessOriginDetectorTest, JobsClassifyThemselvesAndTheirDescendants) {
    m_jobs.setLaunchctlList("PID\tStatus\tLabel\n60\t0\tagent\n70\t0\ttool\n");
    m_detector.refresh();
    add({{1, 0, "init"}, {60, 1, "agent"}, {61, 60, "bash"}, {62, 61, "child"}, {70, 61, "tool"}});
    EXPECT_EQ(originsOf(60), "launchAgent:agent / launchAgent:agent");
    EXPECT_EQ(originsOf(70), "launchAgent:tool / launchAgent:tool");  // not the shell above
    EXPECT_EQ(originsOf(62), "cli:bash / system");

    m_all.remove(1);  // the chain now ends at the job
    EXPECT_EQ(originsOf(62), "cli:bash / launchAgent:agent");

    // A shell or GUI name beats a job entry when classifying an ancestor.
    m_jobs.setLaunchctlList("PID\tStatus\tLabel\n61\t0\tshell-job\n");
    m_clock.advance(ProcessOriginDetector::kLaunchctlCacheTTL);
    m_detector.refresh();
    EXPECT_EQ(originsOf(62), "cli:bash / cli:bash");
}

TEST_P(ProcessOriginDetectorTest, JobMapIsCachedForThirtySecondsFromTheEndOfItsListing) {
    m_jobs.onListing([this] { m_clock.advance(10); });  // a slow tool
    // Seconds passed before each refresh, and the listings taken so far.
    const std::pair<double, int> refreshes[] = {{0, 1}, {29.9, 1}, {0.1, 2}, {29.9, 2}, {0.1, 3}};
    for (const auto& [seconds, listings] : refreshes) {
        m_clock.advance(seconds);
        m_detector.refresh();
        EXPECT_EQ(m_jobs.calls(), listings);
    }
}

TEST_P(ProcessOriginDetectorTest, ListingsMergeAndUndecodableOnesCountAsNothing) {
    using Format = ServiceJobListing::Format;
    m_jobs.setListings({
        {Format::SystemdShow, "Id=ssh.service\nMainPID=612\n\nId=cron.service\nMainPID=588\n"},
        {Format::SystemdShow, "Id=bad\xff\xfe.service\nMainPID=700\n"},
        {Format::SystemdShow, "Id=later.service\nMainPID=588\n"},
    });
    m_detector.refresh();
    EXPECT_EQ(m_detector.launchctlMap(), (QHash<Pid, QString>{{612, "ssh"}, {588, "later"}}));
}
