#include "ui/AddLimitSheet.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "config/ConfigManager.h"
#include "ui/Palette.h"
#include "ui/ProcessPicker.h"
#include "ui/SheetParts.h"
#include "ui/widgets/LimitSlider.h"

namespace zelvar {

AddLimitSheet::AddLimitSheet(ProcessMonitor& processMonitor, ConfigManager& configManager,
                             QWidget* parent)
    : QDialog(parent),
      m_configManager(configManager),
      m_picker(new ProcessPicker(processMonitor, this)),
      m_slider(new LimitSlider(kInitialLimitMB, 80, this)),
      m_autoKill(new QCheckBox(tr("Auto-kill when limit exceeded"), this)),
      m_addButton(new QPushButton(tr("Add Limit"), this)) {
    setWindowTitle(tr("Add RAM Limit"));
    setModal(true);
    setMinimumWidth(400);
    QVBoxLayout* layout = sheetLayout(this);

    layout->addWidget(sheetTitle(tr("Add RAM Limit"), this));
    layout->addWidget(m_picker);
    layout->addWidget(sheetHeading(tr("RAM Limit (MB)"), this));
    layout->addWidget(m_slider);
    layout->addWidget(m_autoKill);
    layout->addWidget(
        sheetCaption(tr("Process will be terminated automatically if it exceeds the limit"), this));
    layout->addStretch(1);

    addSheetButtons(this, layout, m_addButton);
    connect(m_addButton, &QPushButton::clicked, this, &AddLimitSheet::addLimit);
    const auto updateEnabled = [this] {
        m_addButton->setEnabled(!m_picker->selectedProcess().isEmpty());
    };
    connect(m_picker, &ProcessPicker::selectionChanged, this, updateEnabled);
    updateEnabled();
}

void AddLimitSheet::addLimit() {
    const QString name = m_picker->selectedProcess();
    if (name.isEmpty()) {
        return;
    }
    m_configManager.addLimit(name, m_slider->value(), m_autoKill->isChecked());
    accept();
}

}  // namespace zelvar
