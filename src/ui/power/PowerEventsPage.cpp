#include "ui/power/PowerEventsPage.h"

#include <QEvent>
#include <QLabel>
#include <QListView>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>

#include "power/BatteryPowerMonitor.h"
#include "ui/Palette.h"
#include "ui/ShownRefresh.h"
#include "ui/power/KindFilterBar.h"
#include "ui/power/PowerEventListModel.h"
#include "ui/power/PowerViewState.h"
#include "ui/power/WattlogEventDelegate.h"
#include "ui/widgets/SearchBar.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

PowerEventsPage::PowerEventsPage(BatteryPowerMonitor& monitor, PowerViewState& state,
                                 QWidget* parent)
    : QWidget(parent), m_monitor(monitor), m_state(state) {
    setObjectName(QStringLiteral("PowerEventsPage"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    m_count = textLabel(QString(), captionFont(), this, secondaryColor(this));
    column->addWidget(sectionHeader(QStringLiteral("All Events"), m_count, this));
    m_search = new SearchBar(QStringLiteral("Filter events..."), this);
    m_search->setText(m_state.filterText());
    column->addWidget(m_search);
    m_filterBar = new KindFilterBar(m_state, this);
    column->addWidget(m_filterBar);

    m_model = new PowerEventListModel(this);
    m_list = new QListView(this);
    m_list->setObjectName(QStringLiteral("events"));
    m_list->setModel(m_model);
    m_delegate = new WattlogEventDelegate(*m_model, *m_list);
    m_list->setItemDelegate(m_delegate);
    m_list->setSelectionMode(QAbstractItemView::NoSelection);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setResizeMode(QListView::Adjust);
    m_list->setMouseTracking(true);
    m_list->verticalScrollBar()->setSingleStep(20);
    column->addWidget(m_list, 1);

    connect(m_search, &SearchBar::textChanged, &m_state, &PowerViewState::setFilterText);
    connect(m_list, &QListView::clicked, this, [this](const QModelIndex& index) {
        m_state.toggleSelection(m_model->eventAt(index.row()).id);
    });
    connect(&m_state, &PowerViewState::selectedEventIDChanged, this,
            [this] { m_model->setSelectedEventID(m_state.selectedEventID()); });
    connect(&m_state, &PowerViewState::filterTextChanged, this,
            [this] { m_search->setText(m_state.filterText()); });

    m_refresh = new ShownRefresh(this, [this] { refresh(); });
    connect(&m_monitor, &BatteryPowerMonitor::powerEventsChanged, m_refresh,
            &ShownRefresh::request);
    for (auto signal : {&PowerViewState::visibleKindsChanged, &PowerViewState::filterTextChanged}) {
        connect(&m_state, signal, m_refresh, &ShownRefresh::request);
    }
    refresh();
}

QString PowerEventsPage::subtitle() const {
    return QStringLiteral("%1 visible").arg(m_model->rowCount());
}

void PowerEventsPage::refresh() {
    QList<WattlogEvent> events = m_state.filteredEvents(m_monitor.powerEvents());
    std::reverse(events.begin(), events.end());
    // The event at the top of the list stays where it is, though newer ones came in above it.
    QScrollBar* bar = m_list->verticalScrollBar();
    const QModelIndex top = m_list->indexAt(QPoint(1, 1));
    const std::optional<QUuid> anchor =
        top.isValid() ? std::optional<QUuid>(m_model->eventAt(top.row()).id) : std::nullopt;
    const int anchorTop = top.isValid() ? m_list->visualRect(top).top() : 0;
    const int scroll = bar->value();
    m_model->setSelectedEventID(m_state.selectedEventID());
    m_model->setEvents(std::move(events));
    // Lay the rows out now rather than later, so that the old position is in range again.
    m_list->doItemsLayout();
    const int row = anchor ? m_model->rowOf(*anchor) : -1;
    if (row >= 0) {
        bar->setValue(bar->value() + m_list->visualRect(m_model->index(row)).top() - anchorTop);
    } else {
        bar->setValue(scroll);
    }
    m_count->setText(subtitle());
}

void PowerEventsPage::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        m_delegate->clearCache();
    }
}

}  // namespace zelvar
