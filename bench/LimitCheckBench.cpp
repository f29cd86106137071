// What the limit check costs per monitoring cycle with many limits: 1,000 processes (300
// distinct names, as on a busy desktop where helpers share names) against 10, 1,000 and 10,000
// limits and a 20-entry whitelist. The steady state is the cost of every cycle while the limits
// don't change; the first cycle after a change matches every name anew. And what a burst of
// violations costs the configuration file, which every recorded violation rewrites.
#include <benchmark/benchmark.h>

#include <QTemporaryDir>

#include "alerts/AlertManager.h"
#include "alerts/NotificationHelper.h"
#include "alerts/SoundPlayer.h"
#include "common/Log.h"
#include "config/ConfigManager.h"
#include "platform/null/NullNotificationCenter.h"
#include "platform/null/NullProcessSignaller.h"
#include "platform/null/NullScheduler.h"
#include "platform/null/NullSoundOutput.h"
#include "platform/qt/SystemClock.h"
#include "process/LimitEnforcer.h"
#include "process/ProcessInfo.h"

using namespace zelvar;

namespace {

struct Enforcement {
    explicit Enforcement(int limitCount) {
        MonitorConfig config;
        for (int i = 0; i < limitCount; ++i) {
            // Names that never cover a process, except the first, which covers a few.
            config.limits.append(ProcessLimit::create(
                i == 0 ? QStringLiteral("worker 01") : QStringLiteral("Limited App %1").arg(i), 1e9,
                false, clock.now()));
        }
        for (int i = 0; i < 20; ++i) {
            config.whitelistedProcesses.insert(QStringLiteral("Exempt Tool %1").arg(i));
        }
        manager.setConfig(config);
        for (int i = 0; i < 1000; ++i) {
            ProcessInfo process;
            process.id = 1000 + i;
            process.ppid = 1;
            process.name = QStringLiteral("worker %1 Helper").arg(i % 300, 3, 10, QChar('0'));
            process.memoryMB = 50.0 + i % 7;
            processes.append(process);
        }
    }

    LogRedirect quiet{[](const QString&) {}};  // the null notification centre's refusal
    QTemporaryDir dir;
    SystemClock clock;
    NullScheduler scheduler;
    NullNotificationCenter center;
    NullSoundOutput sound;
    NullProcessSignaller signaller;
    NotificationHelper helper{center};
    SoundPlayer player{sound, scheduler, dir.path()};
    AlertManager alerts{helper, player, clock, scheduler};
    ConfigManager manager{dir.filePath("config.json"), clock};
    QList<ProcessInfo> processes;
};

void BM_CheckLimitsSteady(benchmark::State& state) {
    Enforcement e(static_cast<int>(state.range(0)));
    LimitEnforcer enforcer(e.manager, e.alerts, e.signaller, e.clock);
    enforcer.checkLimits(e.processes);  // the first cycle learns the names
    for (auto _ : state) {
        enforcer.checkLimits(e.processes);
    }
}
BENCHMARK(BM_CheckLimitsSteady)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_CheckLimitsFirstCycle(benchmark::State& state) {
    Enforcement e(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        LimitEnforcer enforcer(e.manager, e.alerts, e.signaller, e.clock);
        enforcer.checkLimits(e.processes);
    }
}
BENCHMARK(BM_CheckLimitsFirstCycle)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

// 100 violations recorded in one cycle with 1,000 limits in the file: 100 whole-file saves.
void BM_ConfigSaveBurst100(benchmark::State& state) {
    Enforcement e(1000);
    const QUuid id = e.manager.config().limits.value(0).id;
    for (auto _ : state) {
        for (int i = 0; i < 100; ++i) {
            e.manager.markLimitTriggered(id);
        }
    }
}
BENCHMARK(BM_ConfigSaveBurst100)->Unit(benchmark::kMillisecond);

}  // namespace
