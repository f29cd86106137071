#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTreeView>
#include <algorithm>
#include <map>

#include "process/ProcessTreeBuilder.h"
#include "support/Testing.h"
#include "ui/OriginChips.h"
#include "ui/ProcessListModel.h"
#include "ui/ProcessTreeModel.h"

namespace {

ProcessInfo process(Pid pid, Pid ppid, const QString& name, double memoryMB,
                    quint64 startTime = 1) {
    ProcessInfo info;
    info.id = pid;
    info.ppid = ppid;
    info.name = name;
    info.memoryMB = memoryMB;
    info.startTime = startTime;
    return info;
}

QList<ProcessNode> forestOf(QList<ProcessInfo> processes) {
    std::stable_sort(processes.begin(), processes.end(),
                     [](const auto& a, const auto& b) { return a.memoryMB > b.memoryMB; });
    return ProcessTreeBuilder::build(processes);
}

// A machine whose processes come and go: each step some end, some start (now and then on a
// pid that just ended), some move to another parent, and most change their figures.
class Machine {
public:
    explicit Machine(quint32 seed) : m_random(seed) {
        for (int i = 0; i < 40; ++i) {
            start();
        }
    }

    void step() {
        std::vector<Pid> ended;
        for (auto it = m_live.begin(); it != m_live.end();) {
            if (m_random.bounded(10) == 0) {
                ended.push_back(it->first);
                it = m_live.erase(it);
            } else {
                ++it;
            }
        }
        const int starting = static_cast<int>(m_random.bounded(8));
        for (int i = 0; i < starting; ++i) {
            // A pid that ended this very step, given to a new process of the same name or not.
            if (!ended.empty() && m_random.bounded(3) == 0) {
                const Pid reused = ended[m_random.bounded(static_cast<int>(ended.size()))];
                start(reused, m_random.bounded(2) == 0 ? QStringLiteral("p%1").arg(reused)
                                                       : QStringLiteral("reborn"));
            } else {
                start();
            }
        }
        for (auto& [pid, info] : m_live) {
            if (m_random.bounded(20) == 0) {
                info.ppid = randomParent();
            }
            if (m_random.bounded(3) != 0) {
                info.memoryMB = m_random.bounded(2000.0);
                info.cpuPercent = m_random.bounded(100.0);
            }
            if (m_random.bounded(15) == 0) {
                info.immediateOrigin =
                    m_random.bounded(2) == 0 ? ProcessOrigin::cli("bash") : ProcessOrigin::system();
            }
        }
    }

    QList<ProcessNode> forest() const {
        QList<ProcessInfo> processes;
        for (const auto& [pid, info] : m_live) {
            processes.append(info);
        }
        return forestOf(processes);
    }

private:
    Pid randomParent() {
        if (m_live.empty() || m_random.bounded(6) == 0) {
            return 0;  // a root
        }
        auto it = m_live.begin();
        std::advance(it, m_random.bounded(static_cast<int>(m_live.size())));
        return it->first;
    }

    void start(Pid pid = 0, QString name = {}) {
        if (pid == 0) {
            pid = m_nextPid++;
            name = QStringLiteral("p%1").arg(pid);
        }
        m_live[pid] = process(pid, randomParent(), name, m_random.bounded(2000.0), ++m_ticks);
    }

    QRandomGenerator m_random;
    std::map<Pid, ProcessInfo> m_live;
    Pid m_nextPid = 2;
    quint64 m_ticks = 0;
};

// The model shows exactly the forest: same rows in the same order, same texts.
void expectShows(const ProcessTreeModel& model, const QList<ProcessNode>& nodes,
                 const QModelIndex& parent = {}) {
    ASSERT_EQ(model.rowCount(parent), nodes.size());
    for (int row = 0; row < nodes.size(); ++row) {
        const ProcessNode& node = nodes[row];
        const QModelIndex index = model.index(row, 0, parent);
        ASSERT_EQ(index.data(ProcessTreeModel::PidRole).toInt(), node.id());
        EXPECT_EQ(index.data().toString(), node.process.name);
        EXPECT_EQ(model.index(row, ProcessTreeModel::RamColumn, parent).data().toString(),
                  node.displayAggregateMemory());
        EXPECT_EQ(model.index(row, ProcessTreeModel::OwnColumn, parent).data().toString(),
                  node.children.isEmpty() ? QString() : node.displayOwnMemory());
        EXPECT_EQ(model.index(row, ProcessTreeModel::CpuColumn, parent).data().toString(),
                  node.process.displayCPU());
        EXPECT_EQ(model.index(row, ProcessTreeModel::OriginColumn, parent)
                      .data(Qt::ToolTipRole)
                      .toString(),
                  OriginChips::toolTip(node.process.immediateOrigin, node.process.rootOrigin));
        expectShows(model, node.children, index);
    }
}

// Two models agree row for row on every column.
void expectSame(const QAbstractItemModel& a, const QAbstractItemModel& b,
                const QModelIndex& parentA = {}, const QModelIndex& parentB = {}) {
    ASSERT_EQ(a.rowCount(parentA), b.rowCount(parentB));
    for (int row = 0; row < a.rowCount(parentA); ++row) {
        for (int column = 0; column < ProcessTreeModel::kColumnCount; ++column) {
            EXPECT_EQ(a.index(row, column, parentA).data(), b.index(row, column, parentB).data());
        }
        expectSame(a, b, a.index(row, 0, parentA), b.index(row, 0, parentB));
    }
}

TEST(ProcessTreeModel, FollowsRandomForestsInPlaceAsARebuildWould) {
    for (quint32 seed : {1u, 2u, 3u}) {
        SCOPED_TRACE(seed);
        Machine machine(seed);
        ProcessTreeModel model;
        QAbstractItemModelTester tester(&model,
                                        QAbstractItemModelTester::FailureReportingMode::Fatal);
        QSignalSpy resets(&model, &QAbstractItemModel::modelAboutToBeReset);
        QSignalSpy moves(&model, &QAbstractItemModel::rowsAboutToBeMoved);
        for (int step = 0; step < 60; ++step) {
            SCOPED_TRACE(step);
            const QList<ProcessNode> forest = machine.forest();
            model.setForest(forest);
            ProcessTreeModel rebuilt;
            rebuilt.setForest(forest);
            expectShows(model, forest);
            expectSame(model, rebuilt);
            if (HasFailure()) {
                return;
            }
            machine.step();
        }
        EXPECT_EQ(resets.count(), 0);
        EXPECT_GT(moves.count(), 0);  // re-parenting went through moves, not remove and insert
    }
}

TEST(ProcessTreeModel, ReusedPidIsANewRowAndSurvivingChildrenOfAnEndedParentMove) {
    ProcessTreeModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.setForest(forestOf(
        {process(1, 0, "init", 10), process(5, 1, "shell", 5, 7), process(6, 5, "child", 1)}));
    const QPersistentModelIndex shell = model.indexOfPid(5);
    const QPersistentModelIndex child = model.indexOfPid(6);

    // Pid 5 now belongs to another process; its old child is adopted by init.
    model.setForest(forestOf(
        {process(1, 0, "init", 10), process(5, 1, "shell", 5, 99), process(6, 1, "child", 1)}));

    EXPECT_FALSE(shell.isValid());
    ASSERT_TRUE(child.isValid());
    EXPECT_EQ(child.parent(), model.indexOfPid(1));
    EXPECT_EQ(model.indexOfPid(5).data().toString(), "shell");
}

TEST(ProcessTreeModel, ExpansionSelectionAndPersistentIndexesSurviveARefresh) {
    ProcessTreeModel model;
    QTreeView view;
    view.setModel(&model);
    QList<ProcessInfo> processes{process(1, 0, "init", 10),    process(2, 1, "session", 50),
                                 process(3, 2, "editor", 300), process(4, 2, "terminal", 80),
                                 process(5, 4, "bash", 5),     process(6, 1, "daemon", 20)};
    model.setForest(forestOf(processes));
    view.expand(model.indexOfPid(1));
    view.expand(model.indexOfPid(2));
    view.expand(model.indexOfPid(4));
    view.selectionModel()->select(model.indexOfPid(5),
                                  QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    const QPersistentModelIndex bash = model.indexOfPid(5);

    // The daemon grows past the session, the editor ends, a new process starts under init.
    processes[5].memoryMB = 900;
    processes.removeAt(2);
    processes.append(process(7, 1, "new", 1));
    model.setForest(forestOf(processes));

    EXPECT_TRUE(view.isExpanded(model.indexOfPid(1)));
    EXPECT_TRUE(view.isExpanded(model.indexOfPid(2)));
    EXPECT_TRUE(view.isExpanded(model.indexOfPid(4)));
    EXPECT_EQ(model.indexOfPid(6).row(), 0);  // now first under init
    ASSERT_TRUE(bash.isValid());
    EXPECT_EQ(bash.data(ProcessTreeModel::PidRole).toInt(), 5);
    const QModelIndexList selected = view.selectionModel()->selectedRows();
    ASSERT_EQ(selected.size(), 1);
    EXPECT_EQ(selected.first().data(ProcessTreeModel::PidRole).toInt(), 5);
}

TEST(ProcessListModel, FollowsRandomListsInPlaceKeepingTheSelectedProcess) {
    Machine machine(7);
    ProcessListModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QSignalSpy resets(&model, &QAbstractItemModel::modelAboutToBeReset);
    for (int step = 0; step < 40; ++step) {
        SCOPED_TRACE(step);
        QList<ProcessInfo> list;
        for (const ProcessNode& root : machine.forest()) {
            list.append(root.process);  // the roots are enough for a changing flat list
        }
        const QPersistentModelIndex first = model.index(0);
        const Pid firstPid = first.data(ProcessListModel::PidRole).toInt();
        model.setProcesses(list);
        ASSERT_EQ(model.rowCount(), list.size());
        for (int row = 0; row < list.size(); ++row) {
            ASSERT_EQ(model.index(row).data(ProcessListModel::PidRole).toInt(), list[row].id);
        }
        // A row that lives on is still the same process wherever it went.
        if (first.isValid()) {
            EXPECT_EQ(first.data(ProcessListModel::PidRole).toInt(), firstPid);
        }
        machine.step();
    }
    EXPECT_EQ(resets.count(), 0);
}

}  // namespace
