#pragma once

#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QUuid>
#include <optional>

#include "power/WattlogEvent.h"

namespace zelvar {

inline size_t qHash(WattlogEventKind kind, size_t seed = 0) noexcept {
    return ::qHash(static_cast<int>(kind), seed);
}

// What the Power tab remembers between its subtabs: the kinds shown (all at first), the
// filter text of the event list and the selected event. The Timeline and Events subtabs share
// it, so a kind hidden on one is hidden on the other.
class PowerViewState final : public QObject {
    Q_OBJECT

public:
    explicit PowerViewState(QObject* parent = nullptr);

    const QSet<WattlogEventKind>& visibleKinds() const { return m_visibleKinds; }
    void setVisibleKinds(const QSet<WattlogEventKind>& kinds);
    // Shows a hidden kind, hides a shown one.
    void toggleKind(WattlogEventKind kind);

    const QString& filterText() const { return m_filterText; }
    void setFilterText(const QString& text);

    const std::optional<QUuid>& selectedEventID() const { return m_selectedEventID; }
    void setSelectedEventID(const std::optional<QUuid>& id);
    // Selects the event, or clears the selection when it is the selected one.
    void toggleSelection(const QUuid& id);

    // The events, in their order, whose kind is shown and, with a filter text, whose detail,
    // kind label or raw line contains it, whatever the case.
    QList<WattlogEvent> filteredEvents(const QList<WattlogEvent>& events) const;

signals:
    void visibleKindsChanged();
    void filterTextChanged();
    void selectedEventIDChanged();

private:
    QSet<WattlogEventKind> m_visibleKinds;
    QString m_filterText;
    std::optional<QUuid> m_selectedEventID;
};

}  // namespace zelvar
