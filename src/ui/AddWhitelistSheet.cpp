#include "ui/AddWhitelistSheet.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "config/ConfigManager.h"
#include "ui/ProcessPicker.h"
#include "ui/SheetParts.h"

namespace zelvar {

AddWhitelistSheet::AddWhitelistSheet(ProcessMonitor& processMonitor, ConfigManager& configManager,
                                     QWidget* parent)
    : QDialog(parent),
      m_configManager(configManager),
      m_picker(new ProcessPicker(processMonitor, this)),
      m_addButton(new QPushButton(tr("Add to Whitelist"), this)) {
    setWindowTitle(tr("Add to Whitelist"));
    setModal(true);
    resize(400, 300);
    QVBoxLayout* layout = sheetLayout(this);

    layout->addWidget(sheetTitle(tr("Add to Whitelist"), this));
    layout->addWidget(sheetCaption(
        tr("Whitelisted processes won't trigger alerts, but will still be monitored"), this));
    layout->addWidget(m_picker);
    layout->addStretch(1);

    addSheetButtons(this, layout, m_addButton);
    connect(m_addButton, &QPushButton::clicked, this, &AddWhitelistSheet::addToWhitelist);
    const auto updateEnabled = [this] {
        m_addButton->setEnabled(!m_picker->selectedProcess().isEmpty());
    };
    connect(m_picker, &ProcessPicker::selectionChanged, this, updateEnabled);
    updateEnabled();
}

void AddWhitelistSheet::addToWhitelist() {
    const QString name = m_picker->selectedProcess();
    if (name.isEmpty()) {
        return;
    }
    m_configManager.addToWhitelist(name);
    accept();
}

}  // namespace zelvar
