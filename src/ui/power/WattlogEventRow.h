#pragma once

#include <QWidget>

#include "power/WattlogEvent.h"

class QLabel;

namespace zelvar {

// One event of the power history in a list: its kind's symbol in the kind's colour, the kind,
// the detail, the time, the battery level and the power source when known; with `showRaw`, the
// line it was read from below, in a monospaced face.
class WattlogEventRow final : public QWidget {
    Q_OBJECT

public:
    WattlogEventRow(const WattlogEvent& event, bool showRaw, QWidget* parent = nullptr);

    const WattlogEvent& wattlogEvent() const { return m_event; }
    bool showsRaw() const { return m_raw != nullptr; }
    // The texts as shown, for tests and accessibility: kind, detail, time, then the battery
    // level and the source where present.
    QStringList texts() const;

signals:
    // A press anywhere on the row.
    void clicked();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    WattlogEvent m_event;
    QStringList m_texts;
    QLabel* m_raw = nullptr;
};

}  // namespace zelvar
