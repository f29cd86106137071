#pragma once

#include <QFrame>
#include <QString>
#include <optional>

class QLabel;

namespace zelvar {

// Whether one device is in use: its symbol and title with an indicator, green while active;
// the monitor's status text; and the last application that used it, when one is known.
class AudioStatusCard final : public QFrame {
    Q_OBJECT

public:
    AudioStatusCard(const QString& title, const QString& systemImage, QWidget* parent = nullptr);

    // Changes the card in place: no widget is made or deleted.
    void setState(bool isActive, const std::optional<QString>& mostRecentApp,
                  const QString& statusText);

    const QString& title() const { return m_title; }
    bool isActive() const { return m_isActive; }
    QString statusText() const;
    // Empty while no application is known.
    QString mostRecentAppText() const;

protected:
    void changeEvent(QEvent* event) override;

private:
    void updateLook();

    QString m_title;
    QString m_systemImage;
    bool m_isActive = false;
    QLabel* m_symbol = nullptr;
    QLabel* m_indicator = nullptr;
    QLabel* m_status = nullptr;
    QWidget* m_appLine = nullptr;
    QLabel* m_appIcon = nullptr;
    QLabel* m_appName = nullptr;
};

}  // namespace zelvar
