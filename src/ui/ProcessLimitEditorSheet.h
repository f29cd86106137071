#pragma once

#include <QDialog>

#include "ui/ProcessLimitEditor.h"

class QCheckBox;
class QPushButton;

namespace zelvar {

class ConfigManager;
class LimitSlider;

// The limit of one process, opened from a row of the RAM tab: "Edit RAM Limit" over the limit
// that covers it, or "Set RAM Limit" with 1024 MB and auto-kill off when none does. "Save"
// updates that limit or sets a new one for the name; "Remove" (only with a limit) removes it.
// Every button closes the sheet: "Cancel" rejects, the others accept.
class ProcessLimitEditorSheet final : public QDialog {
    Q_OBJECT

public:
    static constexpr double kNewLimitMB = 1024.0;

    ProcessLimitEditorSheet(const ProcessLimitEditor& editor, ConfigManager& configManager,
                            QWidget* parent = nullptr);

    const ProcessLimitEditor& editor() const { return m_editor; }
    QString title() const;
    LimitSlider* limitSlider() const { return m_slider; }
    QCheckBox* autoKillToggle() const { return m_autoKill; }
    // Null when there is no limit to remove.
    QPushButton* removeButton() const { return m_removeButton; }
    QPushButton* saveButton() const { return m_saveButton; }

private:
    void save();
    void remove();

    ProcessLimitEditor m_editor;
    ConfigManager& m_configManager;
    LimitSlider* m_slider;
    QCheckBox* m_autoKill;
    QPushButton* m_removeButton = nullptr;
    QPushButton* m_saveButton;
};

}  // namespace zelvar
