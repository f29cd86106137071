#include <QTimeZone>

#include "process/DiskIOEnrichment.h"
#include "process/ProcessInfo.h"
#include "process/ProcessTreeBuilder.h"
#include "support/Testing.h"

static ProcessInfo process(Pid id, Pid ppid, double memoryMB) {
    return ProcessInfo{id, ppid, QStringLiteral("p%1").arg(id), memoryMB, 0.0, {}, {}, {}};
}

// "id(aggregate)[children]" in the forest's order. Test forests are small, so recursion is fine.
static QString shape(const QList<ProcessNode>& nodes) {
    QStringList parts;
    for (const ProcessNode& node : nodes) {
        parts << QStringLiteral("%1(%2)").arg(node.id()).arg(node.aggregateMemoryMB);
        if (!node.children.isEmpty()) {
            parts.last() += QLatin1Char('[') + shape(node.children) + QLatin1Char(']');
        }
    }
    return parts.join(QLatin1Char(' '));
}

// What was added to each writer of each window, then to each burst, by pid.
static QStringList enrichments(const DiskIORead& read) {
    QStringList lines;
    const auto describe = [&](const auto& entry) {
        lines << QStringLiteral("%1: %2 %3/%4")
                     .arg(entry.pid.value_or(-1))
                     .arg(entry.parentName.value_or("-"), entry.immediateOrigin.shortLabel(),
                          entry.rootOrigin.shortLabel());
    };
    for (const WindowData& window : read.summary.value_or(DiskIOSummary()).windows) {
        std::for_each(window.topWriters.cbegin(), window.topWriters.cend(), describe);
    }
    std::for_each(read.bursts.cbegin(), read.bursts.cend(), describe);
    return lines;
}

static QString describe(const ProcessOrigin& origin) {
    return origin.icon() + '|' + origin.shortLabel() + '|' + origin.fullLabel();
}

TEST(ProcessOrigin, LabelsOfEveryKind) {
    EXPECT_EQ(describe(ProcessOrigin::launchAgent("com.apple.Safari")),
              "⚙️|Safari|Launch Agent: com.apple.Safari");
    EXPECT_EQ(describe(ProcessOrigin::gui("firefox")), "🖥️|firefox|GUI App: firefox");
    EXPECT_EQ(describe(ProcessOrigin::cli("zsh")), "💻|zsh|CLI (zsh)");
    EXPECT_EQ(describe(ProcessOrigin::unknown()), "||Unknown");
    for (const SystemProfile& profile : {macSystemProfile(), linuxSystemProfile()}) {
        ProcessOrigin::setSystemStyle(profile.systemOrigin);
        EXPECT_EQ(describe(ProcessOrigin::system()),
                  profile.systemOrigin.icon + "|system|" + profile.systemOrigin.label);
    }
    // A one-letter last component, or none at all, shows the whole label. Characters count as a
    // reader counts them: one emoji, or a letter with a combining accent.
    for (const char* whole : {"org.example.x", "...", "com.example.😀", "org.e\u0301"}) {
        EXPECT_EQ(ProcessOrigin::launchAgent(whole).shortLabel(), whole);
    }
    EXPECT_EQ(ProcessOrigin::launchAgent("a.bc.").shortLabel(), "bc");
}

TEST(ProcessOrigin, JsonFormNamesTheKindAndToleratesUnknownTypes) {
    EXPECT_EQ(ProcessOrigin::system().toJson(), (QJsonObject{{"type", "system"}}));
    EXPECT_EQ(ProcessOrigin::gui("x").toJson(), (QJsonObject{{"type", "gui"}, {"value", "x"}}));
    EXPECT_EQ(ProcessOrigin::fromJson({{"type", "daemon"}, {"value", "x"}}),
              ProcessOrigin::unknown());
    // "value" is required only where the kind carries one.
    EXPECT_FALSE(ProcessOrigin::fromJson({{"type", "cli"}}).has_value());
    EXPECT_EQ(ProcessOrigin::fromJson({{"type", "system"}, {"value", 3}}), ProcessOrigin::system());
}

// A flat row shows exactly 1024 MB in megabytes, a tree node in gigabytes.
TEST(ProcessInfo, MemoryAndCpuTextsOfRowsAndTreeNodes) {
    ProcessNode node(ProcessInfo{.memoryMB = 1024.0, .cpuPercent = 12.345});
    EXPECT_EQ(node.process.displayMemory() + " " + node.process.displayCPU() + " " +
                  node.displayAggregateMemory(),
              "1024 MB 12.3% 1.0 GB");  // a node starts with its own memory
    node.process.memoryMB = 1024.1;
    node.aggregateMemoryMB = 1023.4;
    EXPECT_EQ(node.process.displayMemory() + " " + node.displayOwnMemory() + " " +
                  node.displayAggregateMemory(),
              "1.0 GB 1.0 GB 1023 MB");
}

TEST(ProcessInfo, JsonFormHasAllEightKeysAndRoundTrips) {
    const QDateTime sampled(QDate(2026, 2, 3), QTime(4, 5, 6), QTimeZone::utc());
    const ProcessInfo p{42,   1,       "Zelvar Helper",           12.5,
                        3.25, sampled, ProcessOrigin::cli("zsh"), ProcessOrigin::gui("Terminal")};
    const QJsonObject json = p.toJson();
    EXPECT_EQ(json.keys(), (QStringList{"cpu_percent", "id", "immediateOrigin", "memory_mb", "name",
                                        "ppid", "rootOrigin", "timestamp"}));
    EXPECT_EQ(ProcessInfo::fromJson(json), p);
    for (const QString& key : json.keys()) {
        QJsonObject missing = json;
        missing.remove(key);
        EXPECT_FALSE(ProcessInfo::fromJson(missing).has_value()) << key.toStdString();
    }
}

TEST(ProcessTreeBuilder, TenThousandDeepChainsInEitherOrderAndSharedSubtrees) {
    QList<ProcessInfo> rootFirst;
    for (Pid pid = 1; pid <= 10000; ++pid) {
        rootFirst.append(process(pid, pid - 1, 1.0));
    }
    for (const auto& processes :
         {rootFirst, QList<ProcessInfo>(rootFirst.crbegin(), rootFirst.crend())}) {
        QList<ProcessNode> roots = ProcessTreeBuilder::build(processes);
        ASSERT_EQ(roots.size(), 1);
        EXPECT_EQ(roots[0].aggregateMemoryMB, 10000);
        const ProcessNode* node = &roots[0];
        for (int depth = 1; depth < 10000; ++depth) {
            ASSERT_EQ(node->children.size(), 1) << depth;
            node = &node->children[0];
        }
        EXPECT_EQ(node->id(), 10000);
        // A node taken out of the forest shares its subtree: dropping the forest must leave it
        // whole, and dropping the last holder must not recurse ten thousand levels.
        const ProcessNode deepChild = roots[0].children[0].children[0];
        roots.clear();
        EXPECT_EQ(deepChild.children[0].children[0].aggregateMemoryMB, 9996);
    }
}

// Each process attaches under its parent unless the parent is gone, is the process itself, or
// is already in its subtree: then the process that closes the loop stays a root. Larger sums
// come first, equal ones in the snapshot's order.
TEST(ProcessTreeBuilder, ShapesOfForests) {
    const std::pair<QList<ProcessInfo>, QString> cases[] = {
        {{}, ""},
        {{process(40, 1, 3), process(10, 0, 1), process(11, 10, 5), process(12, 10, 2),
          process(50, 999, 4), process(60, 60, 0.5)},
         "10(8)[11(5) 12(2)] 50(4) 40(3) 60(0.5)"},
        {{process(3, 1, 2), process(1, 0, 0), process(2, 1, 2), process(4, 9, 4), process(5, 1, 2)},
         "1(6)[3(2) 2(2) 5(2)] 4(4)"},
        {{process(9, 8, 4), process(8, 7, 2), process(7, 9, 1)}, "7(7)[8(6)[9(4)]]"},
        {{process(1, 2, 1), process(2, 3, 2), process(3, 2, 4), process(4, 3, 8)},
         "3(15)[4(8) 2(3)[1(1)]]"},
        {{process(5, 6, 1), process(6, 7, 1), process(7, 8, 1), process(8, 5, 1), process(9, 5, 1),
          process(10, 11, 3), process(11, 10, 2)},
         "8(5)[7(4)[6(3)[5(2)[9(1)]]]] 11(5)[10(3)]"},
    };
    for (const auto& [processes, expected] : cases) {
        EXPECT_EQ(shape(ProcessTreeBuilder::build(processes)), expected);
    }
    const QList<ProcessNode> roots = ProcessTreeBuilder::build(cases[1].first);
    EXPECT_EQ(roots[0].process, cases[1].first[1]);
    EXPECT_FALSE(roots[1].childrenForList());
    EXPECT_EQ(roots[0].childrenForList().value_or(QList<ProcessNode>()).size(), 2);
}

TEST(DiskIOEnrichment, AddsParentAndOriginsOfRunningProcessesToWritersAndBursts) {
    const QList<ProcessInfo> processes{
        {1, 0, "systemd", 0, 0, {}, ProcessOrigin::system(), ProcessOrigin::system()},
        {300, 1, "rsync", 0, 0, {}, ProcessOrigin::cli("bash"), ProcessOrigin::gui("Terminal")},
        {400, 999, "orphan", 0, 0, {}, ProcessOrigin::cli("sh"), ProcessOrigin::cli("sh")},
    };
    // A pid too wide for the system names no process, not the one of its low bits.
    const qint64 wide = qint64(1) << 33 | 300;
    DiskIORead read{
        DiskIOSummary{
            .timestamp = QDateTime::currentDateTimeUtc(),
            .windows = {{.topWriters = {{.pid = 300}, {.pid = std::nullopt}, {.pid = 400}}},
                        {.topWriters = {{.pid = 5000}, {.pid = wide}}}}},
        {{.id = QUuid::createUuid(), .pid = 300}, {.pid = std::nullopt}}};

    const DiskIORead enriched = enrichDiskIO(read, processes);
    EXPECT_EQ(
        enrichments(enriched),
        (QStringList{"300: systemd bash/Terminal", "-1: - /", "400: - sh/sh", "5000: - /",
                     QString::number(wide) + ": - /", "300: systemd bash/Terminal", "-1: - /"}));
    // Everything else is kept as it was read.
    EXPECT_EQ(enriched.summary->timestamp, read.summary->timestamp);
    EXPECT_EQ(enriched.bursts[0].id, read.bursts[0].id);

    read.summary.reset();  // the bursts are enriched all the same
    EXPECT_EQ(enrichments(enrichDiskIO(read, processes)),
              (QStringList{"300: systemd bash/Terminal", "-1: - /"}));
}
