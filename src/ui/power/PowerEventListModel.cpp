#include "ui/power/PowerEventListModel.h"

namespace zelvar {

PowerEventListModel::PowerEventListModel(QObject* parent) : QAbstractListModel(parent) {}

void PowerEventListModel::setEvents(QList<WattlogEvent> events) {
    beginResetModel();
    m_events = std::move(events);
    endResetModel();
}

void PowerEventListModel::setSelectedEventID(const std::optional<QUuid>& id) {
    if (id == m_selected) {
        return;
    }
    const int before = m_selected ? rowOf(*m_selected) : -1;
    m_selected = id;
    const int after = id ? rowOf(*id) : -1;
    // The selected row grows by its raw line: tell the view that both rows changed size.
    for (int row : {before, after}) {
        if (row >= 0) {
            emit dataChanged(index(row), index(row), {ShowRawRole, Qt::SizeHintRole});
        }
    }
}

int PowerEventListModel::rowOf(const QUuid& id) const {
    for (qsizetype row = 0; row < m_events.size(); ++row) {
        if (m_events[row].id == id) {
            return int(row);
        }
    }
    return -1;
}

int PowerEventListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_events.size());
}

QVariant PowerEventListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= m_events.size()) {
        return {};
    }
    const WattlogEvent& event = m_events.at(index.row());
    switch (role) {
        case Qt::DisplayRole:
            return WattlogEventKinds::label(event.kind);
        case Qt::ToolTipRole:
            return event.detail;
        case ShowRawRole:
            return isSelected(index.row());
        case IdRole:
            return event.id;
        default:
            return {};
    }
}

}  // namespace zelvar
