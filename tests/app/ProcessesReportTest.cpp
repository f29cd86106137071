#include <gtest/gtest.h>
#include <unistd.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTimeZone>

#include "app/SystemServices.h"
#include "app/report/ProcessesReport.h"
#include "app/report/TreeReport.h"
#include "support/LogCapture.h"

using namespace zelvar;

namespace {

struct PsRow {
    Pid ppid = 0;
    qint64 rssKiB = 0;
};

QHash<Pid, PsRow> psSnapshot() {
    QProcess ps;
    ps.start(QStringLiteral("/bin/ps"), {QStringLiteral("-eo"), QStringLiteral("pid=,ppid=,rss=")});
    ps.waitForFinished(10000);
    QHash<Pid, PsRow> rows;
    for (const QByteArray& line : ps.readAllStandardOutput().split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() == 3) {
            rows.insert(fields[0].toInt(), {fields[1].toInt(), fields[2].toLongLong()});
        }
    }
    return rows;
}

}  // namespace

// The real monitor over this machine, composed as the report composes it.
TEST(ProcessesReportLiveTest, SampleAgreesWithPsAndItsForestHoldsEveryProcessOnce) {
    test::LogCapture quiet;
    SystemServices services;
    Monitors monitors(services.ports(), Monitors::Mode::Headless, Monitors::Part::Processes);
    const QHash<Pid, PsRow> before = psSnapshot();
    const ProcessesReport::Sample sample = ProcessesReport::sample(monitors, {1, 3.0});
    const QHash<Pid, PsRow> ps = psSnapshot();
    const QList<ProcessInfo>& processes = sample.processes;
    ASSERT_FALSE(processes.isEmpty());

    int common = 0;
    for (const ProcessInfo& p : processes) {
        const auto it = ps.constFind(p.id);
        if (it == ps.constEnd()) {
            continue;  // ended in between
        }
        ++common;
        EXPECT_EQ(p.ppid, it->ppid) << p.name.toStdString();
        const double psMB = static_cast<double>(it->rssKiB) / 1024.0;
        // Only processes whose memory held still around the sample can be compared.
        const qint64 earlierKiB = before.value(p.id).rssKiB;
        const bool steady = std::abs(earlierKiB - it->rssKiB) <= it->rssKiB / 100;
        if (psMB > 20.0 && steady) {
            EXPECT_NEAR(p.memoryMB, psMB, psMB * 0.05) << p.name.toStdString();
        }
    }
    EXPECT_GE(common, std::min<qsizetype>(processes.size(), ps.size()) - 3);
    const bool hasSelf = std::any_of(processes.begin(), processes.end(),
                                     [](const ProcessInfo& p) { return p.id == getpid(); });
    EXPECT_TRUE(hasSelf);

    QHash<Pid, int> seen;
    const QList<TreeReport::Row> rows = TreeReport::rows(sample.tree, 0);
    for (const TreeReport::Row& row : rows) {
        ++seen[row.node->id()];
    }
    EXPECT_EQ(rows.size(), processes.size());
    for (const ProcessInfo& p : processes) {
        EXPECT_EQ(seen.value(p.id), 1) << p.id << " " << p.name.toStdString();
    }
    // The text form shows the same rows under its header.
    EXPECT_EQ(TreeReport::formatText(sample.tree, 0).count('\n'), rows.size() + 1);
}

TEST(ProcessesReportTest, TableAndJsonForms) {
    const QDateTime at(QDate(2026, 1, 1), QTime(0, 0), QTimeZone::utc());
    const QList<ProcessInfo> processes = {
        {42, 1, "firefox", 1536.0, 12.5, at, ProcessOrigin::launchAgent("org.mozilla.firefox"),
         ProcessOrigin::system()},
        {7, 0, "init %1", 3.0, 0.0, at, {}, ProcessOrigin::cli("%2sh")}};
    const QStringList lines =
        ProcessesReport::formatTable(processes).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[0].contains("PID") && lines[0].contains("ORIGIN") &&
                lines[0].contains("NAME"));
    EXPECT_EQ(lines[1].simplified(), "42 1 1.5 GB 12.5% ⚙️ firefox " +
                                         ProcessOrigin::system().icon() + " system firefox");
    EXPECT_EQ(lines[2].simplified(), "7 0 3 MB 0.0% 💻 %2sh init %1");

    const QJsonArray json = QJsonDocument::fromJson(ProcessesReport::formatJson(processes)).array();
    ASSERT_EQ(json.size(), 2);
    EXPECT_EQ(ProcessInfo::fromJson(json[0].toObject()), processes[0]);
}
