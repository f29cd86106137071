#pragma once

#include <QAbstractListModel>
#include <QList>

#include "process/ProcessInfo.h"

namespace zelvar {

// The filtered, flat list of processes. Follows each new list in place by pid, like the tree,
// so that the selection and an open context menu survive a refresh while the filter is set.
class ProcessListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        PidRole = Qt::UserRole + 1,
        // The row's sample, as a ProcessInfo.
        ProcessRole,
    };

    explicit ProcessListModel(QObject* parent = nullptr);

    void setProcesses(const QList<ProcessInfo>& processes);
    const QList<ProcessInfo>& processes() const { return m_processes; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

private:
    int rowOf(Pid pid, int from) const;

    QList<ProcessInfo> m_processes;
};

}  // namespace zelvar
