#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QStringList>

namespace zelvar {

// Rows of text for a table of the daemon's samples, newest first, each with its sample's time
// as key. A new list that continues the shown one (new samples above, old ones gone below)
// is applied as row insertions and removals, so that the view keeps its selection and the
// rows under the user's eyes.
class SampleTableModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    SampleTableModel(QStringList headers, QObject* parent = nullptr);

    void setRows(const QList<QStringList>& rows, const QList<double>& keys);
    double key(int row) const { return m_keys.at(row); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    QStringList m_headers;
    QList<QStringList> m_rows;
    QList<double> m_keys;
};

}  // namespace zelvar
