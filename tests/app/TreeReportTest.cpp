#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>

#include "app/report/TreeReport.h"
#include "process/ProcessTreeBuilder.h"

using namespace zelvar;

namespace {

const QDateTime kAt(QDate(2026, 1, 1), QTime(0, 0), QTimeZone::utc());

QList<ProcessNode> sampleForest() {
    // init (1) > bash (20) > vim (21), make (22) > cc (23); a daemon (30) from a job.
    const auto system = ProcessOrigin::system();
    const auto bash = ProcessOrigin::cli("bash");
    const auto job = ProcessOrigin::launchAgent("com.example.sync");
    return ProcessTreeBuilder::build({
        {1, 0, "init", 10.0, 0.0, kAt, system, system},
        {20, 1, "bash", 5.0, 0.0, kAt, system, system},
        {21, 20, "vim", 1100.0, 2.5, kAt, bash, system},
        {22, 20, "make", 3.0, 0.0, kAt, bash, system},
        {23, 22, "cc", 40.0, 99.0, kAt, ProcessOrigin::cli("make-not-a-shell"), system},
        {30, 1, "syncd", 7.0, 0.0, kAt, job, job},
    });
}

}  // namespace

TEST(TreeReportTest, IndentedRowsWithAggregatesAndOriginChips) {
    const QList<ProcessNode> forest = sampleForest();
    const QStringList lines = TreeReport::formatText(forest, 0).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 7);
    EXPECT_TRUE(lines[0].contains("AGGREGATE") && lines[0].contains("PROCESS"));
    const QString system = ProcessOrigin::system().icon() + " system";
    EXPECT_EQ(lines[1].simplified(), "1.1 GB 10 MB 0.0% " + system + " " + system + " init (1)");
    EXPECT_EQ(lines[2].simplified(), "1.1 GB 5 MB 0.0% " + system + " " + system + " bash (20)");
    EXPECT_EQ(lines[3].simplified(), "1.1 GB 1.1 GB 2.5% 💻 bash " + system + " vim (21)");
    EXPECT_TRUE(lines[3].endsWith("    vim (21)"));  // two levels below the root
    EXPECT_TRUE(lines[4].endsWith("    make (22)"));
    EXPECT_TRUE(lines[5].endsWith("      cc (23)"));
    EXPECT_EQ(lines[6].simplified(), "7 MB 7 MB 0.0% ⚙️ sync ⚙️ sync syncd (30)");
}

TEST(TreeReportTest, DepthLimitCountsWhatItHides) {
    const QList<ProcessNode> forest = sampleForest();
    QStringList shown;
    for (const TreeReport::Row& row : TreeReport::rows(forest, 2)) {
        shown << QStringLiteral("%1:%2+%3")
                     .arg(row.node->id())
                     .arg(row.depth)
                     .arg(row.hiddenDescendants);
    }
    EXPECT_EQ(shown, (QStringList{"1:0+0", "20:1+3", "30:1+0"}));
    EXPECT_TRUE(TreeReport::formatText(forest, 1).contains("init (1) [+5]"));

    const QJsonArray json = QJsonDocument::fromJson(TreeReport::formatJson(forest, 2)).array();
    ASSERT_EQ(json.size(), 3);
    const QJsonObject bash = json[1].toObject();
    EXPECT_EQ(bash["depth"].toInt(), 1);
    EXPECT_EQ(bash["aggregate_memory_mb"].toDouble(), 1148.0);
    EXPECT_EQ(bash["child_count"].toInt(), 2);
    EXPECT_EQ(bash["hidden_descendants"].toInt(), 3);
    const auto record = ProcessInfo::fromJson(bash["process"].toObject());
    ASSERT_TRUE(record.has_value());
    EXPECT_EQ(record->name, "bash");
    EXPECT_EQ(record->rootOrigin, ProcessOrigin::system());
}
