#include "ui/ProcessPicker.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "process/ProcessMonitor.h"
#include "ui/Palette.h"
#include "ui/ProcessChoice.h"

namespace zelvar {

ProcessPicker::ProcessPicker(const ProcessMonitor& monitor, QWidget* parent)
    : QWidget(parent),
      m_monitor(monitor),
      m_menu(new QComboBox(this)),
      m_custom(new QLineEdit(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);

    auto* heading = new QLabel(tr("Select Process"), this);
    heading->setFont(headlineFont());
    layout->addWidget(heading);

    auto* form = new QFormLayout;
    form->addRow(tr("Process"), m_menu);
    layout->addLayout(form);

    layout->addWidget(new QLabel(tr("Or enter custom process name:"), this));
    m_custom->setPlaceholderText(tr("Process name"));
    layout->addWidget(m_custom);

    rebuildMenu();
    connect(m_menu, &QComboBox::currentIndexChanged, this, [this](int index) {
        m_selectedProcessName = m_menu->itemData(index).toString();
        emit selectionChanged();
    });
    connect(m_custom, &QLineEdit::textChanged, this, &ProcessPicker::selectionChanged);
    connect(&m_monitor, &ProcessMonitor::currentProcessesChanged, this,
            &ProcessPicker::rebuildMenu);
}

QString ProcessPicker::customProcessName() const {
    return m_custom->text();
}

QString ProcessPicker::selectedProcess() const {
    return zelvar::selectedProcess(m_selectedProcessName, customProcessName());
}

void ProcessPicker::rebuildMenu() {
    const QSignalBlocker blocker(m_menu);
    m_menu->clear();
    m_menu->addItem(tr("-- Choose from list --"), QString());
    int selectedIndex = 0;
    for (const ProcessRAM& entry : processesWithRAM(m_monitor.currentProcesses())) {
        if (entry.name == m_selectedProcessName) {
            selectedIndex = m_menu->count();
        }
        m_menu->addItem(
            entry.name + QStringLiteral(" — ") + QString::asprintf("%.0f MB", entry.ramMB),
            entry.name);
    }
    if (!m_selectedProcessName.isEmpty() && selectedIndex == 0) {
        // The chosen name has no process any more: it stays the choice, shown without a size.
        selectedIndex = m_menu->count();
        m_menu->addItem(m_selectedProcessName, m_selectedProcessName);
    }
    m_menu->setCurrentIndex(selectedIndex);
}

}  // namespace zelvar
