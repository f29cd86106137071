#include "ui/LimitRow.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

#include "config/ConfigManager.h"
#include "ui/EditLimitSheet.h"
#include "ui/Palette.h"
#include "ui/Symbols.h"
#include "ui/TextFormat.h"

namespace zelvar {

namespace {

QLabel* coloured(const QString& text, const QColor& color, const QFont& font, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setFont(font);
    label->setStyleSheet(QStringLiteral("color: %1;").arg(styleColor(color)));
    return label;
}

}  // namespace

LimitRow::LimitRow(const ProcessLimit& limit, ConfigManager& configManager, QWidget* parent)
    : QWidget(parent), m_limit(limit), m_configManager(configManager), m_menu(new QMenu(this)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 6, 8, 6);

    auto* column = new QVBoxLayout;
    auto* name = new QLabel(limit.processName, this);
    name->setFont(headlineFont());
    column->addWidget(name);

    auto* details = new QHBoxLayout;
    details->addWidget(
        coloured(wholeMegabytes(limit.limitMB), namedColor(NamedColor::Blue), captionFont(), this));
    if (limit.autoKillEnabled) {
        const QColor red = namedColor(NamedColor::Red);
        auto* bolt = new QLabel(this);
        bolt->setPixmap(symbolPixmap(QStringLiteral("bolt.fill"), 12, red));
        details->addWidget(bolt);
        details->addWidget(coloured(tr("Auto-Kill"), red, captionFont(), this));
    }
    if (limit.lastTriggered) {
        details->addWidget(coloured(triggeredText(*limit.lastTriggered),
                                    namedColor(NamedColor::Orange), captionFont(), this));
    }
    details->addStretch(1);
    column->addLayout(details);
    layout->addLayout(column, 1);

    const bool autoKill = limit.autoKillEnabled;
    m_menu->addAction(symbolIcon(QStringLiteral("pencil")), tr("Edit"), this, &LimitRow::edit);
    m_menu->addAction(
        symbolIcon(autoKill ? QStringLiteral("bolt.slash") : QStringLiteral("bolt.fill")),
        autoKill ? tr("Disable Auto-Kill") : tr("Enable Auto-Kill"), this,
        [this] { m_configManager.toggleAutoKill(m_limit.id); });
    QAction* remove =
        m_menu->addAction(symbolIcon(QStringLiteral("trash"), namedColor(NamedColor::Red)),
                          tr("Remove"), this, &LimitRow::removeRequested);
    remove->setProperty("destructive", true);

    auto* menuButton = new QToolButton(this);
    menuButton->setIcon(symbolIcon(QStringLiteral("ellipsis.circle")));
    menuButton->setAutoRaise(true);
    menuButton->setPopupMode(QToolButton::InstantPopup);
    menuButton->setStyleSheet(QStringLiteral("QToolButton::menu-indicator { image: none; }"));
    menuButton->setMenu(m_menu);
    layout->addWidget(menuButton);
}

QStringList LimitRow::texts() const {
    QStringList texts;
    for (const QLabel* label : findChildren<QLabel*>()) {
        if (!label->text().isEmpty()) {
            texts << label->text();
        }
    }
    return texts;
}

QString LimitRow::triggeredText(const QDateTime& when) {
    return tr("Triggered: ") +
           QLocale().toString(when.toLocalTime().date(), QStringLiteral("MMM d, yyyy"));
}

void LimitRow::edit() {
    auto* sheet = new EditLimitSheet(m_limit, m_configManager, window());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
}

}  // namespace zelvar
