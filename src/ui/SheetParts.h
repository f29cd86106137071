#pragma once

#include <QString>

class QLabel;
class QWidget;

namespace zelvar {

// The text pieces that every sheet of the dashboard is built from, so they look alike.
QLabel* sheetTitle(const QString& text, QWidget* parent);
QLabel* sheetHeading(const QString& text, QWidget* parent);
// Caption size in the secondary colour, wrapping.
QLabel* sheetCaption(const QString& text, QWidget* parent);

}  // namespace zelvar
