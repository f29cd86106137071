#pragma once

#include <QDialog>

#include "config/ProcessLimit.h"

class QCheckBox;
class QPushButton;

namespace zelvar {

class ConfigManager;
class LimitSlider;

// "Edit Limit: <name>" from the limits panel: the limit's size and auto-kill switch, written
// to the limit of the same id and saved by "Save". Modal, 400 × 300.
class EditLimitSheet final : public QDialog {
    Q_OBJECT

public:
    EditLimitSheet(const ProcessLimit& limit, ConfigManager& configManager,
                   QWidget* parent = nullptr);

    LimitSlider* limitSlider() const { return m_slider; }
    QCheckBox* autoKillToggle() const { return m_autoKill; }
    QPushButton* saveButton() const { return m_saveButton; }

private:
    void save();

    ProcessLimit m_limit;
    ConfigManager& m_configManager;
    LimitSlider* m_slider;
    QCheckBox* m_autoKill;
    QPushButton* m_saveButton;
};

}  // namespace zelvar
