#pragma once

#include <QColor>
#include <QFont>
#include <QString>
#include <QWidget>

class QFrame;
class QLabel;
class QVBoxLayout;

namespace zelvar {

// The small building blocks that the dashboard's tabs lay out their cards and sections with.

// A label in `font`, in `color` when it is valid (else the palette's text colour).
QLabel* textLabel(const QString& text, const QFont& font, QWidget* parent,
                  const QColor& color = {});

// The symbol as a picture of `size` points, tinted; at least 16 points wide so that rows of
// mixed symbols line up.
QLabel* symbolLabel(const QString& symbol, int size, const QColor& tint, QWidget* parent);

// A card: a framed panel on the base colour, named `name` for style sheets and tests.
QFrame* card(const QString& name, QWidget* parent);
// Gives a frame of a card class of its own the card's look and name.
void makeCard(QFrame* frame, const QString& name);

// Lays `container` out as a row with `symbol` at its top left and a column for texts beside
// it, which is returned; what follows the texts goes into the container's row layout.
QVBoxLayout* symbolBesideTexts(QWidget* container, QLabel* symbol);

// Fills `page` with a frameless vertical scroll area and returns the layout of its content,
// for pages taller than the tab.
QVBoxLayout* scrollingColumn(QWidget* page);

// Deletes every widget and item of the container's layout.
void clearLayout(QWidget* container);

// A headline at the left, and `trailing` (may be null) at the right.
QWidget* sectionHeader(const QString& title, QWidget* trailing, QWidget* parent);

// A thin rounded bar on the separator colour, filled from the left to `fraction` (0 to 1).
// The fraction and the fill are kept as the properties "fraction" and "fill".
class FillBar final : public QWidget {
    Q_OBJECT

public:
    FillBar(double fraction, QColor fill, int height, QWidget* parent);

    double fraction() const { return m_fraction; }
    QColor fill() const { return m_fill; }
    void setFraction(double fraction, QColor fill);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double m_fraction;
    QColor m_fill;
};

}  // namespace zelvar
