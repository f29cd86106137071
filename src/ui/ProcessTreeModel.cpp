#include "ui/ProcessTreeModel.h"

#include <algorithm>
#include <cstdint>
#include <unordered_set>

#include "ui/OriginChips.h"

namespace zelvar {

ProcessTreeModel::ProcessTreeModel(QObject* parent) : QAbstractItemModel(parent) {}

ProcessTreeModel::~ProcessTreeModel() = default;

bool ProcessTreeModel::sameProcess(const ProcessInfo& a, const ProcessInfo& b) {
    // Same pid assumed; a different start or name means the pid was given to a new process.
    return a.startTime == b.startTime && a.name == b.name;
}

void ProcessTreeModel::setForest(const QList<ProcessNode>& roots) {
    // Every node of the new forest by pid, iteratively so a deep chain costs no stack.
    std::unordered_map<Pid, const ProcessNode*> incoming;
    incoming.reserve(m_byPid.size() + 64);
    std::vector<const QList<ProcessNode>*> pending{&roots};
    while (!pending.empty()) {
        const QList<ProcessNode>* list = pending.back();
        pending.pop_back();
        for (const ProcessNode& node : *list) {
            incoming.emplace(node.id(), &node);
            if (!node.children.isEmpty()) {
                pending.push_back(&node.children);
            }
        }
    }

    // Rows whose process has gone, or whose pid now belongs to another process.
    std::unordered_set<Item*> dead;
    for (const auto& [pid, item] : m_byPid) {
        const auto found = incoming.find(pid);
        if (found == incoming.end() || !sameProcess(item->info, found->second->process)) {
            dead.insert(item.get());
        }
    }
    if (!dead.empty()) {
        // A living child of an ending process moves out first, so that removing the dead
        // subtree takes no living row with it: under its new parent when that can take it
        // now, else to the top level. Placement below puts it exactly where it belongs.
        for (Item* item : dead) {
            for (size_t i = 0; i < item->children.size();) {
                Item* child = item->children[i];
                if (dead.contains(child)) {
                    ++i;
                    continue;
                }
                Item* adopter = livingParentFor(child, incoming.at(child->info.id)->process, dead);
                moveRow(child, adopter, static_cast<int>(adopter->children.size()));
            }
        }
        // The topmost dead rows go as one block at the end of the top level: Qt adjusts every
        // persistent index (each expanded row is one) on each removal by walking up to the
        // root, but on a move by looking at its parent only, so gathering them first and
        // removing once costs far less than a removal for each.
        std::vector<Item*> doomed;
        for (Item* item : dead) {
            if (!dead.contains(item->parent)) {
                doomed.push_back(item);
            }
        }
        if (doomed.size() > 1) {
            for (Item* item : doomed) {
                const int end = static_cast<int>(m_root.children.size());
                if (!(item->parent == &m_root && item->row == end - 1)) {
                    moveRow(item, &m_root, end);
                }
            }
        }
        if (!doomed.empty()) {
            Item* parent = doomed.size() > 1 ? &m_root : doomed.front()->parent;
            const int last = doomed.size() > 1 ? static_cast<int>(m_root.children.size()) - 1
                                               : doomed.front()->row;
            const int first = last - static_cast<int>(doomed.size()) + 1;
            beginRemoveRows(indexFor(parent), first, last);
            parent->children.erase(parent->children.begin() + first,
                                   parent->children.begin() + last + 1);
            renumber(parent, first);
            endRemoveRows();
        }
        for (Item* item : dead) {
            m_byPid.erase(item->info.id);
        }
    }

    resortSiblings(roots, incoming);

    // Top down, breadth first: a parent is in its final place before its children are put
    // under it, so no move can put a row below its own descendant.
    std::vector<std::pair<Item*, const ProcessNode*>> queue;
    placeChildren(&m_root, roots, queue);
    for (size_t next = 0; next < queue.size(); ++next) {
        const auto [item, node] = queue[next];
        placeChildren(item, node->children, queue);
    }
}

void ProcessTreeModel::resortSiblings(const QList<ProcessNode>& roots,
                                      const std::unordered_map<Pid, const ProcessNode*>& incoming) {
    // Rows that stay under their parent but whose order changed (a sum of memory grew past a
    // sibling's) are put in the new order in one layout change for all parents, as a sort is:
    // Qt then adjusts the persistent indexes once, where a move per row would each time look
    // at every one of them.
    struct Resort {
        Item* parent;
        std::vector<Item*> staying;  // in the new order
    };
    std::vector<Resort> resorts;
    const auto consider = [&](Item* parent, const QList<ProcessNode>& nodes) {
        std::vector<Item*> staying;
        bool inOrder = true;
        for (const ProcessNode& node : nodes) {
            const auto found = m_byPid.find(node.id());
            if (found == m_byPid.end() || found->second->parent != parent) {
                continue;
            }
            Item* item = found->second.get();
            inOrder = inOrder && (staying.empty() || staying.back()->row < item->row);
            staying.push_back(item);
        }
        if (!inOrder) {
            resorts.push_back({parent, std::move(staying)});
        }
    };
    consider(&m_root, roots);
    for (const auto& [pid, node] : incoming) {
        if (node->children.isEmpty()) {
            continue;
        }
        if (const auto found = m_byPid.find(pid); found != m_byPid.end()) {
            consider(found->second.get(), node->children);
        }
    }
    if (resorts.empty()) {
        return;
    }

    QList<QPersistentModelIndex> parents;
    parents.reserve(static_cast<qsizetype>(resorts.size()));
    for (const Resort& resort : resorts) {
        parents.append(indexFor(resort.parent));
    }
    emit layoutAboutToBeChanged(parents, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    for (Resort& resort : resorts) {
        // The same places, taken in the new order; rows that leave this parent stay put.
        std::vector<int> rows;
        rows.reserve(resort.staying.size());
        for (const Item* item : resort.staying) {
            rows.push_back(item->row);
        }
        std::sort(rows.begin(), rows.end());
        for (size_t i = 0; i < rows.size(); ++i) {
            resort.parent->children[static_cast<size_t>(rows[i])] = resort.staying[i];
            resort.staying[i]->row = rows[i];
        }
    }
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& index : before) {
        Item* item = itemFor(index);
        after.append(createIndex(item->row, index.column(), item));
    }
    changePersistentIndexList(before, after);
    emit layoutChanged(parents, QAbstractItemModel::VerticalSortHint);
}

void ProcessTreeModel::placeChildren(Item* parent, const QList<ProcessNode>& nodes,
                                     std::vector<std::pair<Item*, const ProcessNode*>>& queue) {
    // The rows already under `parent` that keep their relative order (the longest run of
    // increasing rows, in the new order) stay where they are; only the others move. A
    // re-sorted list then costs as many moves as rows that changed places, not one per row
    // that slid.
    std::vector<Item*> present(static_cast<size_t>(nodes.size()), nullptr);
    std::vector<int> rows;
    std::vector<size_t> positions;
    for (qsizetype i = 0; i < nodes.size(); ++i) {
        if (const auto found = m_byPid.find(nodes[i].id()); found != m_byPid.end()) {
            present[static_cast<size_t>(i)] = found->second.get();
            if (found->second->parent == parent) {
                rows.push_back(found->second->row);
                positions.push_back(static_cast<size_t>(i));
            }
        }
    }
    std::vector<bool> stays(static_cast<size_t>(nodes.size()), false);
    for (size_t index : longestIncreasingRun(rows)) {
        stays[positions[index]] = true;
    }

    const QModelIndex parentIndex = indexFor(parent);
    Item* previous = nullptr;
    for (qsizetype i = 0; i < nodes.size(); ++i) {
        const ProcessNode& node = nodes[i];
        Item* item = present[static_cast<size_t>(i)];
        // Right after the row placed before it; rows destined for other parents may still sit
        // in between until those parents are placed.
        const int target = previous ? previous->row + 1 : 0;
        if (item == nullptr) {
            auto created = std::make_unique<Item>();
            item = created.get();
            item->info = node.process;
            item->aggregateMemoryMB = node.aggregateMemoryMB;
            item->listsChildren = !node.children.isEmpty();
            item->parent = parent;
            beginInsertRows(parentIndex, target, target);
            m_byPid.emplace(node.id(), std::move(created));
            parent->children.insert(parent->children.begin() + target, item);
            renumber(parent, target);
            endInsertRows();
        } else {
            if (!stays[static_cast<size_t>(i)] &&
                !(item->parent == parent && item->row == target)) {
                moveRow(item, parent, target);
            }
            updateValues(item, node);
        }
        previous = item;
        if (!node.children.isEmpty()) {
            queue.emplace_back(item, &node);
        }
    }
    // Rows left between or after these belong elsewhere and move out when their new parent is
    // placed.
}

std::vector<size_t> ProcessTreeModel::longestIncreasingRun(const std::vector<int>& values) {
    // Patience sorting: tails[k] is the index of the smallest last value of a run of length
    // k + 1, and back links rebuild the run.
    std::vector<size_t> tails;
    std::vector<size_t> back(values.size(), SIZE_MAX);
    for (size_t i = 0; i < values.size(); ++i) {
        const auto at = std::lower_bound(tails.begin(), tails.end(), values[i],
                                         [&](size_t t, int v) { return values[t] < v; });
        if (at != tails.begin()) {
            back[i] = *(at - 1);
        }
        if (at == tails.end()) {
            tails.push_back(i);
        } else {
            *at = i;
        }
    }
    std::vector<size_t> run;
    for (size_t i = tails.empty() ? SIZE_MAX : tails.back(); i != SIZE_MAX; i = back[i]) {
        run.push_back(i);
    }
    std::reverse(run.begin(), run.end());
    return run;
}

ProcessTreeModel::Item* ProcessTreeModel::livingParentFor(Item* child, const ProcessInfo& fresh,
                                                          const std::unordered_set<Item*>& dead) {
    const auto found = m_byPid.find(fresh.ppid);
    if (found == m_byPid.end() || dead.contains(found->second.get())) {
        return &m_root;
    }
    // Not below the child itself, which would make a loop.
    for (Item* up = found->second.get(); up != &m_root; up = up->parent) {
        if (up == child || dead.contains(up)) {
            return &m_root;
        }
    }
    return found->second.get();
}

void ProcessTreeModel::moveRow(Item* item, Item* newParent, int row) {
    Item* oldParent = item->parent;
    const int from = item->row;
    // `row` counts the rows before the move, as beginMoveRows does.
    const bool moved = beginMoveRows(indexFor(oldParent), from, from, indexFor(newParent), row);
    Q_ASSERT(moved);
    Q_UNUSED(moved);
    oldParent->children.erase(oldParent->children.begin() + from);
    const int to = oldParent == newParent && from < row ? row - 1 : row;
    newParent->children.insert(newParent->children.begin() + to, item);
    item->parent = newParent;
    if (oldParent == newParent) {
        renumber(newParent, std::min(from, to));
    } else {
        renumber(oldParent, from);
        renumber(newParent, to);
    }
    endMoveRows();
}

void ProcessTreeModel::renumber(Item* parent, int from) {
    for (size_t i = static_cast<size_t>(from); i < parent->children.size(); ++i) {
        parent->children[i]->row = static_cast<int>(i);
    }
}

void ProcessTreeModel::updateValues(Item* item, const ProcessNode& node) {
    const ProcessInfo& fresh = node.process;
    const bool lists = !node.children.isEmpty();
    const bool changed = item->info.memoryMB != fresh.memoryMB ||
                         item->info.cpuPercent != fresh.cpuPercent ||
                         item->aggregateMemoryMB != node.aggregateMemoryMB ||
                         item->info.immediateOrigin != fresh.immediateOrigin ||
                         item->info.rootOrigin != fresh.rootOrigin ||
                         item->info.ppid != fresh.ppid || item->listsChildren != lists;
    // The sample's time changes every cycle and shows nowhere, so it alone signals nothing.
    item->info = fresh;
    item->aggregateMemoryMB = node.aggregateMemoryMB;
    item->listsChildren = lists;
    if (changed) {
        emit dataChanged(indexFor(item, ProcessColumn), indexFor(item, BadgeColumn));
    }
}

ProcessTreeModel::Item* ProcessTreeModel::itemFor(const QModelIndex& index) const {
    return index.isValid() ? static_cast<Item*>(index.internalPointer()) : nullptr;
}

QModelIndex ProcessTreeModel::indexFor(Item* item, int column) const {
    if (item == nullptr || item == &m_root) {
        return {};
    }
    return createIndex(item->row, column, item);
}

QModelIndex ProcessTreeModel::indexOfPid(Pid pid, int column) const {
    const auto found = m_byPid.find(pid);
    return found == m_byPid.end() ? QModelIndex() : indexFor(found->second.get(), column);
}

const ProcessInfo* ProcessTreeModel::processAt(const QModelIndex& index) const {
    const Item* item = itemFor(index);
    return item ? &item->info : nullptr;
}

QString ProcessTreeModel::aggregateMemoryText(const QModelIndex& index) const {
    const Item* item = itemFor(index);
    return item ? ProcessNode::formatMB(item->aggregateMemoryMB) : QString();
}

bool ProcessTreeModel::hasChildrenToList(const QModelIndex& index) const {
    const Item* item = itemFor(index);
    return item && item->listsChildren;
}

QModelIndex ProcessTreeModel::index(int row, int column, const QModelIndex& parent) const {
    const Item* parentItem = parent.isValid() ? itemFor(parent) : &m_root;
    if (row < 0 || column < 0 || column >= kColumnCount ||
        row >= static_cast<int>(parentItem->children.size()) ||
        (parent.isValid() && parent.column() != 0)) {
        return {};
    }
    return createIndex(row, column, parentItem->children[static_cast<size_t>(row)]);
}

QModelIndex ProcessTreeModel::parent(const QModelIndex& child) const {
    const Item* item = itemFor(child);
    return item ? indexFor(item->parent) : QModelIndex();
}

int ProcessTreeModel::rowCount(const QModelIndex& parent) const {
    if (parent.isValid() && parent.column() != 0) {
        return 0;
    }
    const Item* item = parent.isValid() ? itemFor(parent) : &m_root;
    return static_cast<int>(item->children.size());
}

int ProcessTreeModel::columnCount(const QModelIndex&) const {
    return kColumnCount;
}

QVariant ProcessTreeModel::data(const QModelIndex& index, int role) const {
    const Item* item = itemFor(index);
    if (item == nullptr) {
        return {};
    }
    switch (role) {
        case PidRole:
            return item->info.id;
        case ProcessRole:
            return QVariant::fromValue(item->info);
        case Qt::ToolTipRole:
            if (index.column() == OriginColumn) {
                return OriginChips::toolTip(item->info.immediateOrigin, item->info.rootOrigin);
            }
            return {};
        case Qt::TextAlignmentRole:
            if (index.column() >= RamColumn && index.column() <= CpuColumn) {
                return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
            }
            return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
        case Qt::DisplayRole:
            break;
        default:
            return {};
    }
    switch (index.column()) {
        case ProcessColumn:
            return item->info.name;
        case RamColumn:
            return ProcessNode::formatMB(item->aggregateMemoryMB);
        case OwnColumn:
            // Only a parent shows its own share apart from the total.
            return item->listsChildren ? ProcessNode::formatMB(item->info.memoryMB) : QString();
        case CpuColumn:
            return item->info.displayCPU();
        default:
            return {};
    }
}

QVariant ProcessTreeModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
        case ProcessColumn:
            return QStringLiteral("Process");
        case OriginColumn:
            return QStringLiteral("Origin");
        case RamColumn:
            return QStringLiteral("RAM");
        case OwnColumn:
            return QStringLiteral("Own");
        case CpuColumn:
            return QStringLiteral("CPU");
        default:
            return QString();
    }
}

}  // namespace zelvar
