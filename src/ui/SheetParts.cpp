#include "ui/SheetParts.h"

#include <QLabel>

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

}  // namespace zelvar
