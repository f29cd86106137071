#pragma once

#include <QString>
#include <QWidget>

class QLabel;
class QLineEdit;
class QToolButton;

namespace zelvar {

// The filter field that several tabs share: a magnifying glass, a rounded field with a
// placeholder, and a clear button shown only while there is text. 8 points of padding.
class SearchBar final : public QWidget {
    Q_OBJECT

public:
    explicit SearchBar(const QString& placeholder = QStringLiteral("Search..."),
                       QWidget* parent = nullptr);

    QString text() const;
    // Sets the text, which emits textChanged when it differs.
    void setText(const QString& text);
    QString placeholder() const;
    // Whether the clear button is shown (it is hidden while the text is empty).
    bool isClearButtonShown() const;
    // Empties the text, as the clear button does.
    void clear();

signals:
    void textChanged(const QString& text);

protected:
    void changeEvent(QEvent* event) override;

private:
    void updateLook();

    QLineEdit* m_field;
    QToolButton* m_clearButton;
    QLabel* m_glass;
};

}  // namespace zelvar
