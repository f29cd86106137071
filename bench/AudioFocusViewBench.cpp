// Cost on the main thread of one update of the Audio and Focus tabs with full histories (200
// events each): the monitor records one more event, dropping its oldest, and the tab follows
// it, lays out and paints, on the offscreen platform. Also the first showing of a tab over
// full histories, when every row is new.
//
// Target: under 5 ms per update.
#include <benchmark/benchmark.h>

#include <QCoreApplication>

#include "audio/AudioMonitor.h"
#include "focus/FocusMonitor.h"
#include "platform/Clock.h"
#include "platform/SystemProfile.h"
#include "platform/null/NullAudioDeviceState.h"
#include "platform/null/NullCommandRunner.h"
#include "platform/null/NullScheduler.h"
#include "platform/null/NullWorkspace.h"
#include "ui/audio/AudioView.h"
#include "ui/focus/FocusView.h"

using namespace zelvar;

namespace {

// A second passes at every reading, so that the monitors' time-keeping sees events spread
// out as they would be.
class SteppingClock final : public Clock {
public:
    QDateTime now() const override {
        m_now = m_now.addSecs(1);
        return m_now;
    }

private:
    mutable QDateTime m_now = QDateTime::currentDateTimeUtc();
};

// A desktop whose focus moves when the benchmark says so.
class SwitchingWorkspace final : public Workspace {
public:
    void activate(const QString& name) {
        if (m_activated) {
            m_activated(RunningApplication{.localizedName = name});
        }
    }
    std::optional<RunningApplication> frontmostApplication() override {
        return RunningApplication{.localizedName = QStringLiteral("Terminal")};
    }
    QList<RunningApplication> runningApplications() override { return {}; }
    void subscribeActivations(std::function<void(const RunningApplication&)> activated) override {
        m_activated = std::move(activated);
    }
    void unsubscribeActivations() override { m_activated = nullptr; }
    QString applicationNameForIdentifier(const QString&) override { return {}; }

private:
    std::function<void(const RunningApplication&)> m_activated;
};

struct AudioRig {
    AudioRig() {
        for (int i = 0; i < AudioMonitor::kHistoryLimit; ++i) {
            next();
        }
    }
    void next() {
        // Fifty players in turn: no two events of one player fall within the 2-second dedupe.
        const int player = count++ % 50;
        monitor.addOutputEvent(QStringLiteral("Player %1").arg(player),
                               QStringLiteral("org.example.player%1").arg(player),
                               QStringLiteral("CoreAudio log"));
    }

    SteppingClock clock;
    NullAudioDeviceState devices;
    NullCommandRunner commands;
    NullWorkspace workspace;
    NullScheduler scheduler;
    SystemProfile system = linuxSystemProfile();
    AudioMonitor monitor{{devices, commands, workspace, clock, scheduler, system}};
    int count = 0;
};

struct FocusRig {
    FocusRig() {
        monitor.start();
        for (int i = 0; i < FocusMonitor::kMaxHistory; ++i) {
            next();
        }
    }
    void next() { workspace.activate(QStringLiteral("App %1").arg(count++ % 7)); }

    SteppingClock clock;
    SwitchingWorkspace workspace;
    FocusMonitor monitor{workspace, clock};
    int count = 0;
};

template <typename Rig, typename View>
void showFull(benchmark::State& state) {
    Rig rig;
    for (auto _ : state) {
        View view(rig.monitor);
        view.resize(1000, 700);
        view.show();
        QCoreApplication::processEvents();
    }
}

template <typename Rig, typename View>
void updateFull(benchmark::State& state) {
    Rig rig;
    View view(rig.monitor);
    view.resize(1000, 700);
    view.show();
    QCoreApplication::processEvents();
    for (auto _ : state) {
        rig.next();
        QCoreApplication::processEvents();
    }
}

void BM_AudioViewUpdate(benchmark::State& state) {
    updateFull<AudioRig, AudioView>(state);
}
void BM_AudioViewFirstShow(benchmark::State& state) {
    showFull<AudioRig, AudioView>(state);
}
void BM_FocusViewUpdate(benchmark::State& state) {
    updateFull<FocusRig, FocusView>(state);
}
void BM_FocusViewFirstShow(benchmark::State& state) {
    showFull<FocusRig, FocusView>(state);
}
BENCHMARK(BM_AudioViewUpdate)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AudioViewFirstShow)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FocusViewUpdate)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FocusViewFirstShow)->Unit(benchmark::kMillisecond);

}  // namespace
