#include "ui/power/PowerViewState.h"

namespace zelvar {

PowerViewState::PowerViewState(QObject* parent) : QObject(parent) {
    for (WattlogEventKind kind : WattlogEventKinds::all()) {
        m_visibleKinds.insert(kind);
    }
}

void PowerViewState::setVisibleKinds(const QSet<WattlogEventKind>& kinds) {
    if (kinds != m_visibleKinds) {
        m_visibleKinds = kinds;
        emit visibleKindsChanged();
    }
}

void PowerViewState::toggleKind(WattlogEventKind kind) {
    if (!m_visibleKinds.remove(kind)) {
        m_visibleKinds.insert(kind);
    }
    emit visibleKindsChanged();
}

void PowerViewState::setFilterText(const QString& text) {
    if (text != m_filterText) {
        m_filterText = text;
        emit filterTextChanged();
    }
}

void PowerViewState::setSelectedEventID(const std::optional<QUuid>& id) {
    if (id != m_selectedEventID) {
        m_selectedEventID = id;
        emit selectedEventIDChanged();
    }
}

void PowerViewState::toggleSelection(const QUuid& id) {
    setSelectedEventID(m_selectedEventID == id ? std::nullopt : std::optional<QUuid>(id));
}

QList<WattlogEvent> PowerViewState::filteredEvents(const QList<WattlogEvent>& events) const {
    QList<WattlogEvent> result;
    for (const WattlogEvent& event : events) {
        if (!m_visibleKinds.contains(event.kind)) {
            continue;
        }
        if (!m_filterText.isEmpty() && !event.detail.contains(m_filterText, Qt::CaseInsensitive) &&
            !WattlogEventKinds::label(event.kind).contains(m_filterText, Qt::CaseInsensitive) &&
            !event.rawLine.contains(m_filterText, Qt::CaseInsensitive)) {
            continue;
        }
        result.append(event);
    }
    return result;
}

}  // namespace zelvar
