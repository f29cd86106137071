#include "ui/ProcessListModel.h"

#include <QHash>

namespace zelvar {
namespace {

bool sameProcess(const ProcessInfo& a, const ProcessInfo& b) {
    return a.id == b.id && a.startTime == b.startTime && a.name == b.name;
}

}  // namespace

ProcessListModel::ProcessListModel(QObject* parent) : QAbstractListModel(parent) {}

void ProcessListModel::setProcesses(const QList<ProcessInfo>& processes) {
    // Rows whose process is gone (or whose pid another process took), from the bottom so that
    // the rows above keep their numbers.
    QHash<Pid, const ProcessInfo*> incoming;
    incoming.reserve(processes.size());
    for (const ProcessInfo& process : processes) {
        incoming.insert(process.id, &process);
    }
    for (int row = static_cast<int>(m_processes.size()) - 1; row >= 0; --row) {
        const ProcessInfo* fresh = incoming.value(m_processes[row].id);
        if (fresh == nullptr || !sameProcess(*fresh, m_processes[row])) {
            beginRemoveRows({}, row, row);
            m_processes.removeAt(row);
            endRemoveRows();
        }
    }
    // Then row by row: in place, moved up from further down, or new.
    for (int row = 0; row < processes.size(); ++row) {
        const ProcessInfo& process = processes[row];
        const int found = rowOf(process.id, row);
        if (found == row) {
            if (!(m_processes[row] == process)) {
                m_processes[row] = process;
                emit dataChanged(index(row), index(row));
            }
        } else if (found > row) {
            beginMoveRows({}, found, found, {}, row);
            m_processes.move(found, row);
            endMoveRows();
            m_processes[row] = process;
            emit dataChanged(index(row), index(row));
        } else {
            beginInsertRows({}, row, row);
            m_processes.insert(row, process);
            endInsertRows();
        }
    }
}

int ProcessListModel::rowOf(Pid pid, int from) const {
    for (int row = from; row < m_processes.size(); ++row) {
        if (m_processes[row].id == pid) {
            return row;
        }
    }
    return -1;
}

int ProcessListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_processes.size());
}

QVariant ProcessListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= m_processes.size()) {
        return {};
    }
    const ProcessInfo& process = m_processes[index.row()];
    switch (role) {
        case Qt::DisplayRole:
            return process.name;
        case PidRole:
            return process.id;
        case ProcessRole:
            return QVariant::fromValue(process);
        default:
            return {};
    }
}

}  // namespace zelvar
