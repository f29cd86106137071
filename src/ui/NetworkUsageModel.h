#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <variant>

#include "network/NetworkUsage.h"

namespace zelvar {

// The Network tab's table: the live per-process rates or the daily totals, one row per
// process or application. A new list updates the rows in place by their key (the process's
// key, the application's name), so that selection and scroll survive every sample.
class NetworkUsageModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { AppColumn, RatesColumn, AmountColumn, ActionColumn, ColumnCount };
    using Row = std::variant<ProcessUsage, CachedAppUsage>;

    explicit NetworkUsageModel(QObject* parent = nullptr);

    // "app" for a name with a dot (a bundle-style name), otherwise "terminal".
    static QString rowSymbol(const QString& name);
    // What the suspend button's tool tip says, with how to continue the process.
    static QString suspendToolTip(qint32 pid);

    void setProcessUsages(const QList<ProcessUsage>& usages);
    void setCachedAppUsages(const QList<CachedAppUsage>& usages);
    const Row& row(int index) const { return m_rows.at(index); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    void setRows(QList<Row> rows);
    static QString key(const Row& row);

    QList<Row> m_rows;
};

}  // namespace zelvar
