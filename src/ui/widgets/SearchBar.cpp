#include "ui/widgets/SearchBar.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

#include "ui/Palette.h"
#include "ui/Symbols.h"

namespace zelvar {

SearchBar::SearchBar(const QString& placeholder, QWidget* parent)
    : QWidget(parent),
      m_field(new QLineEdit(this)),
      m_clearButton(new QToolButton(this)),
      m_glass(new QLabel(this)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->setSpacing(6);

    m_field->setPlaceholderText(placeholder);
    m_field->setClearButtonEnabled(false);  // ours follows the shared look
    m_field->setObjectName(QStringLiteral("searchField"));

    m_clearButton->setAutoRaise(true);
    m_clearButton->setCursor(Qt::ArrowCursor);
    m_clearButton->setToolTip(tr("Clear"));
    m_clearButton->setFocusPolicy(Qt::NoFocus);
    m_clearButton->setIconSize(QSize(14, 14));
    m_clearButton->setVisible(false);

    layout->addWidget(m_glass);
    layout->addWidget(m_field, 1);
    layout->addWidget(m_clearButton);

    connect(m_field, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_clearButton->setVisible(!text.isEmpty());
        emit textChanged(text);
    });
    connect(m_clearButton, &QToolButton::clicked, this, &SearchBar::clear);
    updateLook();
}

QString SearchBar::text() const {
    return m_field->text();
}

void SearchBar::setText(const QString& text) {
    m_field->setText(text);
}

QString SearchBar::placeholder() const {
    return m_field->placeholderText();
}

bool SearchBar::isClearButtonShown() const {
    return !m_clearButton->isHidden();
}

void SearchBar::clear() {
    m_field->clear();
}

void SearchBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        updateLook();
    }
}

void SearchBar::updateLook() {
    const QColor secondary = secondaryColor(this);
    m_glass->setPixmap(symbolPixmap(QStringLiteral("magnifyingglass"), 14, secondary));
    m_clearButton->setIcon(symbolIcon(QStringLiteral("xmark.circle.fill"), secondary));
    m_field->setStyleSheet(
        QStringLiteral("QLineEdit#searchField { border: 1px solid %1; border-radius: 6px; "
                       "padding: 3px 6px; }")
            .arg(styleColor(withOpacity(secondary, 0.5))));
}

}  // namespace zelvar
