#pragma once

#include <QColor>
#include <QDateTime>
#include <QList>
#include <QWidget>

#include "power/WattlogDerivedData.h"

namespace zelvar {

// "Usage Sessions": one row per stretch of use, newest first, with its start and end times, a
// bar as long as its share of the longest session and coloured by its length, and its length.
class UsageSessionsView final : public QWidget {
    Q_OBJECT

public:
    struct Row {
        QString start;
        QString end;  // "Now" for a session still open
        double seconds = 0;
        QColor barColor;
    };

    explicit UsageSessionsView(QWidget* parent = nullptr);

    // The bar's colour for a session of `hours`: short ones faint blue, then blue, teal, green
    // and yellow for the longest.
    static QColor barColor(double hours);

    // `sessions` oldest first; `now` ends an open session.
    void setSessions(const QList<WattlogUsageSession>& sessions, double averageSessionLength,
                     const QDateTime& now);

    const QList<Row>& rows() const { return m_rows; }
    QString caption() const;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QList<Row> m_rows;
    double m_average = 0;
    double m_longest = 0;
};

}  // namespace zelvar
