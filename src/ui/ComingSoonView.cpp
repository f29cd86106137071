#include "ui/ComingSoonView.h"

#include <QVBoxLayout>

#include "ui/widgets/EmptyStateView.h"

namespace zelvar {

ComingSoonView::ComingSoonView(const QString& symbol, const QString& tabName,
                               const QString& promise, QWidget* parent)
    : QWidget(parent), m_message(tabName + QStringLiteral(" is coming soon")) {
    setObjectName(tabName + QStringLiteral("ComingSoon"));
    auto* layout = new QVBoxLayout(this);
    auto* state = new EmptyStateView(symbol, m_message, this);
    state->setMessageAsHeadline(true);
    state->setDetail(promise);
    layout->addWidget(state);
}

}  // namespace zelvar
