#pragma once

#include <QDialog>

class QCheckBox;
class QPushButton;

namespace zelvar {

class ConfigManager;
class LimitSlider;
class ProcessMonitor;
class ProcessPicker;

// "Add RAM Limit": a process chosen from the running ones or typed by hand, a limit (1024 MB
// to begin with) and the auto-kill switch. "Add Limit" is enabled while a name is selected,
// and adds the limit through the configuration, which validates and saves it. Modal; accepted
// when a limit was added, rejected by "Cancel".
class AddLimitSheet final : public QDialog {
    Q_OBJECT

public:
    static constexpr double kInitialLimitMB = 1024.0;

    AddLimitSheet(ProcessMonitor& processMonitor, ConfigManager& configManager,
                  QWidget* parent = nullptr);

    ProcessPicker* picker() const { return m_picker; }
    LimitSlider* limitSlider() const { return m_slider; }
    QCheckBox* autoKillToggle() const { return m_autoKill; }
    QPushButton* addButton() const { return m_addButton; }

private:
    void addLimit();

    ConfigManager& m_configManager;
    ProcessPicker* m_picker;
    LimitSlider* m_slider;
    QCheckBox* m_autoKill;
    QPushButton* m_addButton;
};

}  // namespace zelvar
