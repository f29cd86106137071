#pragma once

#include <QWidget>

#include "focus/FocusEvent.h"
#include "ui/widgets/EventListModel.h"

class QLabel;

namespace zelvar {

class FocusMonitor;
class HistorySection;

// The Focus tab: a card with the application that has the focus, a warning while the last
// change gave it back after a brief theft, and the number of changes since the monitor
// started; below it every change of the history, newest first.
class FocusView final : public QWidget {
    Q_OBJECT

public:
    explicit FocusView(FocusMonitor& monitor, QWidget* parent = nullptr);

    QString currentAppText() const;
    // "Focus stolen by <name>", empty while nothing was stolen.
    QString stolenText() const;
    QString changesText() const;
    HistorySection* history() const { return m_history; }
    const EventListModel<FocusEvent>& historyModel() const { return *m_model; }

private:
    QWidget* buildStatusCard();
    void refreshStatus();
    void refreshHistory();

    FocusMonitor& m_monitor;
    QLabel* m_currentApp = nullptr;
    QWidget* m_stolen = nullptr;
    QLabel* m_stolenText = nullptr;
    QLabel* m_changes = nullptr;
    EventListModel<FocusEvent>* m_model = nullptr;
    HistorySection* m_history = nullptr;
};

}  // namespace zelvar
