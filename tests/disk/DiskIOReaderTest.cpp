#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTimeZone>

#include "disk/DiskIOReader.h"
#include "support/QtPrinters.h"

using namespace zelvar;

namespace {

class DiskIOReaderTest : public ::testing::Test {
protected:
    QString path() const { return m_dir.filePath("diskio.jsonl"); }

    void write(const QByteArray& content) {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
    }

    void writeLines(const QList<QByteArray>& lines) { write(lines.join('\n') + '\n'); }

    DiskIORead read(int limit = 20) const { return DiskIOReader(path()).read(limit); }

    static QByteArray burst(int minute, const QByteArray& extra = R"("source":"process")") {
        return QStringLiteral(R"({"type":"diskio_burst","timestamp":"2026-01-15T10:%1:00Z",)")
                   .arg(minute, 2, 10, QLatin1Char('0'))
                   .toUtf8() +
               extra + "}";
    }

    static QByteArray summary(const QByteArray& timestamp, const QByteArray& window) {
        return R"({"type":"diskio_summary","timestamp":")" + timestamp +
               R"(","windows":[{"window":")" + window + R"("}]})";
    }

    QTemporaryDir m_dir;
};

}  // namespace

TEST_F(DiskIOReaderTest, ParsesEveryFieldOfASummaryWithItsDefaults) {
    writeLines(
        {R"({"type":"diskio_summary","timestamp":"2026-01-15T10:00:00+02:00",)"
         R"("rusage_interval_s":15,"rusage_overhead_pct":0.25,"extra":1,"windows":[)"
         R"({"window":"1m","top_writers":[{"name":"kworker","pid":42,"written_mb":12.5,)"
         R"("read_mb":3},{"pid":7,"written_mb":1},{"name":"alone"},{"name":"fraction","pid":4.5}],)"
         R"("top_directories":[{"path":"/var/log","written_mb":7},{"written_mb":9}],)"
         R"("top_files":[{"path":"/var/log/syslog"}]},)"
         R"({"top_writers":[]},)"
         R"({"window":"5m","top_writers":"not a list","top_files":[{"path":"/a"},3]}]})"});
    const auto s = read().summary;
    ASSERT_EQ(s.value_or(DiskIOSummary{}).windows.size(), 2);  // one without a name is left out
    EXPECT_EQ(std::tuple(s->timestamp, s->rusageIntervalS, s->rusageOverheadPct),
              std::tuple(QDateTime(QDate(2026, 1, 15), QTime(8, 0), QTimeZone::utc()), 15.0, 0.25));

    const WindowData& minute = s->windows[0];
    EXPECT_EQ(minute.window, "1m");
    // The writer without a name is dropped; a pid must be integral.
    using Writer = std::tuple<QString, std::optional<qint64>, double, double>;
    QList<Writer> writers;
    for (const WriterEntry& w : minute.topWriters) {
        writers.append({w.name, w.pid, w.writtenMB, w.readMB});
    }
    EXPECT_EQ(
        writers,
        (QList<Writer>{{"kworker", 42, 12.5, 3.0}, {"alone", {}, 0, 0}, {"fraction", {}, 0, 0}}));
    EXPECT_NE(minute.topWriters[0].id, minute.topWriters[1].id);
    EXPECT_EQ(std::tuple(minute.topDirectories.size(), minute.topDirectories.value(0).path,
                         minute.topFiles.size(), minute.topFiles.value(0).writtenMB),
              std::tuple(1, "/var/log", 1, 0.0));
    // A list that isn't a list of objects is empty.
    EXPECT_TRUE(s->windows[1].topWriters.isEmpty() && s->windows[1].topFiles.isEmpty());
    EXPECT_EQ(s->windowData("5m")->window, "5m");
    EXPECT_FALSE(s->windowData("30m") || s->windowData("1M"));
}

TEST_F(DiskIOReaderTest, TheNewestValidSummaryWins) {
    EXPECT_FALSE(read().summary);  // no file
    write("");
    EXPECT_TRUE(!read().summary && read().bursts.isEmpty());
    const QByteArray old = summary("2026-01-15T10:00:00Z", "old");
    writeLines({old, summary("2026-01-15T10:01:00Z", "new")});
    EXPECT_EQ(read().summary->windows[0].window, "new");
    // A timestamp of whole seconds and a list of window objects are required; a newer summary
    // without them gives way to the older one.
    for (
        const char* broken :
        {R"({"type":"diskio_summary","timestamp":"2026-01-15T10:01:00Z"})",
         R"({"type":"diskio_summary","windows":[]})",
         R"({"type":"diskio_summary","timestamp":"2026-01-15 10:01:00Z","windows":[]})",
         R"({"type":"diskio_summary","timestamp":"2026-01-15T10:01:00.000Z","windows":[]})",
         R"({"type":"diskio_summary","timestamp":"2026-01-15T10:01:00Z","windows":[{"window":"1m"},2]})"}) {
        writeLines({old, broken});
        EXPECT_EQ(read().summary.value_or(DiskIOSummary{}).windows.value(0).window, "old")
            << broken;
    }
    writeLines({R"({"type":"diskio_summary","timestamp":"2026-01-15T10:00:00Z","windows":[]})"});
    const auto s = read().summary.value_or(DiskIOSummary{.rusageIntervalS = 0, .windows = {{}}});
    EXPECT_EQ(std::tuple(s.windows.size(), s.rusageIntervalS, s.rusageOverheadPct),
              std::tuple(0, 30.0, 0.0));
}

TEST_F(DiskIOReaderTest, TheNewestBurstsComeBackOldestFirst) {
    QList<QByteArray> lines;
    for (int minute = 0; minute < 30; ++minute) {
        lines << burst(minute);
        // Invalid bursts in between don't use up the limit.
        lines << burst(minute, R"("process":"x")") << burst(minute, R"("source":"other")");
    }
    writeLines(lines);
    const QList<DiskIOBurst> bursts = read(20).bursts;
    ASSERT_EQ(bursts.size(), 20);
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(bursts[i].timestamp.time().minute(), 10 + i);
    }
    EXPECT_TRUE(read(0).bursts.isEmpty());
}

TEST_F(DiskIOReaderTest, BurstFieldsLabelsAndDefaults) {
    writeLines(
        {burst(0, R"("source":"process","process":"rsync","pid":77,"written_mb":250.5,)"
                  R"("window_s":10)"),
         burst(1, R"("source":"directory")"), burst(2, R"("source":"process","path":"/tmp/x")"),
         burst(3, R"("source":"file","path":"/tmp/big.iso","process":"ignored","window_s":2.5)"),
         burst(4, R"("source":"process","pid":"12")"),
         R"({"type":"diskio_burst","source":"file","path":"/no/timestamp"})",
         R"({"type":7,"timestamp":"2026-01-15T10:05:00Z","source":"process"})",
         R"({"type":"diskio_other","timestamp":"2026-01-15T10:06:00Z","source":"process"})",
         R"(["type","diskio_burst"])", "{not json"});
    QStringList bursts;
    for (const DiskIOBurst& b : read().bursts) {
        bursts << QStringLiteral("%1 %2 %3 %4 %5 %6")
                      .arg(DiskIOBurst::sourceName(b.source), b.label,
                           b.pid ? QString::number(*b.pid) : "-", QString::number(b.writtenMB),
                           QString::number(b.windowS), b.icon());
    }
    // A process burst reads only "process"; a fractional window or a pid in a string is none.
    EXPECT_EQ(bursts,
              (QStringList{"process rsync 77 250.5 10 cpu", "directory unknown - 0 30 folder.fill",
                           "process unknown - 0 30 cpu", "file /tmp/big.iso - 0 30 doc.fill",
                           "process unknown - 0 30 cpu"}));
}

TEST(DiskIOModels, MegabytesSwitchToGigabytesOfA1024AtAThousand) {
    EXPECT_EQ(formatMegabytes(999.4), "999 MB");
    EXPECT_EQ(formatMegabytes(999.9), "1000 MB");
    EXPECT_EQ(formatMegabytes(1000.0), "1.0 GB");
    EXPECT_EQ(DiskIOBurst{.writtenMB = 2048.0}.displayWritten(), "2.0 GB");
}

TEST_F(DiskIOReaderTest, TheTailIsTheLastBlockAndItsLast500Lines) {
    // Exactly one block: the first line counts as whole.
    const QByteArray first = summary("2026-01-15T10:00:00Z", "first") + '\n';
    const QByteArray filler = R"({"type":"noise","pad":")" +
                              QByteArray(DiskIOReader::kTailBytes - first.size() - 26, 'x') +
                              "\"}\n";
    write(first + filler);
    ASSERT_EQ(QFileInfo(path()).size(), DiskIOReader::kTailBytes);
    ASSERT_TRUE(read().summary);
    EXPECT_EQ(read().summary->windows[0].window, "first");
    // One byte more at the end and the summary's opening brace falls outside the block.
    write(first + filler + "\n");
    EXPECT_FALSE(read().summary);

    // Well inside the block, a summary 500 lines from the end counts; one line further, not.
    QList<QByteArray> lines{summary("2026-01-15T10:00:00Z", "old")};
    for (int i = 0; i < 499; ++i) {
        lines << R"({"type":"x"})";
    }
    writeLines(lines);
    EXPECT_TRUE(read().summary);
    writeLines(lines << R"({"type":"x"})");
    EXPECT_FALSE(read().summary);

    // A block that starts inside a character gives nothing until the file grows: here its
    // first byte is the second of the three bytes of the euro sign.
    const QByteArray head = "\xe2\x82\xac\n";
    const QByteArray last = summary("2026-01-15T10:00:00Z", "\xe2\x82\xac") + '\n';
    const QByteArray content =
        head + QByteArray(DiskIOReader::kTailBytes - head.size() - last.size(), 'x') + '\n' + last;
    write(content);
    ASSERT_EQ(QFileInfo(path()).size(), DiskIOReader::kTailBytes + 1);
    EXPECT_FALSE(read().summary);
    // The daemon appends a line: the block moves and the log reads again.
    write(content + burst(1) + '\n');
    ASSERT_TRUE(read().summary);
    EXPECT_EQ(read().summary->windows[0].window, QString::fromUtf8("\xe2\x82\xac"));
    EXPECT_EQ(read().bursts.size(), 1);
}
