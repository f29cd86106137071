#include "ui/EditLimitSheet.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "config/ConfigManager.h"
#include "ui/SheetParts.h"
#include "ui/widgets/LimitSlider.h"

namespace zelvar {

EditLimitSheet::EditLimitSheet(const ProcessLimit& limit, ConfigManager& configManager,
                               QWidget* parent)
    : QDialog(parent),
      m_limit(limit),
      m_configManager(configManager),
      m_slider(new LimitSlider(limit.limitMB, 80, this)),
      m_autoKill(new QCheckBox(tr("Auto-kill when limit exceeded"), this)),
      m_saveButton(new QPushButton(tr("Save"), this)) {
    const QString title = tr("Edit Limit: ") + limit.processName;
    setWindowTitle(title);
    setModal(true);
    resize(400, 300);
    m_autoKill->setChecked(limit.autoKillEnabled);

    QVBoxLayout* layout = sheetLayout(this);
    layout->addWidget(sheetTitle(title, this));
    layout->addWidget(sheetHeading(tr("RAM Limit (MB)"), this));
    layout->addWidget(m_slider);
    layout->addWidget(m_autoKill);
    layout->addWidget(
        sheetCaption(tr("Process will be terminated automatically if it exceeds the limit"), this));
    layout->addStretch(1);

    addSheetButtons(this, layout, m_saveButton);
    connect(m_saveButton, &QPushButton::clicked, this, &EditLimitSheet::save);
}

void EditLimitSheet::save() {
    // The limit is written in place, by id, and the whole configuration saved: the other
    // fields of the limit (its creation, its last trigger) stay as they are.
    MonitorConfig config = m_configManager.config();
    for (ProcessLimit& limit : config.limits) {
        if (limit.id == m_limit.id) {
            limit.limitMB = m_slider->value();
            limit.autoKillEnabled = m_autoKill->isChecked();
            m_configManager.setConfig(std::move(config));
            m_configManager.save();
            break;
        }
    }
    accept();
}

}  // namespace zelvar
