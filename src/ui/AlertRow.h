#pragma once

#include <QStringList>
#include <QWidget>

#include "alerts/AlertRecord.h"

namespace zelvar {

// One recorded violation: the process with "Auto-Killed" when it was terminated, its pid and
// time; on the right its memory against the limit, and by how much it went over. Whole
// numbers are cut, so 2048.9 MB against 2000 is "+48 MB".
class AlertRow final : public QWidget {
    Q_OBJECT

public:
    explicit AlertRow(const AlertRecord& alert, QWidget* parent = nullptr);

    const AlertRecord& alert() const { return m_alert; }
    // The texts the row shows, left column first, then the two figures' columns.
    QStringList texts() const;

private:
    AlertRecord m_alert;
};

}  // namespace zelvar
