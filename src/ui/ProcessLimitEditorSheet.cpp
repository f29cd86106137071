#include "ui/ProcessLimitEditorSheet.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "config/ConfigManager.h"
#include "ui/Palette.h"
#include "ui/SheetParts.h"
#include "ui/widgets/LimitSlider.h"

namespace zelvar {

ProcessLimitEditorSheet::ProcessLimitEditorSheet(const ProcessLimitEditor& editor,
                                                 ConfigManager& configManager, QWidget* parent)
    : QDialog(parent),
      m_editor(editor),
      m_configManager(configManager),
      m_slider(new LimitSlider(editor.existingLimit ? editor.existingLimit->limitMB : kNewLimitMB,
                               90, this)),
      m_autoKill(new QCheckBox(tr("Auto-kill when limit exceeded"), this)),
      m_saveButton(new QPushButton(tr("Save"), this)) {
    setWindowTitle(title());
    setModal(true);
    // As wide as the other limit sheets, so that the slider over 100 to 32,768 MB has room.
    setMinimumWidth(400);
    m_autoKill->setChecked(editor.existingLimit && editor.existingLimit->autoKillEnabled);

    QVBoxLayout* layout = sheetLayout(this);
    layout->addWidget(sheetTitle(title(), this));
    auto* name = new QLabel(editor.processName, this);
    name->setStyleSheet(QStringLiteral("color: %1;").arg(styleColor(secondaryColor(this))));
    layout->addWidget(name);
    layout->addWidget(sheetHeading(tr("RAM Limit"), this));
    layout->addWidget(m_slider);
    layout->addWidget(m_autoKill);
    layout->addStretch(1);

    QDialogButtonBox* buttons = addSheetButtons(this, layout, m_saveButton);
    if (editor.existingLimit) {
        m_removeButton = buttons->addButton(tr("Remove"), QDialogButtonBox::DestructiveRole);
        m_removeButton->setStyleSheet(
            QStringLiteral("color: %1;").arg(styleColor(namedColor(NamedColor::Red))));
        connect(m_removeButton, &QPushButton::clicked, this, &ProcessLimitEditorSheet::remove);
    }
    connect(m_saveButton, &QPushButton::clicked, this, &ProcessLimitEditorSheet::save);
}

QString ProcessLimitEditorSheet::title() const {
    return m_editor.existingLimit ? tr("Edit RAM Limit") : tr("Set RAM Limit");
}

void ProcessLimitEditorSheet::save() {
    if (m_editor.existingLimit) {
        m_configManager.updateLimit(m_editor.existingLimit->id, m_slider->value(),
                                    m_autoKill->isChecked());
    } else {
        m_configManager.setLimit(m_editor.processName, m_slider->value(), m_autoKill->isChecked());
    }
    accept();
}

void ProcessLimitEditorSheet::remove() {
    m_configManager.removeLimit(m_editor.existingLimit->id);
    accept();
}

}  // namespace zelvar
