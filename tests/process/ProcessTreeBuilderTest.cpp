#include <gtest/gtest.h>

#include <QRandomGenerator>
#include <QSet>
#include <deque>
#include <functional>

#include "process/ProcessTreeBuilder.h"

using namespace zelvar;

namespace {

ProcessInfo process(Pid id, Pid ppid, double memoryMB) {
    return ProcessInfo{id, ppid, QStringLiteral("p%1").arg(id), memoryMB, 0.0, {}, {}, {}};
}

// "id(aggregate)[children]" in the forest's order. Test forests are small, so recursion is fine.
QString shape(const QList<ProcessNode>& nodes) {
    QStringList parts;
    for (const ProcessNode& node : nodes) {
        parts << QStringLiteral("%1(%2)").arg(node.id()).arg(node.aggregateMemoryMB);
        if (!node.children.isEmpty()) {
            parts.last() += QLatin1Char('[') + shape(node.children) + QLatin1Char(']');
        }
    }
    return parts.join(QLatin1Char(' '));
}

// The same text for the forest built the plain way: each attachment tested by a breadth-first
// walk of the node's subtree, then subtrees summed and siblings sorted stably.
QString referenceShape(const QList<ProcessInfo>& processes) {
    const int count = static_cast<int>(processes.size());
    QHash<Pid, int> byId;
    for (int i = 0; i < count; ++i) {
        byId.insert(processes[i].id, i);
    }
    std::vector<std::vector<int>> children(count);
    std::vector<int> roots;
    for (int i = 0; i < count; ++i) {
        const int parent = byId.value(processes[i].ppid, -1);
        bool root = parent < 0 || processes[i].ppid == processes[i].id;
        for (std::deque<int> queue{i}; !root && !queue.empty(); queue.pop_front()) {
            root = queue.front() == parent;
            queue.insert(queue.end(), children[queue.front()].begin(),
                         children[queue.front()].end());
        }
        (root ? roots : children[parent]).push_back(i);
    }
    const std::function<double(int)> sum = [&](int i) {
        double total = processes[i].memoryMB;
        for (const int c : children[i]) {
            total += sum(c);
        }
        return total;
    };
    const std::function<QString(std::vector<int>)> text = [&](std::vector<int> level) {
        std::stable_sort(level.begin(), level.end(), [&](int a, int b) { return sum(a) > sum(b); });
        QStringList parts;
        for (const int i : level) {
            parts << QStringLiteral("%1(%2)").arg(processes[i].id).arg(sum(i));
            if (!children[i].empty()) {
                parts.last() += QLatin1Char('[') + text(children[i]) + QLatin1Char(']');
            }
        }
        return parts.join(QLatin1Char(' '));
    };
    return text(roots);
}

}  // namespace

TEST(ProcessTreeBuilder, RootsAggregatesSiblingOrderAndCycles) {
    EXPECT_TRUE(ProcessTreeBuilder::build({}).isEmpty());

    // A (1) with children B (5) and C (2); D (3) a leaf; E's parent is gone; F its own parent.
    const QList<ProcessInfo> processes = {process(40, 1, 3.0),   process(10, 0, 1.0),
                                          process(11, 10, 5.0),  process(12, 10, 2.0),
                                          process(50, 999, 4.0), process(60, 60, 0.5)};
    const QList<ProcessNode> roots = ProcessTreeBuilder::build(processes);
    // The small parent with big children sorts above the bigger leaf.
    EXPECT_EQ(shape(roots), "10(8)[11(5) 12(2)] 50(4) 40(3) 60(0.5)");
    EXPECT_EQ(roots[0].process, processes[1]);
    EXPECT_FALSE(roots[1].childrenForList().has_value());
    ASSERT_TRUE(roots[0].childrenForList().has_value());
    EXPECT_EQ(roots[0].childrenForList()->size(), 2);

    // Equal sums keep the snapshot's order.
    EXPECT_EQ(
        shape(ProcessTreeBuilder::build({process(3, 1, 2.0), process(1, 0, 0.0), process(2, 1, 2.0),
                                         process(4, 9, 4.0), process(5, 1, 2.0)})),
        "1(6)[3(2) 2(2) 5(2)] 4(4)");
    // Two processes naming each other: the first attaches, the second becomes the root.
    EXPECT_EQ(shape(ProcessTreeBuilder::build({process(7, 8, 1.0), process(8, 7, 2.0)})),
              "8(3)[7(1)]");
}

TEST(ProcessTreeBuilder, TenThousandDeepChainsInEitherOrderAndSharedSubtrees) {
    constexpr int kDepth = 10000;
    QList<ProcessInfo> rootFirst;
    for (Pid pid = 1; pid <= kDepth; ++pid) {
        rootFirst.append(process(pid, pid - 1, 1.0));
    }
    QList<ProcessInfo> leafFirst(rootFirst.crbegin(), rootFirst.crend());
    for (const auto& processes : {rootFirst, leafFirst}) {
        QList<ProcessNode> roots = ProcessTreeBuilder::build(processes);
        ASSERT_EQ(roots.size(), 1);
        const ProcessNode* node = &roots[0];
        int depth = 1;
        for (; !node->children.isEmpty(); ++depth) {
            EXPECT_EQ(node->aggregateMemoryMB, kDepth - depth + 1);
            ASSERT_EQ(node->children.size(), 1);
            node = &node->children[0];
        }
        EXPECT_EQ(depth, kDepth);
        EXPECT_EQ(node->id(), kDepth);
        // A node taken out of the forest shares its subtree: dropping every holder of the
        // forest must leave it whole, and dropping the last holder must not recurse ten
        // thousand levels.
        const ProcessNode deepChild = roots[0].children[0].children[0];
        roots.clear();
        EXPECT_EQ(deepChild.aggregateMemoryMB, kDepth - 2);
        EXPECT_EQ(deepChild.children[0].children[0].aggregateMemoryMB, kDepth - 4);
    }
}

TEST(ProcessTreeBuilder, RandomSnapshotsMatchThePlainConstruction) {
    QRandomGenerator random(20261122);
    for (int round = 0; round < 300; ++round) {
        const int count = 1 + static_cast<int>(random.bounded(40));
        QList<ProcessInfo> processes;
        for (int i = 0; i < count; ++i) {
            const Pid id = 1 + static_cast<Pid>(random.bounded(60));
            // Parents mostly among the pids in use, so cycles and gaps both occur.
            const Pid ppid = static_cast<Pid>(random.bounded(62));
            processes.append(process(id, ppid, static_cast<double>(random.bounded(4))));
        }
        // Pids are unique in a snapshot.
        QSet<Pid> seen;
        processes.removeIf([&](const ProcessInfo& p) {
            const bool repeated = seen.contains(p.id);
            seen.insert(p.id);
            return repeated;
        });
        ASSERT_EQ(shape(ProcessTreeBuilder::build(processes)), referenceShape(processes))
            << "round " << round;
    }
}

TEST(ProcessNode, MemoryTextsSwitchToGigabytesAtExactly1024) {
    ProcessNode node(process(1, 0, 1024.0));
    EXPECT_EQ(node.aggregateMemoryMB, 1024.0);  // own memory at creation
    EXPECT_EQ(node.displayOwnMemory(), "1.0 GB");
    EXPECT_EQ(node.process.displayMemory(), "1024 MB");  // the flat row's boundary differs
    node.aggregateMemoryMB = 1023.4;
    EXPECT_EQ(node.displayAggregateMemory(), "1023 MB");
}
