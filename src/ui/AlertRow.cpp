#include "ui/AlertRow.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "ui/Palette.h"
#include "ui/Symbols.h"
#include "ui/TextFormat.h"

namespace zelvar {

namespace {

QLabel* text(const QString& content, const QFont& font, const QColor& color, QWidget* parent) {
    auto* label = new QLabel(content, parent);
    label->setFont(font);
    if (color.isValid()) {
        label->setStyleSheet(QStringLiteral("color: %1;").arg(styleColor(color)));
    }
    return label;
}

}  // namespace

AlertRow::AlertRow(const AlertRecord& alert, QWidget* parent) : QWidget(parent), m_alert(alert) {
    const QColor secondary = secondaryColor(this);
    const QFont body = semibold(font());
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 6, 8, 6);

    auto* left = new QVBoxLayout;
    auto* nameLine = new QHBoxLayout;
    nameLine->addWidget(text(alert.processName, body, {}, this));
    if (alert.wasAutoKilled) {
        const QColor red = namedColor(NamedColor::Red);
        auto* bolt = new QLabel(this);
        bolt->setPixmap(symbolPixmap(QStringLiteral("bolt.fill"), 11, red));
        nameLine->addWidget(bolt);
        nameLine->addWidget(text(tr("Auto-Killed"), captionFont(), red, this));
    }
    nameLine->addStretch(1);
    left->addLayout(nameLine);
    auto* detailLine = new QHBoxLayout;
    detailLine->addWidget(
        text(QStringLiteral("PID: %1").arg(alert.pid), captionFont(), secondary, this));
    detailLine->addWidget(text(alert.displayTime(), captionFont(), secondary, this));
    detailLine->addStretch(1);
    left->addLayout(detailLine);
    layout->addLayout(left, 1);

    auto* figures = new QGridLayout;
    figures->setHorizontalSpacing(16);
    figures->setVerticalSpacing(0);
    const Qt::Alignment right = Qt::AlignRight | Qt::AlignVCenter;
    figures->addWidget(text(tr("Memory Usage"), captionFont(), secondary, this), 0, 0, right);
    figures->addWidget(text(wholeMegabytes(alert.memoryMB), monospacedDigits(body), {}, this), 1, 0,
                       right);
    figures->addWidget(text(QStringLiteral("/ ") + wholeMegabytes(alert.limitMB),
                            monospacedDigits(captionFont()), secondary, this),
                       2, 0, right);
    figures->addWidget(text(tr("Exceeded by"), captionFont(), secondary, this), 0, 1, right);
    figures->addWidget(text(QStringLiteral("+") + wholeMegabytes(alert.exceededByMB()),
                            monospacedDigits(body), namedColor(NamedColor::Orange), this),
                       1, 1, right);
    layout->addLayout(figures);
}

QStringList AlertRow::texts() const {
    QStringList texts;
    for (const QLabel* label : findChildren<QLabel*>()) {
        if (!label->text().isEmpty()) {
            texts << label->text();
        }
    }
    return texts;
}

}  // namespace zelvar
