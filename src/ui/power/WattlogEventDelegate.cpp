#include "ui/power/WattlogEventDelegate.h"

#include <QAbstractItemView>
#include <QLayout>
#include <QPainter>

#include "ui/Palette.h"
#include "ui/power/PowerEventListModel.h"
#include "ui/power/WattlogEventRow.h"

namespace zelvar {

namespace {

// Pictures of about a few screens of rows.
constexpr int kCachedPictures = 150;

int rowHeight(const WattlogEventRow& row, int width) {
    return row.hasHeightForWidth() ? row.heightForWidth(width) : row.sizeHint().height();
}

}  // namespace

WattlogEventDelegate::WattlogEventDelegate(const PowerEventListModel& model,
                                           QAbstractItemView& view)
    : QStyledItemDelegate(&view), m_model(model), m_view(view), m_pictures(kCachedPictures) {}

int WattlogEventDelegate::rowWidth() const {
    return std::max(200, m_view.viewport()->width());
}

void WattlogEventDelegate::clearCache() {
    m_pictures.clear();
    m_plainHeight = 0;
}

QSize WattlogEventDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const {
    const int width = rowWidth();
    if (m_model.isSelected(index.row())) {
        const WattlogEventRow row(m_model.eventAt(index.row()), true);
        return {width, rowHeight(row, width)};
    }
    if (m_plainHeight == 0) {
        WattlogEvent sample = m_model.eventAt(index.row());
        sample.detail = QStringLiteral("Sample");
        sample.batteryPercent = 50;
        sample.powerSource = WattlogPowerSource::AC;
        m_plainHeight = rowHeight(WattlogEventRow(sample, false), width);
    }
    return {width, m_plainHeight};
}

void WattlogEventDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const {
    const int row = index.row();
    const bool selected = m_model.isSelected(row);
    const WattlogEvent& event = m_model.eventAt(row);
    const QRect rect = option.rect;
    const qreal ratio = painter->device()->devicePixelRatioF();
    const QString key = QStringLiteral("%1/%2/%3x%4@%5")
                            .arg(event.id.toString())
                            .arg(selected)
                            .arg(rect.width())
                            .arg(rect.height())
                            .arg(ratio);
    QPixmap* picture = m_pictures.object(key);
    if (picture == nullptr) {
        WattlogEventRow stamp(event, selected);
        stamp.setAttribute(Qt::WA_DontShowOnScreen);
        stamp.setPalette(option.palette);
        stamp.resize(rect.size());
        stamp.ensurePolished();
        stamp.layout()->activate();
        picture = new QPixmap(rect.size() * ratio);
        picture->setDevicePixelRatio(ratio);
        picture->fill(Qt::transparent);
        stamp.render(picture, QPoint(), QRegion(), QWidget::DrawChildren);
        m_pictures.insert(key, picture);
    }
    if (selected) {
        painter->fillRect(rect, withOpacity(accentColor(&m_view), 0.10));
    }
    painter->drawPixmap(rect.topLeft(), *picture);
    painter->setPen(withOpacity(secondaryColor(&m_view), 0.15));
    painter->drawLine(rect.bottomLeft() + QPoint(8, 0), rect.bottomRight() - QPoint(8, 0));
}

}  // namespace zelvar
