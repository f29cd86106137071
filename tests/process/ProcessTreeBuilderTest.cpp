#include "process/ProcessTreeBuilder.h"
#include "support/Testing.h"

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
    EXPECT_FALSE(roots[1].childrenForList());
    EXPECT_EQ(roots[0].childrenForList().value_or(QList<ProcessNode>()).size(), 2);

    // Equal sums keep the snapshot's order.
    EXPECT_EQ(
        shape(ProcessTreeBuilder::build({process(3, 1, 2.0), process(1, 0, 0.0), process(2, 1, 2.0),
                                         process(4, 9, 4.0), process(5, 1, 2.0)})),
        "1(6)[3(2) 2(2) 5(2)] 4(4)");
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
        EXPECT_EQ(deepChild.children[0].children[0].aggregateMemoryMB, kDepth - 4);
    }
}

// Each process attaches under its parent unless the parent is already in its own subtree;
// then it stays a root, whichever process of the loop comes last.
TEST(ProcessTreeBuilder, CyclesOfAnyLengthBreakWhereTheyClose) {
    const std::pair<QList<ProcessInfo>, QString> cases[] = {
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
}

TEST(ProcessNode, MemoryTextsSwitchToGigabytesAtExactly1024) {
    ProcessNode node(process(1, 0, 1024.0));
    EXPECT_EQ(node.displayAggregateMemory(), "1.0 GB");  // own memory at creation
    node.aggregateMemoryMB = 1023.4;
    EXPECT_EQ(node.displayOwnMemory() + " / " + node.displayAggregateMemory(), "1.0 GB / 1023 MB");
}
