#include <gtest/gtest.h>

#include <QRandomGenerator>
#include <QSet>
#include <deque>
#include <functional>
#include <memory>

#include "process/ProcessTreeBuilder.h"

using namespace zelvar;

namespace {

ProcessInfo process(Pid id, Pid ppid, double memoryMB) {
    return ProcessInfo{id, ppid, QStringLiteral("p%1").arg(id), memoryMB, 0.0, {}, {}, {}};
}

// "id(aggregate)[children]" in the forest's order, walked without recursion.
QString shape(const QList<ProcessNode>& roots) {
    QString text;
    struct Item {
        const ProcessNode* node;
        bool close;
    };
    std::vector<Item> pending;
    for (auto it = roots.crbegin(); it != roots.crend(); ++it) {
        pending.push_back({&*it, false});
    }
    while (!pending.empty()) {
        const Item item = pending.back();
        pending.pop_back();
        if (item.close) {
            text += QLatin1Char(']');
            continue;
        }
        text += QStringLiteral(" %1(%2)").arg(item.node->id()).arg(item.node->aggregateMemoryMB);
        if (!item.node->children.isEmpty()) {
            text += QLatin1Char('[');
            pending.push_back({item.node, true});
            for (auto it = item.node->children.crbegin(); it != item.node->children.crend(); ++it) {
                pending.push_back({&*it, false});
            }
        }
    }
    return text.trimmed();
}

// The forest built the plain way: each attachment tested by a breadth-first walk of the
// node's subtree, children appended to shared nodes in place, then summed and sorted.
QString referenceShape(const QList<ProcessInfo>& processes) {
    struct Node {
        ProcessInfo info;
        std::vector<Node*> children;
        double aggregate = 0;
    };
    std::vector<std::unique_ptr<Node>> nodes;
    QHash<Pid, Node*> byId;
    for (const ProcessInfo& p : processes) {
        nodes.push_back(std::make_unique<Node>(Node{p, {}, p.memoryMB}));
        byId.insert(p.id, nodes.back().get());
    }
    std::vector<Node*> roots;
    for (auto& owned : nodes) {
        Node* node = owned.get();
        Node* parent = byId.value(node->info.ppid);
        bool loop = false;
        if (parent && node->info.ppid != node->info.id) {
            std::deque<Node*> queue{node};
            while (!queue.empty() && !loop) {
                Node* n = queue.front();
                queue.pop_front();
                loop = n == parent;
                queue.insert(queue.end(), n->children.begin(), n->children.end());
            }
        }
        if (!parent || node->info.ppid == node->info.id || loop) {
            roots.push_back(node);
        } else {
            parent->children.push_back(node);
        }
    }
    std::vector<Node*> order;
    std::vector<Node*> stack(roots.rbegin(), roots.rend());
    while (!stack.empty()) {
        Node* n = stack.back();
        stack.pop_back();
        order.push_back(n);
        stack.insert(stack.end(), n->children.rbegin(), n->children.rend());
    }
    for (auto it = order.rbegin(); it != order.rend(); ++it) {
        for (Node* c : (*it)->children) {
            (*it)->aggregate += c->aggregate;
        }
    }
    const auto larger = [](Node* a, Node* b) { return a->aggregate > b->aggregate; };
    std::stable_sort(roots.begin(), roots.end(), larger);
    for (Node* n : order) {
        std::stable_sort(n->children.begin(), n->children.end(), larger);
    }
    // Same text form as shape(), recursively: these forests are small.
    std::function<QString(Node*)> text = [&](Node* n) {
        QString s = QStringLiteral(" %1(%2)").arg(n->info.id).arg(n->aggregate);
        if (!n->children.empty()) {
            s += QLatin1Char('[');
            for (Node* c : n->children) {
                s += text(c);
            }
            s += QLatin1Char(']');
        }
        return s;
    };
    QString all;
    for (Node* r : roots) {
        all += text(r);
    }
    return all.trimmed();
}

}  // namespace

TEST(ProcessTreeBuilder, RootsAggregatesAndSiblingOrder) {
    EXPECT_TRUE(ProcessTreeBuilder::build({}).isEmpty());

    // A (1) with children B (5) and C (2); D (3) a leaf; E's parent is gone; F its own parent.
    const QList<ProcessInfo> processes = {process(40, 1, 3.0),   process(10, 0, 1.0),
                                          process(11, 10, 5.0),  process(12, 10, 2.0),
                                          process(50, 999, 4.0), process(60, 60, 0.5)};
    const QList<ProcessNode> roots = ProcessTreeBuilder::build(processes);
    // The small parent with big children sorts above the bigger leaf.
    EXPECT_EQ(shape(roots), "10(8)[ 11(5) 12(2)] 50(4) 40(3) 60(0.5)");
    EXPECT_EQ(roots[0].process, processes[1]);
    EXPECT_FALSE(roots[1].childrenForList().has_value());
    ASSERT_TRUE(roots[0].childrenForList().has_value());
    EXPECT_EQ(roots[0].childrenForList()->size(), 2);
}

TEST(ProcessTreeBuilder, EqualSumsKeepTheSnapshotOrder) {
    const QList<ProcessInfo> processes = {process(3, 1, 2.0), process(1, 0, 0.0),
                                          process(2, 1, 2.0), process(4, 9, 4.0),
                                          process(5, 1, 2.0)};
    EXPECT_EQ(shape(ProcessTreeBuilder::build(processes)), "1(6)[ 3(2) 2(2) 5(2)] 4(4)");
}

TEST(ProcessTreeBuilder, ParentCyclesBreakAtTheMemberThatWouldCloseThem) {
    // Two processes naming each other: the first attaches, the second becomes the root.
    EXPECT_EQ(shape(ProcessTreeBuilder::build({process(7, 8, 1.0), process(8, 7, 2.0)})),
              "8(3)[ 7(1)]");
    // A three-cycle with a tail hanging off it.
    EXPECT_EQ(shape(ProcessTreeBuilder::build({process(1, 3, 1.0), process(2, 1, 1.0),
                                               process(3, 2, 1.0), process(4, 2, 1.0)})),
              "3(4)[ 1(3)[ 2(2)[ 4(1)]]]");
}

TEST(ProcessTreeBuilder, TenThousandDeepChainsInEitherOrder) {
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
        // A copy shares the chain; dropping the original must leave the copy whole, and
        // dropping the last holder must not recurse ten thousand levels.
        const QList<ProcessNode> copy = roots;
        roots.clear();
        EXPECT_EQ(copy[0].aggregateMemoryMB, kDepth);
        const ProcessNode deepChild = copy[0].children[0].children[0];
        EXPECT_EQ(deepChild.aggregateMemoryMB, kDepth - 2);
    }
}

TEST(ProcessTreeBuilder, SharedSubtreesOutliveTheForest) {
    ProcessNode child;
    {
        const QList<ProcessNode> roots = ProcessTreeBuilder::build(
            {process(1, 0, 1.0), process(2, 1, 1.0), process(3, 2, 1.0), process(4, 3, 1.0)});
        child = roots[0].children[0];
    }
    EXPECT_EQ(shape({child}), "2(3)[ 3(2)[ 4(1)]]");
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
    EXPECT_EQ(node.displayOwnMemory(), "1.0 GB");
    EXPECT_EQ(node.process.displayMemory(), "1024 MB");  // the flat row's boundary differs
    node.aggregateMemoryMB = 1023.4;
    EXPECT_EQ(node.displayAggregateMemory(), "1023 MB");
    EXPECT_EQ(ProcessNode::formatMB(1536.0), "1.5 GB");
    EXPECT_EQ(node.aggregateMemoryMB, 1023.4);
    EXPECT_EQ(ProcessNode(process(1, 0, 5.0)).aggregateMemoryMB, 5.0);
}
