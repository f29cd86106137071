#include <QTimeZone>

#include "app/report/TreeReport.h"
#include "process/ProcessTreeBuilder.h"
#include "support/Testing.h"

TEST(TreeReportTest, IndentedRowsWithAggregatesOriginChipsAndDepthLimit) {
    // init (1) > bash (20) > vim (21), make (22) > cc (23) > ld (24); a daemon (30) from a job.
    const QDateTime at(QDate(2026, 1, 1), QTime(0, 0), QTimeZone::utc());
    const auto system = ProcessOrigin::system();
    const auto bash = ProcessOrigin::cli("bash");
    const auto job = ProcessOrigin::launchAgent("com.example.sync");
    const QList<ProcessNode> forest = ProcessTreeBuilder::build({
        {1, 0, "init", 10.0, 0.0, at, system, system},
        {20, 1, "bash", 5.0, 0.0, at, system, system},
        {21, 20, "vim", 1100.0, 2.5, at, bash, system},
        {22, 20, "make", 3.0, 0.0, at, bash, system},
        {23, 22, "cc", 40.0, 99.0, at, ProcessOrigin::cli("make-not-a-shell"), system},
        {24, 23, "ld", 2.0, 0.0, at, bash, system},
        {30, 1, "syncd", 7.0, 0.0, at, job, job},
    });
    // The system's icon is the platform's own; the expected text shows the Linux one.
    EXPECT_EQ(TreeReport::formatText(forest, 4).replace(system.icon(), "🐧").toStdString(),
              R"(AGGREGATE       OWN     CPU  ORIGIN               ROOT                 PROCESS
   1.1 GB     10 MB    0.0%  🐧 system            🐧 system            init (1)
   1.1 GB      5 MB    0.0%  🐧 system            🐧 system              bash (20)
   1.1 GB    1.1 GB    2.5%  💻 bash              🐧 system                vim (21)
    45 MB      3 MB    0.0%  💻 bash              🐧 system                make (22)
    42 MB     40 MB   99.0%  💻 make-not-a-shell  🐧 system                  cc (23) [+1]
     7 MB      7 MB    0.0%  ⚙️ sync              ⚙️ sync                syncd (30)
)");
    QJsonObject row =
        QJsonDocument::fromJson(TreeReport::formatJson(forest, 2)).array()[1].toObject();
    EXPECT_EQ(ProcessInfo::fromJson(row.take("process").toObject()), forest[0].children[0].process);
    EXPECT_EQ(row, (QJsonObject{{"depth", 1},
                                {"aggregate_memory_mb", 1150.0},
                                {"child_count", 2},
                                {"hidden_descendants", 4}}));
}
