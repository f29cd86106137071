#pragma once

#include <QList>
#include <QSet>
#include <QUuid>
#include <QWidget>
#include <optional>

#include "power/WattlogEvent.h"
#include "ui/power/PowerViewState.h"

namespace zelvar {

// "Event Timeline": a row per kind of event (a lane), each event a dot in its kind's colour,
// placed by its time between the first and the last event shown. A click on a dot selects its
// event; hovering shows the event under the pointer.
class EventLaneTimelineView final : public QWidget {
    Q_OBJECT

public:
    // A dot as drawn: its event, its lane (index into filteredLanes()) and its x within the
    // plot, which starts at plotLeft().
    struct Dot {
        QUuid id;
        int lane = 0;
        double x = 0;
    };

    explicit EventLaneTimelineView(QWidget* parent = nullptr);

    // Every kind with a lane, in the order of the rows; battery levels and lid openings have
    // none (they are drawn elsewhere).
    static const QList<WattlogEventKind>& defaultLanes();
    // width × (time − first) / max(last − first, 1 s), never below 0.
    static double xPosition(const QDateTime& time, const QDateTime& first, const QDateTime& last,
                            double width);

    void setEvents(const QList<WattlogEvent>& events, const QSet<WattlogEventKind>& visibleKinds,
                   const std::optional<QUuid>& selectedEventID,
                   const QList<WattlogEventKind>& lanes = defaultLanes());

    const QList<WattlogEventKind>& filteredLanes() const { return m_filteredLanes; }
    const QList<WattlogEvent>& visibleEvents() const { return m_visible; }
    const QList<Dot>& dots() const { return m_dots; }
    // What stands in place of the lanes, or the empty text while they show.
    QString emptyText() const;
    int plotLeft() const;
    double plotWidth() const;
    // The centre of the dot's event in widget coordinates.
    QPointF dotCenter(const Dot& dot) const;
    // The event whose dot is under `point`, if any.
    std::optional<WattlogEvent> eventAt(const QPointF& point) const;

    QSize sizeHint() const override;

signals:
    void eventClicked(const QUuid& id);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void placeDots();

    int m_eventCount = 0;
    QList<WattlogEventKind> m_filteredLanes;
    QList<WattlogEvent> m_visible;
    QList<Dot> m_dots;
    std::optional<QUuid> m_selected;
};

}  // namespace zelvar
