#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QUuid>
#include <algorithm>

namespace zelvar {

// A monitor's event history as a list, newest first, at most `limit` rows. The monitors append
// at the end and drop their oldest events, so a new history is followed by inserting the new
// events at the top and removing what fell off the bottom: the rows in between keep their
// indexes' identity, and with them the view's selection, and an update costs the changed rows
// only. `Event` has a unique `id` and an `appName`.
template <typename Event>
class EventListModel final : public QAbstractListModel {
public:
    explicit EventListModel(qsizetype limit, QObject* parent = nullptr)
        : QAbstractListModel(parent), m_limit(limit) {}

    // `history` is oldest first, as the monitors keep it.
    void setHistory(const QList<Event>& history) {
        QList<Event> rows;
        rows.reserve(std::min(history.size(), m_limit));
        for (qsizetype i = history.size() - 1; i >= 0 && rows.size() < m_limit; --i) {
            rows.append(history.at(i));
        }
        // An empty list is filled like any other: every row is new at the top.
        const qsizetype added = m_rows.isEmpty() ? rows.size() : indexOf(rows, m_rows.first().id);
        if (added < 0 || !followsFrom(rows, added)) {
            // Not a continuation of the rows shown (the monitors never do this): start over.
            beginResetModel();
            m_rows = std::move(rows);
            endResetModel();
            return;
        }
        if (added > 0) {
            beginInsertRows({}, 0, int(added) - 1);
            m_rows = rows.first(added) + m_rows;
            endInsertRows();
        }
        if (m_rows.size() > rows.size()) {
            beginRemoveRows({}, int(rows.size()), int(m_rows.size()) - 1);
            m_rows.resize(rows.size());
            endRemoveRows();
        }
    }

    const Event& at(int row) const { return m_rows.at(row); }
    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : int(m_rows.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid() || index.row() >= m_rows.size()) {
            return {};
        }
        if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) {
            return m_rows.at(index.row()).appName;
        }
        return {};
    }

private:
    static qsizetype indexOf(const QList<Event>& rows, const QUuid& id) {
        const auto found = std::find_if(rows.begin(), rows.end(),
                                        [&id](const Event& event) { return event.id == id; });
        return found == rows.end() ? -1 : found - rows.begin();
    }
    // Whether the rows from `offset` on are the current rows, in order, as far as both go.
    bool followsFrom(const QList<Event>& rows, qsizetype offset) const {
        const qsizetype overlap = std::min(rows.size() - offset, m_rows.size());
        for (qsizetype i = 0; i < overlap; ++i) {
            if (rows.at(offset + i).id != m_rows.at(i).id) {
                return false;
            }
        }
        // Rows can only fall off the bottom, never come back under the kept ones.
        return rows.size() - offset <= m_rows.size();
    }

    qsizetype m_limit;
    QList<Event> m_rows;
};

}  // namespace zelvar
