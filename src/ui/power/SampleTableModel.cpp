#include "ui/power/SampleTableModel.h"

#include <algorithm>

namespace zelvar {

SampleTableModel::SampleTableModel(QStringList headers, QObject* parent)
    : QAbstractTableModel(parent), m_headers(std::move(headers)) {}

void SampleTableModel::setRows(const QList<QStringList>& rows, const QList<double>& keys) {
    const qsizetype above = m_keys.isEmpty() ? -1 : keys.indexOf(m_keys.first());
    const qsizetype kept = std::min(m_keys.size(), keys.size() - above);
    const bool continues =
        above >= 0 && std::equal(m_keys.cbegin(), m_keys.cbegin() + kept, keys.cbegin() + above);
    if (!continues) {
        beginResetModel();
        m_rows = rows;
        m_keys = keys;
        endResetModel();
        return;
    }
    if (m_keys.size() > kept) {
        beginRemoveRows({}, int(kept), int(m_keys.size() - 1));
        m_rows.resize(kept);
        m_keys.resize(kept);
        endRemoveRows();
    }
    if (above > 0) {
        beginInsertRows({}, 0, int(above - 1));
        m_rows = rows.first(above) + m_rows;
        m_keys = keys.first(above) + m_keys;
        endInsertRows();
    }
    if (keys.size() > m_keys.size()) {
        beginInsertRows({}, int(m_keys.size()), int(keys.size() - 1));
        m_rows = rows;
        m_keys = keys;
        endInsertRows();
    }
    if (m_rows != rows) {
        m_rows = rows;
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    }
}

int SampleTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_rows.size());
}

int SampleTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_headers.size());
}

QVariant SampleTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || role != Qt::DisplayRole) {
        return {};
    }
    return m_rows.at(index.row()).value(index.column());
}

QVariant SampleTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    return m_headers.value(section);
}

}  // namespace zelvar
