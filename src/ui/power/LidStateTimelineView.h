#pragma once

#include <QList>
#include <QWidget>

#include "power/WattlogEvent.h"

namespace zelvar {

// "Lid Open / Closed": the lid's closings and openings in time order as a strip of segments,
// purple while closed, green while open. Only the newest transitions are drawn; the caption
// counts them all.
class LidStateTimelineView final : public QWidget {
    Q_OBJECT

public:
    static constexpr int kMaxSegments = 80;

    struct Segment {
        bool closed = false;
        QDateTime date;
        QString helpText;  // abbreviated date and short time
    };

    explicit LidStateTimelineView(QWidget* parent = nullptr);

    // Any events; only lid closings and openings are taken.
    void setEvents(const QList<WattlogEvent>& events);

    const QList<Segment>& segments() const { return m_segments; }
    int transitionCount() const { return m_count; }
    QString caption() const;
    // The segment under `point`, as an index into segments(); -1 for none.
    int segmentAt(const QPoint& point) const;

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRectF stripRect() const;

    QList<Segment> m_segments;
    int m_count = 0;
};

}  // namespace zelvar
