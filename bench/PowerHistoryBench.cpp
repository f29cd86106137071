// The power history's stages over a synthetic `pmset -g log` of 500,000 lines, as long as a
// busy machine's: splitting and parsing, the inferences, the removal of duplicates and the
// derived data, each alone and all together (target: under a second in all).
#include <benchmark/benchmark.h>

#include <QDateTime>
#include <QTimeZone>

#include "power/WattlogDerivedData.h"
#include "power/WattlogHistory.h"
#include "power/WattlogLogParser.h"

using namespace zelvar;

namespace {

constexpr int kLines = 500000;

// Mostly assertion lines that name no event, as in real logs, with sleeps and wakes, clamshell
// sleeps, dark wakes, display changes and summaries whose source changes now and then.
const QString& syntheticLog() {
    static const QString log = [] {
        QString text;
        text.reserve(qsizetype{kLines} * 170);
        const QDateTime start(QDate(2024, 1, 1), QTime(0, 0), QTimeZone::utc());
        for (int i = 0; i < kLines; ++i) {
            const QString stamp =
                start.addSecs(qint64{i} * 6).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss +0000 "));
            const int charge = 20 + (i / 50) % 80;
            switch (i % 20) {
                case 0:
                    text += stamp + QStringLiteral(
                                        "Sleep               \tEntering Sleep state due to 'Idle "
                                        "Sleep':TCPKeepAlive=active Using Batt (Charge:%1%) 8 secs")
                                        .arg(charge);
                    break;
                case 1:
                    text +=
                        stamp + QStringLiteral(
                                    "Wake                \tWake from Normal Sleep [CDNVA] : due "
                                    "to EC.LidOpen/Lid Open Using AC (Charge:%1%) 132 secs")
                                    .arg(charge);
                    break;
                case 5:
                    text += stamp +
                            QStringLiteral(
                                "Assertions          \tSummary- [System: DeclUser "
                                "kDisp] Using %1(Charge: %2)")
                                .arg((i / 100) % 2 ? QStringLiteral("AC") : QStringLiteral("Batt"))
                                .arg(charge);
                    break;
                case 9:
                    text += stamp +
                            QStringLiteral("Notification        \tDisplay is turned %1")
                                .arg(i % 40 == 9 ? QStringLiteral("off") : QStringLiteral("on"));
                    break;
                case 13:
                    text += stamp + QStringLiteral(
                                        "Sleep               \tEntering Sleep state due "
                                        "to 'Clamshell Sleep': Using AC (Charge:%1%)")
                                        .arg(charge);
                    break;
                case 17:
                    text += stamp + QStringLiteral(
                                        "DarkWake            \tDarkWake from Deep Idle "
                                        "[CDN] : due to RTC/Maintenance Using Batt "
                                        "(Charge:%1%) 45 secs")
                                        .arg(charge);
                    break;
                default:
                    text +=
                        stamp + QStringLiteral(
                                    "Assertions          \tPID 193(coreaudiod) Released "
                                    "PreventUserIdleDisplaySleep \"com.apple.audio.context141\" "
                                    "00:12:00  id:0x0x5000082de [System: PrevIdle DeclUser kDisp]");
            }
            text += QLatin1Char('\n');
        }
        return text;
    }();
    return log;
}

const QList<WattlogEvent>& parsedEvents() {
    static const QList<WattlogEvent> events = WattlogLogParser::parsePmsetText(syntheticLog());
    return events;
}

void BM_PowerLogParseLines(benchmark::State& state) {
    const QString& log = syntheticLog();
    for (auto _ : state) {
        int found = 0;
        for (const QString& line : log.split(QLatin1Char('\n'))) {
            found += WattlogLogParser::parse(line) ? 1 : 0;
        }
        benchmark::DoNotOptimize(found);
    }
    state.SetItemsProcessed(state.iterations() * kLines);
}
BENCHMARK(BM_PowerLogParseLines)->Unit(benchmark::kMillisecond);

void BM_PowerLogParseAndInfer(benchmark::State& state) {
    const QString& log = syntheticLog();
    for (auto _ : state) {
        benchmark::DoNotOptimize(WattlogLogParser::parsePmsetText(log));
    }
    state.counters["events"] = static_cast<double>(parsedEvents().size());
}
BENCHMARK(BM_PowerLogParseAndInfer)->Unit(benchmark::kMillisecond);

void BM_PowerLogDeduplicate(benchmark::State& state) {
    const QList<WattlogEvent>& events = parsedEvents();
    for (auto _ : state) {
        benchmark::DoNotOptimize(WattlogHistory::deduplicated(events));
    }
    state.counters["events"] = static_cast<double>(events.size());
}
BENCHMARK(BM_PowerLogDeduplicate)->Unit(benchmark::kMillisecond);

// 500,000 events, a fifth of them duplicates of the one before.
void BM_PowerLogDeduplicate500k(benchmark::State& state) {
    QList<WattlogEvent> events;
    const QList<WattlogEvent>& parsed = parsedEvents();
    for (int i = 0; events.size() < 500000; ++i) {
        WattlogEvent e = parsed[i % parsed.size()];
        e.timestamp = e.timestamp.addSecs(qint64{i / parsed.size()} * 3600 * 24 * 365);
        events.append(e);
        if (i % 4 == 0) {
            events.append(e);
        }
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(WattlogHistory::deduplicated(events));
    }
}
BENCHMARK(BM_PowerLogDeduplicate500k)->Unit(benchmark::kMillisecond);

void BM_PowerLogDerive(benchmark::State& state) {
    const QList<WattlogEvent>& events = parsedEvents();
    const QDateTime now = events.constLast().timestamp;
    for (auto _ : state) {
        benchmark::DoNotOptimize(WattlogDerivedData::build(events, now));
    }
}
BENCHMARK(BM_PowerLogDerive)->Unit(benchmark::kMillisecond);

// What a history build does with the log's text once the command has printed it.
void BM_PowerLogWholeHistory(benchmark::State& state) {
    const QString& log = syntheticLog();
    for (auto _ : state) {
        QList<WattlogEvent> events =
            WattlogHistory::deduplicated(WattlogLogParser::parsePmsetText(log));
        WattlogHistory::sortByTime(events);
        benchmark::DoNotOptimize(WattlogDerivedData::build(events, events.constLast().timestamp));
    }
}
BENCHMARK(BM_PowerLogWholeHistory)->Unit(benchmark::kMillisecond);

}  // namespace
