#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QUuid>
#include <optional>

#include "power/WattlogEvent.h"

namespace zelvar {

// The Events subtab's list: the filtered events, newest first, and which one is selected. The
// rows are painted by WattlogEventDelegate, so a list of thousands builds no widgets.
class PowerEventListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { ShowRawRole = Qt::UserRole + 1, IdRole };

    explicit PowerEventListModel(QObject* parent = nullptr);

    // `events` in the order to show.
    void setEvents(QList<WattlogEvent> events);
    void setSelectedEventID(const std::optional<QUuid>& id);

    const WattlogEvent& eventAt(int row) const { return m_events.at(row); }
    bool isSelected(int row) const { return m_selected && m_events.at(row).id == *m_selected; }
    // The row of the event, or -1.
    int rowOf(const QUuid& id) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    QList<WattlogEvent> m_events;
    std::optional<QUuid> m_selected;
};

}  // namespace zelvar
