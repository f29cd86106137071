#pragma once

#include <QAbstractItemModel>
#include <QList>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "process/ProcessNode.h"

namespace zelvar {

// The process forest as a tree model that follows each new sample in place. Rows are matched
// by pid (a pid taken over by another process, told apart by its start time and name, is a new
// row), and a new forest becomes row removals, insertions, moves to a new parent, one layout
// change that re-sorts siblings (as a sort does) and changed values; never a reset: expansion,
// selection, scroll position and persistent indexes survive every cycle. Children are in the
// order of the node's childrenForList.
class ProcessTreeModel final : public QAbstractItemModel {
    Q_OBJECT

public:
    enum Column { ProcessColumn, OriginColumn, RamColumn, OwnColumn, CpuColumn, BadgeColumn };
    static constexpr int kColumnCount = 6;
    enum Role {
        PidRole = Qt::UserRole + 1,
        // The whole sample of the row, as a ProcessInfo.
        ProcessRole,
    };

    explicit ProcessTreeModel(QObject* parent = nullptr);
    ~ProcessTreeModel() override;

    // Brings the model to `roots` with the fewest row changes it finds.
    void setForest(const QList<ProcessNode>& roots);

    // The row of `pid`, invalid when it isn't in the tree.
    QModelIndex indexOfPid(Pid pid, int column = 0) const;
    // The sample behind a row; null for an invalid index.
    const ProcessInfo* processAt(const QModelIndex& index) const;
    // The row's aggregate memory as the RAM column shows it.
    QString aggregateMemoryText(const QModelIndex& index) const;
    bool hasChildrenToList(const QModelIndex& index) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    struct Item {
        ProcessInfo info;
        double aggregateMemoryMB = 0.0;
        bool listsChildren = false;
        Item* parent = nullptr;
        int row = 0;  // kept current, so finding an index costs no search
        std::vector<Item*> children;
    };

    static bool sameProcess(const ProcessInfo& a, const ProcessInfo& b);
    Item* itemFor(const QModelIndex& index) const;
    QModelIndex indexFor(Item* item, int column = 0) const;
    // Where a living child of an ending row can go before the removal: its new parent when
    // that is alive and not below it, else the top level.
    Item* livingParentFor(Item* child, const ProcessInfo& fresh,
                          const std::unordered_set<Item*>& dead);
    // `row` as beginMoveRows counts it: before the move.
    void moveRow(Item* item, Item* newParent, int row);
    // Indexes into `values` of one longest strictly increasing subsequence.
    static std::vector<size_t> longestIncreasingRun(const std::vector<int>& values);
    void renumber(Item* parent, int from);
    // Re-sorts, in one layout change, the rows that keep their parent but changed order.
    void resortSiblings(const QList<ProcessNode>& roots,
                        const std::unordered_map<Pid, const ProcessNode*>& incoming);
    // Makes `nodes` the children of `parent`, in order, moving rows from anywhere in the tree
    // or inserting them; queues each placed node whose own children come next.
    void placeChildren(Item* parent, const QList<ProcessNode>& nodes,
                       std::vector<std::pair<Item*, const ProcessNode*>>& queue);
    void updateValues(Item* item, const ProcessNode& node);

    Item m_root;
    // Owns every row but the invisible root.
    std::unordered_map<Pid, std::unique_ptr<Item>> m_byPid;
};

}  // namespace zelvar
