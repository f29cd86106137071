#pragma once

#include <QColor>
#include <QString>
#include <QStringList>
#include <QWidget>

class QLabel;
class QListWidget;
class QPushButton;
class QStackedWidget;

namespace zelvar {

class BatteryPowerMonitor;
class EmptyStateView;
class PowerViewState;

// The colour of a live power log line, by the first of its words that it contains (sleep,
// wake, display, AC, battery, health); `primary` at 0.8 opacity for any other line.
QColor liveLineColor(const QString& line, const QColor& primary);

// The Power tab's Live subtab: whether the live tail runs, a button that starts or stops it,
// and the lines it brought, newest last. The list follows new lines while it is scrolled to
// the bottom and otherwise stays where the user left it.
class PowerLivePage final : public QWidget {
    Q_OBJECT

public:
    PowerLivePage(BatteryPowerMonitor& monitor, PowerViewState& state, QWidget* parent = nullptr);

    QString statusText() const;
    QPushButton* toggleButton() const { return m_toggle; }
    QListWidget* lineList() const { return m_list; }
    EmptyStateView* emptyState() const { return m_empty; }

private:
    void refreshStatus();
    void refreshLines();

    BatteryPowerMonitor& m_monitor;
    PowerViewState& m_state;
    QLabel* m_status;
    QPushButton* m_toggle;
    QStackedWidget* m_stack;
    QListWidget* m_list;
    EmptyStateView* m_empty;
    QStringList m_shownLines;
};

}  // namespace zelvar
