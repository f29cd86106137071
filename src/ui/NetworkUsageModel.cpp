#include "ui/NetworkUsageModel.h"

#include <QHash>

#include "network/ByteFormatter.h"
#include "ui/Palette.h"
#include "ui/Symbols.h"

namespace zelvar {

NetworkUsageModel::NetworkUsageModel(QObject* parent) : QAbstractTableModel(parent) {}

QString NetworkUsageModel::rowSymbol(const QString& name) {
    return name.contains(QLatin1Char('.')) ? QStringLiteral("app") : QStringLiteral("terminal");
}

QString NetworkUsageModel::suspendToolTip(qint32 pid) {
    return QStringLiteral(
               "Suspend this process\nNothing here resumes it; to continue it: kill "
               "-CONT %1")
        .arg(pid);
}

void NetworkUsageModel::setProcessUsages(const QList<ProcessUsage>& usages) {
    setRows(QList<Row>(usages.begin(), usages.end()));
}

void NetworkUsageModel::setCachedAppUsages(const QList<CachedAppUsage>& usages) {
    setRows(QList<Row>(usages.begin(), usages.end()));
}

QString NetworkUsageModel::key(const Row& row) {
    if (const auto* usage = std::get_if<ProcessUsage>(&row)) {
        return QStringLiteral("p:") + usage->id;
    }
    return QStringLiteral("a:") + std::get<CachedAppUsage>(row).name;
}

void NetworkUsageModel::setRows(QList<Row> rows) {
    QHash<QString, int> wanted;
    for (int i = 0; i < rows.size(); ++i) {
        wanted.insert(key(rows[i]), i);
    }
    // Rows that went away, from the bottom up.
    for (int i = int(m_rows.size()) - 1; i >= 0; --i) {
        if (!wanted.contains(key(m_rows[i]))) {
            beginRemoveRows({}, i, i);
            m_rows.removeAt(i);
            endRemoveRows();
        }
    }
    // Rows that are new, at the end for now.
    QHash<QString, int> present;
    for (int i = 0; i < m_rows.size(); ++i) {
        present.insert(key(m_rows[i]), i);
    }
    QList<Row> added;
    for (const Row& row : rows) {
        if (!present.contains(key(row))) {
            added.append(row);
        }
    }
    if (!added.isEmpty()) {
        beginInsertRows({}, int(m_rows.size()), int(m_rows.size() + added.size()) - 1);
        m_rows.append(added);
        endInsertRows();
    }
    // The new order and values, moving the persistent indexes with their rows.
    bool reordered = false;
    for (int i = 0; i < m_rows.size(); ++i) {
        reordered = reordered || key(m_rows[i]) != key(rows[i]);
    }
    if (reordered) {
        emit layoutAboutToBeChanged();
        const QModelIndexList before = persistentIndexList();
        QModelIndexList after;
        for (const QModelIndex& index : before) {
            after.append(this->index(wanted.value(key(m_rows[index.row()])), index.column()));
        }
        m_rows = std::move(rows);
        changePersistentIndexList(before, after);
        emit layoutChanged();
    } else {
        m_rows = std::move(rows);
    }
    if (!m_rows.isEmpty()) {
        emit dataChanged(index(0, 0), index(int(m_rows.size()) - 1, ColumnCount - 1));
    }
}

int NetworkUsageModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_rows.size());
}

int NetworkUsageModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant NetworkUsageModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= m_rows.size()) {
        return {};
    }
    const Row& row = m_rows[index.row()];
    const auto* usage = std::get_if<ProcessUsage>(&row);
    const auto* cached = std::get_if<CachedAppUsage>(&row);
    const QString name = usage ? usage->name : cached->name;
    // The arrow.down and arrow.up symbols, as text inside the cell.
    const QString down = QStringLiteral("↓ ");
    const QString up = QStringLiteral("↑ ");
    switch (role) {
        case Qt::DisplayRole:
            switch (index.column()) {
                case AppColumn:
                    return name + QLatin1Char('\n') +
                           (usage ? QStringLiteral("pid ") + QString::number(usage->pid)
                                  : QStringLiteral("daily total ") +
                                        ByteFormatter::bytes(cached->totalBytes()));
                case RatesColumn:
                    return usage ? down + ByteFormatter::rate(usage->downloadBytesPerSecond) +
                                       "  " + up + ByteFormatter::rate(usage->uploadBytesPerSecond)
                                 : down + ByteFormatter::bytes(cached->receivedBytes) + "  " + up +
                                       ByteFormatter::bytes(cached->sentBytes);
                case AmountColumn:
                    return usage ? ByteFormatter::bytes(usage->observedBytes)
                                 : ByteFormatter::bytes(cached->totalBytes());
                default:
                    return {};
            }
        case Qt::DecorationRole:
            if (index.column() == AppColumn) {
                return symbolIcon(rowSymbol(name), secondaryColor());
            }
            if (index.column() == ActionColumn && usage) {
                return symbolIcon(QStringLiteral("xmark.circle"));
            }
            return {};
        case Qt::ToolTipRole:
            return index.column() == ActionColumn && usage ? suspendToolTip(usage->pid)
                                                           : QVariant();
        case Qt::FontRole:
            return index.column() == AppColumn ? QVariant()
                                               : QVariant(monospacedDigits(captionFont()));
        case Qt::TextAlignmentRole:
            return index.column() == AppColumn ? QVariant()
                                               : QVariant(Qt::AlignRight | Qt::AlignVCenter);
        default:
            return {};
    }
}

}  // namespace zelvar
