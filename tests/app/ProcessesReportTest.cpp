#include <unistd.h>

#include <QProcess>
#include <QTimeZone>

#include "app/SystemServices.h"
#include "app/report/ProcessesReport.h"
#include "app/report/TreeReport.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

// The real process monitor over this machine, composed as the report composes it.
TEST(ProcessesReportLiveTest, SampleAgreesWithPsAndItsForestHoldsEveryProcessOnce) {
    test::LogCapture quiet;
    SystemServices services;
    Monitors monitors(services.ports(), Monitors::Mode::Headless, Monitors::Part::Processes);
    const ProcessesReport::Sample sample = ProcessesReport::sample(monitors, {1, {}});
    QProcess ps;
    ps.start(QStringLiteral("/bin/ps"), {QStringLiteral("-eo"), QStringLiteral("pid=,ppid=")});
    ps.waitForFinished(10000);
    QHash<Pid, Pid> psParents;
    for (const QByteArray& line : ps.readAllStandardOutput().split('\n')) {
        if (const QList<QByteArray> fields = line.simplified().split(' '); fields.size() == 2) {
            psParents.insert(fields[0].toInt(), fields[1].toInt());
        }
    }

    QHash<Pid, int> seen;
    for (const TreeReport::Row& row : TreeReport::rows(sample.tree, 0)) {
        ++seen[row.node->id()];
    }
    EXPECT_EQ(seen.size(), sample.processes.size());
    EXPECT_TRUE(seen.contains(getpid()));
    qsizetype common = 0;
    for (const ProcessInfo& p : sample.processes) {
        EXPECT_EQ(seen.value(p.id), 1) << p.id << " " << p.name.toStdString();
        if (const auto parent = psParents.constFind(p.id); parent != psParents.constEnd()) {
            ++common;  // else it ended in between
            EXPECT_EQ(p.ppid, *parent) << p.name.toStdString();
        }
    }
    EXPECT_GE(common, std::min(sample.processes.size(), psParents.size()) - 3);
    EXPECT_EQ(TreeReport::formatText(sample.tree, 0).count('\n'), sample.processes.size() + 1);
}

TEST(ProcessesReportTest, TableAndJsonForms) {
    const QDateTime at(QDate(2026, 1, 1), QTime(0, 0), QTimeZone::utc());
    const QList<ProcessInfo> processes = {
        {42, 1, "firefox", 1536.0, 12.5, at, ProcessOrigin::launchAgent("org.mozilla.firefox"),
         ProcessOrigin::system()},
        {7, 0, "init %1", 3.0, 0.0, at, {}, ProcessOrigin::cli("%2sh")}};
    EXPECT_EQ(ProcessesReport::formatTable(processes)
                  .replace(ProcessOrigin::system().icon(), "🐧")
                  .toStdString(),
              R"(    PID    PPID    MEMORY     CPU  ORIGIN               ROOT                 NAME
     42       1    1.5 GB   12.5%  ⚙️ firefox           🐧 system            firefox
      7       0      3 MB    0.0%                       💻 %2sh              init %1
)");
    const QJsonArray json = QJsonDocument::fromJson(ProcessesReport::formatJson(processes)).array();
    ASSERT_EQ(json.size(), 2);
    EXPECT_EQ(ProcessInfo::fromJson(json[0].toObject()), processes[0]);
    EXPECT_EQ(ProcessInfo::fromJson(json[1].toObject()), processes[1]);
}
