#pragma once

#include <QDialog>

class QPushButton;

namespace zelvar {

class ConfigManager;
class ProcessMonitor;
class ProcessPicker;

// "Add to Whitelist": a process chosen from the running ones or typed by hand, added to the
// whitelist through the configuration. Modal, 400 × 300; accepted when a name was added.
class AddWhitelistSheet final : public QDialog {
    Q_OBJECT

public:
    AddWhitelistSheet(ProcessMonitor& processMonitor, ConfigManager& configManager,
                      QWidget* parent = nullptr);

    ProcessPicker* picker() const { return m_picker; }
    QPushButton* addButton() const { return m_addButton; }

private:
    void addToWhitelist();

    ConfigManager& m_configManager;
    ProcessPicker* m_picker;
    QPushButton* m_addButton;
};

}  // namespace zelvar
