#include "ui/SheetParts.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/Palette.h"

namespace zelvar {

QLabel* sheetTitle(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setFont(titleFont());
    return label;
}

QLabel* sheetHeading(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setFont(headlineFont());
    return label;
}

QLabel* sheetCaption(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setFont(captionFont());
    label->setWordWrap(true);
    label->setStyleSheet(QStringLiteral("color: %1;").arg(styleColor(secondaryColor(parent))));
    return label;
}

QVBoxLayout* sheetLayout(QDialog* sheet) {
    auto* layout = new QVBoxLayout(sheet);
    layout->setContentsMargins(20, 20, 20, 20);
    layout->setSpacing(12);
    return layout;
}

QDialogButtonBox* addSheetButtons(QDialog* sheet, QVBoxLayout* layout, QPushButton* action) {
    auto* buttons = new QDialogButtonBox(sheet);
    buttons->addButton(QObject::tr("Cancel"), QDialogButtonBox::RejectRole);
    buttons->addButton(action, QDialogButtonBox::AcceptRole);
    action->setDefault(true);
    layout->addWidget(buttons);
    QObject::connect(buttons, &QDialogButtonBox::rejected, sheet, &QDialog::reject);
    return buttons;
}

}  // namespace zelvar
