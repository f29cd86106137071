#pragma once

#include <QList>
#include <QWidget>

#include "power/WattlogBatterySample.h"
#include "power/WattlogCorrelationSample.h"

class QLabel;
class QStackedWidget;
class QTableView;

namespace zelvar {

class BatteryPowerMonitor;
class PowerViewState;
class SampleTableModel;

// The Power tab's Samples subtab: the daemon's battery and correlation samples as two tables,
// newest first.
class PowerSamplesPage final : public QWidget {
    Q_OBJECT

public:
    PowerSamplesPage(BatteryPowerMonitor& monitor, PowerViewState& state,
                     QWidget* parent = nullptr);

    // What the tables show, given directly: the monitor's lists pass through here.
    void showBatterySamples(const QList<WattlogBatterySample>& samples);
    void showCorrelationSamples(const QList<WattlogCorrelationSample>& samples);

    QTableView* batteryTable() const { return m_battery.table; }
    QTableView* correlationTable() const { return m_correlation.table; }
    // The "N latest" caption of each table.
    QString batteryCaption() const;
    QString correlationCaption() const;

private:
    struct Section {
        SampleTableModel* model = nullptr;
        QTableView* table = nullptr;
        QLabel* caption = nullptr;
        QStackedWidget* stack = nullptr;
    };
    Section addSection(const QString& title, const QStringList& headers, const QString& symbol,
                       const QString& emptyMessage);

    BatteryPowerMonitor& m_monitor;
    PowerViewState& m_state;
    Section m_battery;
    Section m_correlation;
};

}  // namespace zelvar
