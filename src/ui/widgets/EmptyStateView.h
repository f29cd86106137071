#pragma once

#include <QString>
#include <QWidget>

class QLabel;

namespace zelvar {

// What a list shows when it has nothing: a symbol at 40 points in the secondary colour, and
// the message below it, centred.
class EmptyStateView final : public QWidget {
    Q_OBJECT

public:
    EmptyStateView(const QString& symbol, const QString& message, QWidget* parent = nullptr);

    QString message() const;
    void setMessage(const QString& message);
    // A second line below the message, at caption size (none by default).
    void setDetail(const QString& detail);
    QString detail() const;
    // Shows the message as a headline rather than in the secondary colour.
    void setMessageAsHeadline(bool headline);

protected:
    void changeEvent(QEvent* event) override;

private:
    void updateLook();

    QString m_symbol;
    QLabel* m_icon;
    QLabel* m_message;
    QLabel* m_detail;
    bool m_headline = false;
};

}  // namespace zelvar
