#pragma once

#include <QList>
#include <QString>
#include <QWidget>

class QAbstractButton;
class QLabel;
class QProgressBar;
class QStackedWidget;
class QToolButton;

namespace zelvar {

class BatteryPowerMonitor;
class PowerViewState;
class ShownRefresh;

// The subtabs of the Power tab, in the order of the bar.
enum class PowerSubtab { Overview, Battery, Timeline, Events, Live, Correlation, Samples };

QString powerSubtabLabel(PowerSubtab subtab);
const QList<PowerSubtab>& allPowerSubtabs();

// The Power tab: a summary of the battery at the top, then a bar of subtabs with the history's
// refresh button and its progress while it loads, then the chosen subtab. On appearing it
// starts the monitor (which ignores a second start) and loads the history if it has none yet.
class PowerView final : public QWidget {
    Q_OBJECT

public:
    explicit PowerView(BatteryPowerMonitor& monitor, QWidget* parent = nullptr);

    PowerViewState& state() const { return *m_state; }
    PowerSubtab selectedSubtab() const { return m_selected; }
    void selectSubtab(PowerSubtab subtab);
    QAbstractButton* subtabButton(PowerSubtab subtab) const;
    QWidget* page(PowerSubtab subtab) const;
    QToolButton* refreshButton() const { return m_refresh; }
    QProgressBar* progressBar() const { return m_progress; }

    // The summary's symbol name, and its texts as shown: the flow title and percent, the rate,
    // the detail.
    QString summarySymbol() const { return m_summarySymbol; }
    QStringList summaryTexts() const;
    // The small metrics as "Title value", in order; an absent one is left out.
    QStringList summaryMetrics() const { return m_metrics; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* buildSummary();
    QWidget* buildSubtabBar();
    void refreshSummary();
    void refreshProgress();

    BatteryPowerMonitor& m_monitor;
    PowerViewState* m_state;
    PowerSubtab m_selected = PowerSubtab::Overview;
    QLabel* m_symbol = nullptr;
    QLabel* m_title = nullptr;
    QLabel* m_rate = nullptr;
    QLabel* m_detail = nullptr;
    struct MetricBox {
        QString name;
        QWidget* box;
        QLabel* value;
    };
    QList<MetricBox> m_metricBoxes;
    QString m_summarySymbol;
    QStringList m_metrics;
    QList<QAbstractButton*> m_subtabButtons;
    QToolButton* m_refresh = nullptr;
    QProgressBar* m_progress = nullptr;
    QStackedWidget* m_stack = nullptr;
    ShownRefresh* m_summaryRefresh = nullptr;
};

}  // namespace zelvar
