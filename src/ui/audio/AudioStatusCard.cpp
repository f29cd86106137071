#include "ui/audio/AudioStatusCard.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "ui/Palette.h"
#include "ui/Symbols.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

namespace {

constexpr int kIndicatorSize = 10;

int title2SymbolSize() {
    return QFontMetrics(titleFont()).height();
}

void setTextColor(QLabel* label, const QColor& color) {
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
}

}  // namespace

AudioStatusCard::AudioStatusCard(const QString& title, const QString& systemImage, QWidget* parent)
    : QFrame(parent), m_title(title), m_systemImage(systemImage) {
    makeCard(this, QStringLiteral("AudioStatusCard"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(12, 10, 12, 10);
    column->setSpacing(6);

    auto* top = new QHBoxLayout;
    m_symbol = new QLabel(this);
    m_symbol->setFixedWidth(title2SymbolSize() + 4);
    top->addWidget(m_symbol);
    top->addWidget(textLabel(title, headlineFont(), this));
    top->addStretch(1);
    m_indicator = new QLabel(this);
    m_indicator->setObjectName(QStringLiteral("indicator"));
    top->addWidget(m_indicator);
    column->addLayout(top);

    m_status = textLabel({}, QApplication::font(), this);
    m_status->setObjectName(QStringLiteral("status"));
    m_status->setTextFormat(Qt::PlainText);
    column->addWidget(m_status);

    m_appLine = new QWidget(this);
    auto* appRow = new QHBoxLayout(m_appLine);
    appRow->setContentsMargins(0, 0, 0, 0);
    m_appIcon = new QLabel(m_appLine);
    appRow->addWidget(m_appIcon);
    QFont callout = subheadlineFont();
    callout.setWeight(QFont::Medium);
    m_appName = textLabel({}, callout, m_appLine);
    m_appName->setObjectName(QStringLiteral("mostRecentApp"));
    m_appName->setTextFormat(Qt::PlainText);
    appRow->addWidget(m_appName, 1);
    column->addWidget(m_appLine);
    column->addStretch(1);
    m_appLine->hide();
    updateLook();
}

void AudioStatusCard::setState(bool isActive, const std::optional<QString>& mostRecentApp,
                               const QString& statusText) {
    m_status->setText(statusText);
    m_appName->setText(mostRecentApp.value_or(QString()));
    m_appLine->setVisible(mostRecentApp.has_value());
    if (isActive != m_isActive) {
        m_isActive = isActive;
        updateLook();
    }
}

QString AudioStatusCard::statusText() const {
    return m_status->text();
}

QString AudioStatusCard::mostRecentAppText() const {
    return m_appLine->isHidden() ? QString() : m_appName->text();
}

void AudioStatusCard::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    // The first palette change comes while the constructor sets the background, before the
    // labels exist.
    if (event->type() == QEvent::PaletteChange && m_appIcon) {
        updateLook();
    }
}

void AudioStatusCard::updateLook() {
    const QColor green = namedColor(NamedColor::Green);
    const QColor secondary = secondaryColor(this);
    m_symbol->setPixmap(
        symbolPixmap(m_systemImage, title2SymbolSize(), m_isActive ? green : secondary));
    m_indicator->setPixmap(symbolPixmap(QStringLiteral("circle.fill"), kIndicatorSize,
                                        m_isActive ? green : withOpacity(secondary, 0.3)));
    setTextColor(m_status, m_isActive ? palette().color(QPalette::WindowText) : secondary);
    m_appIcon->setPixmap(symbolPixmap(QStringLiteral("app.fill"),
                                      QFontMetrics(captionFont()).height(), accentColor(this)));
}

}  // namespace zelvar
