#include "ui/ShownRefresh.h"

#include <QEvent>
#include <QWidget>

namespace zelvar {

ShownRefresh::ShownRefresh(QWidget* view, std::function<void()> refresh)
    : QObject(view), m_view(view), m_refresh(std::move(refresh)) {
    m_view->installEventFilter(this);
}

void ShownRefresh::request() {
    if (m_view->isVisible()) {
        m_pending = false;
        m_refresh();
    } else {
        m_pending = true;
    }
}

bool ShownRefresh::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_view && event->type() == QEvent::Show && m_pending) {
        m_pending = false;
        m_refresh();
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace zelvar
