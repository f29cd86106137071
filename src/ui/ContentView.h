#pragma once

#include <QDialog>
#include <QPointer>
#include <QWidget>

#include "ui/DefaultExpansion.h"

class QLabel;
class QTabWidget;

namespace zelvar {

class AlertManager;
class AudioMonitor;
class BandwidthMonitor;
class BatteryPowerMonitor;
class ConfigManager;
class FocusMonitor;
class NotificationCenter;
class ProcessMonitor;
class ProcessesView;
class Scheduler;
class SoundPlayer;

// The dashboard's root: a header strip ("Live", the time of the last sample, the gear that
// opens Settings), the seven tabs, and a status line that appears when the configuration
// can't be saved. It owns no data: each tab gets the monitors it shows.
class ContentView final : public QWidget {
    Q_OBJECT

public:
    // What the dashboard is given; everything must outlive the view.
    struct Managers {
        ProcessMonitor& processMonitor;
        ConfigManager& configManager;
        // Held, as the dashboard's contract says, though no tab uses it.
        AlertManager& alertManager;
        // The Network, Power, Audio and Focus tabs'.
        BandwidthMonitor& bandwidthMonitor;
        BatteryPowerMonitor& powerMonitor;
        AudioMonitor& audioMonitor;
        FocusMonitor& focusMonitor;
        // What the Settings sheet needs besides the configuration.
        NotificationCenter& notificationCenter;
        SoundPlayer& soundPlayer;
        Scheduler& scheduler;
        // How the RAM tab finds the processes it opens at first.
        DefaultExpansion::Anchors expansionAnchors;
    };

    static constexpr int kMinimumWidth = 900;
    static constexpr int kMinimumHeight = 700;

    explicit ContentView(Managers managers, QWidget* parent = nullptr);

    QTabWidget* tabs() const { return m_tabs; }
    ProcessesView* processesView() const { return m_processesView; }
    // "Updated: " and the time of the last sample in the locale's short time format.
    QString updatedText() const;
    // The status line's text, empty while it is hidden.
    QString statusText() const;

    bool showSettings() const { return m_settings != nullptr; }
    // Presents the Settings sheet, as the gear does.
    void presentSettings();
    QDialog* settingsSheet() const { return m_settings; }

private:
    QWidget* buildHeader();
    QWidget* buildStatusLine();
    void refreshUpdated();
    void showSaveFailure(const QString& message);

    Managers m_managers;
    QTabWidget* m_tabs = nullptr;
    ProcessesView* m_processesView = nullptr;
    QLabel* m_updated = nullptr;
    QWidget* m_statusLine = nullptr;
    QLabel* m_statusText = nullptr;
    QPointer<QDialog> m_settings;
};

}  // namespace zelvar
