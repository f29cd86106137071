#include "process/ProcessTreeBuilder.h"

#include <QHash>
#include <algorithm>
#include <numeric>
#include <vector>

namespace zelvar {
namespace {

// Disjoint sets over the forest being built, each set one tree, with the tree's root kept per
// set. A node about to be attached is always the root of its own tree (its parent is decided
// only at its turn), so attaching it under `parent` closes a loop exactly when `parent` lies in
// its subtree, that is when `parent`'s tree has that node as its root. This answers the
// question that a breadth-first walk of the node's subtree would, in near-constant time.
class Forest {
public:
    explicit Forest(int count) : m_set(count), m_size(count, 1), m_treeRoot(count) {
        std::iota(m_set.begin(), m_set.end(), 0);
        std::iota(m_treeRoot.begin(), m_treeRoot.end(), 0);
    }

    int treeRootOf(int node) { return m_treeRoot[find(node)]; }

    // Hangs the tree rooted at `root` below `parent`.
    void attach(int root, int parent) {
        const int a = find(root);
        const int b = find(parent);
        const int treeRoot = m_treeRoot[b];
        const auto [small, large] = m_size[a] < m_size[b] ? std::pair{a, b} : std::pair{b, a};
        m_set[small] = large;
        m_size[large] += m_size[small];
        m_treeRoot[large] = treeRoot;
    }

private:
    int find(int node) {
        int root = node;
        while (m_set[root] != root) {
            root = m_set[root];
        }
        while (m_set[node] != root) {  // path compression
            const int next = m_set[node];
            m_set[node] = root;
            node = next;
        }
        return root;
    }

    std::vector<int> m_set;
    std::vector<int> m_size;
    std::vector<int> m_treeRoot;
};

}  // namespace

QList<ProcessNode> ProcessTreeBuilder::build(const QList<ProcessInfo>& processes) {
    if (processes.isEmpty()) {
        return {};
    }
    const int count = static_cast<int>(processes.size());
    QHash<Pid, int> indexById;
    indexById.reserve(count);
    for (int i = 0; i < count; ++i) {
        indexById.insert(processes[i].id, i);
    }

    // Attach in the snapshot's order.
    std::vector<int> parentOf(count, -1);
    Forest forest(count);
    for (int i = 0; i < count; ++i) {
        const ProcessInfo& p = processes[i];
        if (p.ppid == p.id) {
            continue;
        }
        const auto parent = indexById.constFind(p.ppid);
        if (parent == indexById.constEnd() || forest.treeRootOf(*parent) == i) {
            continue;  // parent gone, or attaching would close a loop
        }
        parentOf[i] = *parent;
        forest.attach(i, *parent);
    }

    // Children in attachment order, which is the snapshot's order, as flat ranges.
    std::vector<int> childStart(count + 1, 0);
    for (int i = 0; i < count; ++i) {
        if (parentOf[i] >= 0) {
            ++childStart[parentOf[i] + 1];
        }
    }
    std::partial_sum(childStart.begin(), childStart.end(), childStart.begin());
    std::vector<int> children(childStart[count]);
    std::vector<int> roots;
    {
        std::vector<int> filled(childStart.begin(), childStart.end() - 1);
        for (int i = 0; i < count; ++i) {
            if (parentOf[i] >= 0) {
                children[filled[parentOf[i]]++] = i;
            } else {
                roots.push_back(i);
            }
        }
    }

    // Depth-first from the roots; in reverse, every node comes after all its descendants.
    std::vector<int> reached;
    reached.reserve(count);
    std::vector<char> visited(count, 0);
    std::vector<int> stack(roots.rbegin(), roots.rend());
    while (!stack.empty()) {
        const int node = stack.back();
        stack.pop_back();
        if (visited[node]) {
            continue;
        }
        visited[node] = 1;
        reached.push_back(node);
        for (int c = childStart[node + 1] - 1; c >= childStart[node]; --c) {
            stack.push_back(children[c]);
        }
    }

    std::vector<double> aggregate(count);
    for (auto it = reached.rbegin(); it != reached.rend(); ++it) {
        double sum = processes[*it].memoryMB;
        for (int c = childStart[*it]; c < childStart[*it + 1]; ++c) {
            sum += aggregate[children[c]];
        }
        aggregate[*it] = sum;
    }

    const auto largerFirst = [&](int a, int b) { return aggregate[a] > aggregate[b]; };
    std::stable_sort(roots.begin(), roots.end(), largerFirst);
    for (int i = 0; i < count; ++i) {
        std::stable_sort(children.begin() + childStart[i], children.begin() + childStart[i + 1],
                         largerFirst);
    }

    // Assemble the nodes bottom-up, moving each finished subtree into its parent.
    std::vector<ProcessNode> nodes(count);
    for (auto it = reached.rbegin(); it != reached.rend(); ++it) {
        ProcessNode& node = nodes[*it];
        node.process = processes[*it];
        node.aggregateMemoryMB = aggregate[*it];
        node.children.reserve(childStart[*it + 1] - childStart[*it]);
        for (int c = childStart[*it]; c < childStart[*it + 1]; ++c) {
            node.children.append(std::move(nodes[children[c]]));
        }
    }
    QList<ProcessNode> forestRoots;
    forestRoots.reserve(static_cast<qsizetype>(roots.size()));
    for (const int r : roots) {
        forestRoots.append(std::move(nodes[r]));
    }
    return forestRoots;
}

}  // namespace zelvar
