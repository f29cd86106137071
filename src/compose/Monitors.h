#pragma once

#include <QFlags>
#include <memory>

#include "platform/Ports.h"

namespace zelvar {

class AudioMonitor;
class BandwidthMonitor;
class BatteryPowerMonitor;
class FocusMonitor;
class ConfigManager;
class ProcessMonitor;
struct AlertStack;
struct NetworkStack;
struct ProcessStack;

// Every monitor of the system, built from the ports in the one place that wires them: the
// tray app, each report and later the daemon and the dashboard own one of these. It builds
// them idle, in the order of start-up, starts them in that order and stops them in the order
// of shutdown. A new monitor is built here and takes its place in start() and stop().
// Main thread only.
class Monitors final {
public:
    enum class Mode {
        // The desktop's notifications and sounds, and the user's configuration as it is,
        // written back at shutdown.
        Desktop,
        // A look without side effects: the limits cleared in memory so that nothing is alerted
        // on or killed, the configuration never written. Its ports should be silent too (no
        // notification centre, no sound output), as the reports' are.
        Headless,
    };
    // The parts to build; a report builds only the monitors it runs.
    enum class Part {
        // The configuration, the alerts and process monitoring, which needs both.
        Processes = 0x1,
        Bandwidth = 0x2,
        // The battery power monitor over the battery and the daemon's sample files.
        Power = 0x4,
        // The audio monitor over the default devices and the audio detection's tools.
        Audio = 0x8,
        // The focus monitor over the desktop's workspace.
        Focus = 0x10,
    };
    Q_DECLARE_FLAGS(Parts, Part)
    static constexpr Parts allParts() {
        return Parts(Part::Processes) | Part::Bandwidth | Part::Power | Part::Audio | Part::Focus;
    }

    Monitors(const Ports& ports, Mode mode, Parts parts = allParts());
    ~Monitors();
    Monitors(const Monitors&) = delete;
    Monitors& operator=(const Monitors&) = delete;

    // The start-up, in order: process monitoring, then the menu-bar monitors. The tray app
    // puts its status item between the two.
    void start();
    void startProcessMonitoring();
    // The battery power, audio and focus monitors start here, in that order, before the
    // bandwidth monitor.
    void startMenuBarMonitors();
    // The shutdown, in order: the menu-bar monitors (the bandwidth monitor has no stop step),
    // process monitoring, then the configuration is saved (not in headless mode).
    void stop();

    // Replaces the configured check interval in memory only, before process monitoring starts.
    void setCheckInterval(double seconds);

    // The ports the monitors were built from.
    const Ports& ports() const { return m_ports; }
    // Each is null when its part was not built.
    ConfigManager* config() const { return m_config.get(); }
    AlertStack* alerts() const { return m_alerts.get(); }
    ProcessStack* processes() const { return m_processes.get(); }
    ProcessMonitor* processMonitor() const;
    BandwidthMonitor* bandwidthMonitor() const;
    BatteryPowerMonitor* batteryPowerMonitor() const { return m_power.get(); }
    AudioMonitor* audioMonitor() const { return m_audio.get(); }
    FocusMonitor* focusMonitor() const { return m_focus.get(); }

private:
    Ports m_ports;
    Mode m_mode;
    std::unique_ptr<ConfigManager> m_config;
    std::unique_ptr<AlertStack> m_alerts;
    std::unique_ptr<ProcessStack> m_processes;
    std::unique_ptr<NetworkStack> m_network;
    std::unique_ptr<BatteryPowerMonitor> m_power;
    std::unique_ptr<AudioMonitor> m_audio;
    std::unique_ptr<FocusMonitor> m_focus;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(Monitors::Parts)

}  // namespace zelvar
