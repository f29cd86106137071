#pragma once

#include <QString>
#include <QWidget>

class QComboBox;
class QLineEdit;

namespace zelvar {

class ProcessMonitor;

// The selection block of the add sheets: "Select Process" with a menu of the running process
// names (largest first, with their size) and, below it, a field for a name typed by hand.
// The menu follows the monitor's process list while the sheet is open; a chosen name stays
// chosen even when its processes end.
class ProcessPicker final : public QWidget {
    Q_OBJECT

public:
    explicit ProcessPicker(const ProcessMonitor& monitor, QWidget* parent = nullptr);

    // The name chosen in the menu; empty for "-- Choose from list --".
    QString selectedProcessName() const { return m_selectedProcessName; }
    QString customProcessName() const;
    // What the sheet acts on: the menu's choice, or else the typed name.
    QString selectedProcess() const;

    QComboBox* menu() const { return m_menu; }
    QLineEdit* customField() const { return m_custom; }

signals:
    // The selected process may have changed.
    void selectionChanged();

private:
    void rebuildMenu();

    const ProcessMonitor& m_monitor;
    QString m_selectedProcessName;
    QComboBox* m_menu;
    QLineEdit* m_custom;
};

}  // namespace zelvar
