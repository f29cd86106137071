#pragma once

#include <QCache>
#include <QPixmap>
#include <QStyledItemDelegate>

class QAbstractItemView;

namespace zelvar {

class PowerEventListModel;

// Paints the rows of a PowerEventListModel as WattlogEventRow draws them: a row widget is
// built off screen for a row the first time it shows and its picture kept, so scrolling
// through thousands of events builds a few dozen widgets and repaints from pictures. Rows are
// of one height, but for the selected one, which adds its raw line.
class WattlogEventDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    WattlogEventDelegate(const PowerEventListModel& model, QAbstractItemView& view);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    // Forgets the pictures; the palette or the fonts changed.
    void clearCache();

private:
    int rowWidth() const;

    const PowerEventListModel& m_model;
    QAbstractItemView& m_view;
    mutable QCache<QString, QPixmap> m_pictures;
    mutable int m_plainHeight = 0;
};

}  // namespace zelvar
