#pragma once

#include <QString>

class QDialog;
class QDialogButtonBox;
class QLabel;
class QPushButton;
class QVBoxLayout;
class QWidget;

namespace zelvar {

// The text pieces that every sheet of the dashboard is built from, so they look alike.
QLabel* sheetTitle(const QString& text, QWidget* parent);
QLabel* sheetHeading(const QString& text, QWidget* parent);
// Caption size in the secondary colour, wrapping.
QLabel* sheetCaption(const QString& text, QWidget* parent);

// The column a sheet is laid out in: 20 points of margin, 12 between its parts.
QVBoxLayout* sheetLayout(QDialog* sheet);
// "Cancel", which rejects the sheet, and `action` as its default button, at the foot of
// `layout`. The box is returned for a sheet that adds a button of its own.
QDialogButtonBox* addSheetButtons(QDialog* sheet, QVBoxLayout* layout, QPushButton* action);

}  // namespace zelvar
