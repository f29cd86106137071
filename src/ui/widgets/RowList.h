#pragma once

#include <QList>
#include <QScrollArea>

class QVBoxLayout;

namespace zelvar {

// A scrolling column of row widgets, replaced whole when the data behind them changes. The
// panels that use it hold a few dozen rows at most, which change on user actions, not every
// monitoring cycle. Old rows are deleted later, so a row may replace the list from inside one
// of its own menu actions.
class RowList final : public QScrollArea {
    Q_OBJECT

public:
    explicit RowList(QWidget* parent = nullptr);

    // Takes ownership of `rows`, shown top to bottom, each followed by a divider.
    void setRows(const QList<QWidget*>& rows);
    qsizetype rowCount() const { return m_rows.size(); }
    QWidget* row(qsizetype index) const { return m_rows.at(index); }

private:
    QWidget* m_content;
    QVBoxLayout* m_layout;
    QList<QWidget*> m_rows;
    QList<QWidget*> m_dividers;
};

}  // namespace zelvar
