#pragma once

#include <QTreeView>

namespace zelvar {

// The tree of the RAM tab: 24 points of indent per level, and in the last of them a chevron,
// down when open and right when closed, for rows with children; rows without keep the room
// empty. A click on the chevron opens or closes the row, as in any tree view.
class ProcessTreeView final : public QTreeView {
    Q_OBJECT

public:
    static constexpr int kIndent = 24;

    explicit ProcessTreeView(QWidget* parent = nullptr);

protected:
    void drawBranches(QPainter* painter, const QRect& rect,
                      const QModelIndex& index) const override;
};

}  // namespace zelvar
