#pragma once

#include <QWidget>

namespace zelvar {

// The page of a tab whose view isn't built yet: its symbol, "<Tab> is coming soon" and a line
// on what it will show, so that the tab reads as planned rather than broken.
class ComingSoonView final : public QWidget {
    Q_OBJECT

public:
    ComingSoonView(const QString& symbol, const QString& tabName, const QString& promise,
                   QWidget* parent = nullptr);

    QString message() const { return m_message; }

private:
    QString m_message;
};

}  // namespace zelvar
