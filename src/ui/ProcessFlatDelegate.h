#pragma once

#include <QStyledItemDelegate>

namespace zelvar {

class ConfigManager;

// Draws a row of the filtered list: the name semibold; below it "PID: ", the memory and the
// CPU at caption size in the secondary colour; and at the far end the process's standing
// towards the limits ("Whitelisted", "Over Limit" or the limit).
class ProcessFlatDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit ProcessFlatDelegate(const ConfigManager& configManager, QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    const ConfigManager& m_configManager;
};

}  // namespace zelvar
