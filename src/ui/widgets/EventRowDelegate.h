#pragma once

#include <QColor>
#include <QString>
#include <QStringList>
#include <QStyledItemDelegate>
#include <functional>

namespace zelvar {

// What one row of an event history shows: a symbol in a column of its own, the application
// in semibold with a caption line below it, and on the right small lines with monospaced
// digits (a time, a duration).
struct EventRowContent {
    QString symbol;
    QColor tint;
    QString title;
    QString caption;  // none when empty
    QStringList trailing;
};

// Paints the rows of an event history from their content, so that a list of hundreds of
// events costs a few painted rows rather than a widget tree per event.
class EventRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    using ContentOf = std::function<EventRowContent(const QModelIndex&)>;

    explicit EventRowDelegate(ContentOf content, QObject* parent = nullptr);

    // The symbol's column: a symbol at the third title size, 28 points wide.
    static constexpr int kSymbolColumnWidth = 28;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    ContentOf m_content;
};

}  // namespace zelvar
