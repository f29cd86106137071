#pragma once

#include <QString>
#include <QWidget>

class QAbstractItemDelegate;
class QAbstractItemModel;
class QLabel;
class QListView;
class QStackedWidget;

namespace zelvar {

class EmptyStateView;

// A titled history: a header with a symbol, the title and "<count> events", then either the
// list of events or, without any, a symbol and a message. The list keeps the rows the user
// looks at where they are while new events arrive at its top, and its selection with them.
class HistorySection final : public QWidget {
    Q_OBJECT

public:
    struct Look {
        QString symbol;
        QString title;
        QString emptySymbol;
        QString emptyMessage;
    };

    static constexpr int kMinimumListHeight = 120;

    // The section shows `model` (rows newest first) painted by `delegate`; it owns neither.
    HistorySection(const Look& look, QAbstractItemModel* model, QAbstractItemDelegate* delegate,
                   QWidget* parent = nullptr);

    // Sets the header's count, which counts every event even when the list shows fewer, and
    // shows the list or the empty state as the model has rows or not.
    void setTotal(qsizetype total);

    QString countText() const;
    QString emptyMessage() const;
    bool showsList() const;
    QListView* listView() const { return m_list; }

private:
    void keepViewedRows(int first, int last);

    QLabel* m_count = nullptr;
    QStackedWidget* m_stack = nullptr;
    EmptyStateView* m_empty = nullptr;
    QListView* m_list = nullptr;
    int m_scrollBeforeInsert = 0;
};

}  // namespace zelvar
