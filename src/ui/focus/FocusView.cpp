#include "ui/focus/FocusView.h"

#include <QApplication>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "focus/FocusMonitor.h"
#include "ui/Palette.h"
#include "ui/ShownRefresh.h"
#include "ui/focus/FocusEventRow.h"
#include "ui/widgets/HistorySection.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

namespace {

// A symbol at the second title size beside a headline, with `below` under the headline.
QWidget* titledBlock(const QString& symbol, const QColor& tint, const QString& title,
                     QWidget* below, QWidget* parent) {
    auto* block = new QWidget(parent);
    auto* row = new QHBoxLayout(block);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(symbolLabel(symbol, QFontMetrics(titleFont()).height(), tint, block), 0,
                   Qt::AlignTop);
    auto* column = new QVBoxLayout;
    column->setSpacing(2);
    column->addWidget(textLabel(title, headlineFont(), block));
    below->setParent(block);
    column->addWidget(below);
    row->addLayout(column, 1);
    return block;
}

}  // namespace

FocusView::FocusView(FocusMonitor& monitor, QWidget* parent) : QWidget(parent), m_monitor(monitor) {
    setObjectName(QStringLiteral("FocusView"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 12, 16, 12);
    column->setSpacing(12);
    column->addWidget(buildStatusCard());

    m_model = new EventListModel<FocusEvent>(FocusMonitor::kMaxHistory, this);
    EventListModel<FocusEvent>* model = m_model;
    auto* rows = new EventRowDelegate(
        [this, model](const QModelIndex& index) {
            return FocusEventRow::content(model->at(index.row()), accentColor(this));
        },
        this);
    m_history = new HistorySection(
        {QStringLiteral("list.bullet.rectangle"), QStringLiteral("Focus History"),
         QStringLiteral("app.window"), QStringLiteral("No focus changes recorded yet")},
        model, rows, this);
    column->addWidget(m_history, 1);

    auto* status = new ShownRefresh(this, [this] { refreshStatus(); });
    auto* history = new ShownRefresh(this, [this] { refreshHistory(); });
    connect(&m_monitor, &FocusMonitor::currentAppChanged, status, &ShownRefresh::request);
    // The theft and the count are read from the history.
    connect(&m_monitor, &FocusMonitor::focusHistoryChanged, status, &ShownRefresh::request);
    connect(&m_monitor, &FocusMonitor::focusHistoryChanged, history, &ShownRefresh::request);
    refreshStatus();
    refreshHistory();
}

QWidget* FocusView::buildStatusCard() {
    auto* card = new QFrame(this);
    card->setObjectName(QStringLiteral("focusStatusCard"));
    card->setAttribute(Qt::WA_StyledBackground);
    const QColor accent = accentColor(this);
    card->setStyleSheet(
        QStringLiteral("#focusStatusCard { background: %1; border: 1px solid %2; "
                       "border-radius: 10px; }")
            .arg(styleColor(withOpacity(accent, 0.08)), styleColor(withOpacity(accent, 0.3))));
    auto* row = new QHBoxLayout(card);
    row->setContentsMargins(16, 12, 16, 12);

    auto* left = new QVBoxLayout;
    QFont medium = QApplication::font();
    medium.setWeight(QFont::Medium);
    m_currentApp = textLabel({}, medium, nullptr);
    m_currentApp->setObjectName(QStringLiteral("currentApp"));
    m_currentApp->setTextFormat(Qt::PlainText);
    left->addWidget(titledBlock(QStringLiteral("app.window"), accent,
                                QStringLiteral("Current Focus"), m_currentApp, card));
    m_stolen = new QWidget(card);
    auto* stolen = new QHBoxLayout(m_stolen);
    stolen->setContentsMargins(0, 0, 0, 0);
    const QColor orange = namedColor(NamedColor::Orange);
    stolen->addWidget(symbolLabel(QStringLiteral("exclamationmark.triangle.fill"),
                                  QFontMetrics(captionFont()).height(), orange, m_stolen));
    m_stolenText = textLabel({}, subheadlineFont(), m_stolen, orange);
    m_stolenText->setObjectName(QStringLiteral("stolen"));
    m_stolenText->setTextFormat(Qt::PlainText);
    stolen->addWidget(m_stolenText, 1);
    left->addWidget(m_stolen);
    row->addLayout(left, 1);

    auto* counts = new QWidget;
    auto* countColumn = new QVBoxLayout(counts);
    countColumn->setContentsMargins(0, 0, 0, 0);
    countColumn->setSpacing(0);
    QFont bold = titleFont();
    bold.setWeight(QFont::Bold);
    m_changes = textLabel({}, monospacedDigits(bold), counts);
    m_changes->setObjectName(QStringLiteral("changes"));
    countColumn->addWidget(m_changes);
    countColumn->addWidget(
        textLabel(QStringLiteral("since start"), captionFont(), counts, secondaryColor(this)));
    row->addWidget(titledBlock(QStringLiteral("clock.arrow.circlepath"), secondaryColor(this),
                               QStringLiteral("Changes"), counts, card),
                   0, Qt::AlignTop);
    return card;
}

void FocusView::refreshStatus() {
    m_currentApp->setText(m_monitor.currentApp());
    const std::optional<QString> thief = m_monitor.lastStolenBy();
    m_stolenText->setText(thief ? QStringLiteral("Focus stolen by ") + *thief : QString());
    m_stolen->setVisible(thief.has_value());
    m_changes->setText(QString::number(m_monitor.focusHistory().size()));
}

void FocusView::refreshHistory() {
    m_model->setHistory(m_monitor.focusHistory());
    m_history->setTotal(m_monitor.focusHistory().size());
}

QString FocusView::currentAppText() const {
    return m_currentApp->text();
}

QString FocusView::stolenText() const {
    return m_stolen->isHidden() ? QString() : m_stolenText->text();
}

QString FocusView::changesText() const {
    return m_changes->text();
}

}  // namespace zelvar
