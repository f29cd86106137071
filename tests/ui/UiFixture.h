#pragma once

#include <QAbstractButton>
#include <QWidget>
#include <memory>

#include "compose/Monitors.h"
#include "config/ConfigManager.h"
#include "process/ProcessMonitor.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/Testing.h"

namespace zelvar::test {

// The monitors of the RAM tab, composed as the app composes them, over fake ports in a
// temporary home: the configuration file is the real one, under that home.
class UiFixture : public ::testing::Test {
protected:
    UiFixture()
        : m_monitors(std::make_unique<Monitors>(m_fake.ports(), Monitors::Mode::Desktop,
                                                Monitors::Parts(Monitors::Part::Processes))) {
        QObject::connect(&processMonitor(), &ProcessMonitor::cycleFinished, [this] { ++m_cycles; });
    }
    ~UiFixture() override { processMonitor().stopMonitoring(); }

    ConfigManager& config() { return *m_monitors->config(); }
    ProcessMonitor& processMonitor() { return *m_monitors->processMonitor(); }

    // Publishes `processes` (name and mebibytes; pids in order from 100) by one monitoring
    // cycle, which also checks them against the limits.
    void sample(const std::vector<std::pair<QString, int>>& processes) {
        std::vector<FakeProcessTable::Process> table{{1, 0, "init", 4 << 20, 0}};
        Pid pid = 100;
        for (const auto& [name, megabytes] : processes) {
            table.push_back({pid++, 1, name, quint64(megabytes) << 20, 0});
        }
        m_fake.processTable.setProcesses(table);
        const int before = m_cycles;
        if (processMonitor().isMonitoring()) {
            m_fake.clock.advance(config().config().checkIntervalSeconds);
        } else {
            processMonitor().startMonitoring();
        }
        ASSERT_TRUE(processEventsUntil([&] { return m_cycles > before; }));
    }

    // The configuration as its file holds it, read anew.
    MonitorConfig savedConfig() {
        return ConfigManager(config().configPath(), m_fake.clock).config();
    }

    FakePorts m_fake;
    std::unique_ptr<Monitors> m_monitors;
    int m_cycles = 0;
};

// The button of `widget` that shows `text`, or null.
inline QAbstractButton* buttonNamed(const QWidget& widget, const QString& text) {
    for (QAbstractButton* button : widget.findChildren<QAbstractButton*>()) {
        if (button->text() == text) {
            return button;
        }
    }
    return nullptr;
}

}  // namespace zelvar::test
