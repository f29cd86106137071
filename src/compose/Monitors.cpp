#include "compose/Monitors.h"

#include "audio/AudioMonitor.h"
#include "compose/AlertStack.h"
#include "compose/NetworkStack.h"
#include "compose/ProcessStack.h"
#include "config/ConfigManager.h"
#include "focus/FocusMonitor.h"
#include "power/BatteryPowerMonitor.h"
#include "power/WattlogCache.h"
#include "power/WattlogSampleFiles.h"

namespace zelvar {

Monitors::Monitors(const Ports& ports, Mode mode, Parts parts) : m_ports(ports), m_mode(mode) {
    if (parts.testFlag(Part::Processes)) {
        m_config = std::make_unique<ConfigManager>(ConfigManager::defaultFile(m_ports.paths),
                                                   m_ports.clock);
        if (m_mode == Mode::Headless) {
            MonitorConfig lookOnly = m_config->config();
            lookOnly.limits.clear();
            m_config->setConfig(lookOnly);
        }
        m_alerts = std::make_unique<AlertStack>(m_ports, *m_config);
        m_processes = std::make_unique<ProcessStack>(m_ports, *m_config, m_alerts->alerts);
    }
    if (parts.testFlag(Part::Bandwidth)) {
        m_network = std::make_unique<NetworkStack>(m_ports);
    }
    if (parts.testFlag(Part::Power)) {
        m_power = std::make_unique<BatteryPowerMonitor>(BatteryPowerMonitor::Sources{
            m_ports.batteryRegistry, m_ports.clock, m_ports.scheduler, m_ports.commandRunner,
            WattlogSampleFiles::batterySamplesFile(m_ports.paths),
            WattlogSampleFiles::correlationSamplesFile(m_ports.paths), m_ports.powerLog,
            WattlogCache::defaultFile(m_ports.paths)});
    }
    if (parts.testFlag(Part::Focus)) {
        m_focus = std::make_unique<FocusMonitor>(m_ports.workspace, m_ports.clock);
    }
    if (parts.testFlag(Part::Audio)) {
        m_audio = std::make_unique<AudioMonitor>(
            AudioMonitor::Sources{m_ports.audioDevices, m_ports.commandRunner, m_ports.workspace,
                                  m_ports.clock, m_ports.scheduler, m_ports.system});
    }
}

Monitors::~Monitors() = default;

ProcessMonitor* Monitors::processMonitor() const {
    return m_processes ? &m_processes->monitor : nullptr;
}

BandwidthMonitor* Monitors::bandwidthMonitor() const {
    return m_network ? &m_network->bandwidth : nullptr;
}

void Monitors::start() {
    startProcessMonitoring();
    startMenuBarMonitors();
}

void Monitors::startProcessMonitoring() {
    if (m_processes) {
        m_processes->monitor.startMonitoring();
    }
}

void Monitors::startMenuBarMonitors() {
    if (m_power) {
        m_power->start();
    }
    if (m_audio) {
        m_audio->start();
    }
    if (m_focus) {
        m_focus->start();
    }
    if (m_network) {
        m_network->bandwidth.start();
    }
}

void Monitors::stop() {
    if (m_power) {
        m_power->stop();
    }
    if (m_audio) {
        m_audio->stop();
    }
    if (m_focus) {
        m_focus->stop();
    }
    if (m_processes) {
        m_processes->monitor.stopMonitoring();
    }
    if (m_config && m_mode == Mode::Desktop) {
        m_config->save();
    }
}

void Monitors::setCheckInterval(double seconds) {
    if (m_config) {
        MonitorConfig changed = m_config->config();
        changed.checkIntervalSeconds = seconds;
        m_config->setConfig(changed);
    }
}

}  // namespace zelvar
