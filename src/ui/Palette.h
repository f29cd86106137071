#pragma once

#include <QColor>
#include <QFont>

class QWidget;

namespace zelvar {

// The named colours of the dashboard, with the values of the macOS system colours (light
// appearance), so that a red alert or a green "Live" reads the same on every desktop.
enum class NamedColor { Red, Orange, Green, Blue, Purple, Teal, Indigo, Pink, Yellow, Gray, Mint };

QColor namedColor(NamedColor name);

// The colour of secondary text: the widget's text colour at reduced strength, taken from its
// palette so that dark themes work. `widget` may be null (the application's palette).
QColor secondaryColor(const QWidget* widget = nullptr);
// The selection and accent colour of the widget's palette.
QColor accentColor(const QWidget* widget = nullptr);
// `color` at `opacity` (0 to 1), for the tinted backgrounds of chips and badges.
QColor withOpacity(QColor color, double opacity);

// The text sizes of the dashboard, relative to the application font: caption about 0.85 of
// it, second caption about 0.77, headline the body size in semibold.
QFont captionFont();
QFont caption2Font();
QFont headlineFont();
// Sub-heading: a little larger than the body.
QFont subheadlineFont();
QFont titleFont();
// `font` with figures of one width, so that changing numbers don't shift.
QFont monospacedDigits(QFont font);
QFont semibold(QFont font);

// A style sheet colour value ("rgba(r, g, b, a)").
QString styleColor(const QColor& color);

}  // namespace zelvar
