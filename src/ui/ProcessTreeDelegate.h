#pragma once

#include <QStyledItemDelegate>

namespace zelvar {

class ConfigManager;
struct ProcessInfo;

// Draws a row of the process tree: the name semibold, the totals in figures of one width, the
// own memory and CPU smaller in the secondary colour, the origin chips and the limit badge.
// Only visible rows are drawn, so the badges follow the configuration at no cost per cycle.
class ProcessTreeDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit ProcessTreeDelegate(const ConfigManager& configManager, QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    // The chips of an origin column, left to right from `rect`'s left edge.
    static void paintOriginChips(QPainter* painter, const QRect& rect, const ProcessInfo& process,
                                 const QWidget* widget);
    // The badge of the limit rule, centred in `rect`.
    static void paintLimitBadge(QPainter* painter, const QRect& rect, const ProcessInfo& process,
                                const ConfigManager& configManager);

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    const ConfigManager& m_configManager;
};

}  // namespace zelvar
