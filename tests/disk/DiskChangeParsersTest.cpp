#include <gtest/gtest.h>

#include "disk/DiskChange.h"
#include "disk/DiskChangeParsers.h"
#include "support/Fixture.h"

using namespace zelvar;
using namespace zelvar::DiskChangeParsers;
using zelvar::test::readFixture;

namespace {

const QString kHeader = "COMMAND     PID   USER   FD      TYPE DEVICE SIZE/OFF     NODE NAME\n";

QString lsofLine(const QString& command, const QString& fd = "1w", const QString& type = "REG",
                 const QString& name = "/tmp/a") {
    return QStringLiteral("%1 4242 ada %2 %3 254,0 0 1234 %4\n").arg(command, fd, type, name);
}

}  // namespace

TEST(DiskChangeParsers, DuSizeIsTheFirstTabPieceInKibibytes) {
    const QStringList sized = {"4\t/home/ada/Downloads\n", "+4\t/x\n", "-3\t/x\n", " 12 \t/x\n",
                               "\t\t7\t/x"};
    const QList<qint64> bytes = {4096, 4096, -3072, 12288, 7168};
    for (qsizetype i = 0; i < sized.size(); ++i) {
        EXPECT_EQ(duSizeBytes(sized[i]), bytes[i]) << i;
    }
    // A blank before the first tab is the first piece; without a tab the one piece still ends
    // in a newline, which trimming keeps.
    for (const char* output :
         {" \t12\t/x\n", "12\n", "", "\t\t", "1.5\t/x\n", "99999999999999999999\t/x",
          "du: cannot read directory '/x': Permission denied\n"}) {
        EXPECT_FALSE(duSizeBytes(output)) << output;
    }
}

TEST(DiskChangeParsers, LsofWritersFromRealOutput) {
    // Linux lsof with its thread columns: blank for processes, so the positions hold; the
    // shell and lsof itself are left out, pipes and the read-write database don't count.
    EXPECT_EQ(lsofWriters(readFixture("disk/lsof-nP-debian12.txt")),
              (QStringList{"sleep", "python3"}));
    // macOS: no header in the capture, so one is put on top.
    EXPECT_EQ(
        lsofWriters(kHeader + readFixture("disk/d-lsof-cnode-macos-unix-systm-psxshm-npolicy.txt")),
        QStringList{"node"});
    EXPECT_TRUE(lsofWriters(readFixture("disk/d-lsof-p-spotify-macos.txt")).isEmpty());
}

TEST(DiskChangeParsers, LsofWriterRules) {
    // The first line is always taken for the header.
    EXPECT_TRUE(lsofWriters(lsofLine("dd")).isEmpty());
    EXPECT_EQ(lsofWriters(kHeader + lsofLine("dd", "12w")), QStringList{"dd"});
    EXPECT_EQ(lsofWriters(kHeader + "dd\t1\tada\t1w\tREG\t254,0\t0\t5\t/a b\r\n"),
              QStringList{"dd"});
    for (const QString& line :
         {lsofLine("dd", "1u"), lsofLine("dd", "1w", "DIR"), lsofLine("dd", "1w", "reg"),
          lsofLine("dd", "1w", "REG", "a"), QStringLiteral("dd 1 ada 1w REG 254,0 0 /tmp/a\n"),
          lsofLine("Google Chrome")}) {
        EXPECT_TRUE(lsofWriters(kHeader + line).isEmpty()) << line.toStdString();
    }
    // The scan's tools and the shells are left out by their exact names.
    QString excluded = kHeader;
    for (const QString& name : excludedWriterNames() + QStringList{"Bash"}) {
        excluded += lsofLine(name);
    }
    EXPECT_EQ(lsofWriters(excluded), QStringList{"Bash"});
    // Nine distinct writers, each with several files: the first eight, each once.
    QString many = kHeader;
    for (int i = 1; i <= 27; ++i) {
        many += lsofLine(QStringLiteral("w%1").arg((i + 2) / 3));
    }
    EXPECT_EQ(lsofWriters(many), (QStringList{"w1", "w2", "w3", "w4", "w5", "w6", "w7", "w8"}));
}

TEST(DiskChange, DerivedTextsAndTheSummaryBranches) {
    DiskChange change{.mountPoint = "/"};
    const auto derived = [&](qint64 bytes) {  // megabytes, allocation, display | summary
        change.changeBytes = bytes;
        return QStringLiteral("%1 %2 %3 | %4")
            .arg(change.changeMB())
            .arg(change.isAllocation())
            .arg(change.displayChange(), change.summary());
    };
    EXPECT_EQ(derived(1048575), "0 1 +0 MB | +0 MB on /");
    EXPECT_EQ(derived(0), "0 0 -0 MB | -0 MB on /");
    EXPECT_EQ(derived(-(qint64(5) << 20) - 7), "5 0 -5 MB | -5 MB on /");
    change.changeBytes = qint64(300) << 20;
    change.activeWriters = {"dd", "rsync"};
    EXPECT_EQ(change.summary(), "+300 MB on /, active writers: dd, rsync");
    change.recentFiles = {DiskAttribution::make("/home/ada/big.iso", 31457280, "/home/ada")};
    EXPECT_EQ(change.summary(), "+300 MB on /, recent file: ~/big.iso 31.5 MB");
    change.directoryDeltas = {DiskAttribution::make("/tmp", 1500000000, "/home/ada")};
    EXPECT_EQ(change.summary(), "+300 MB on /, largest directory change: /tmp 1.5 GB");
}

TEST(DiskChange, FileStyleByteCounts) {
    const std::vector<std::pair<qint64, QString>> cases = {
        {0, "Zero KB"},          {1, "1 byte"},        {999, "999 bytes"},
        {1000, "1 KB"},          {1499, "1 KB"},       {999499, "999 KB"},
        {999500, "1 MB"},        {20971520, "21 MB"},  {31457280, "31.5 MB"},
        {1234567890, "1.23 GB"}, {2000000000, "2 GB"}, {5000000000000, "5 TB"}};
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(DiskAttribution::formatFileByteCount(bytes), text) << bytes;
    }
    const DiskAttribution a = DiskAttribution::make("/home/ada/x/home/ada", 20971520, "/home/ada");
    EXPECT_EQ(a.label + ' ' + a.detail, "~/x~ /home/ada/x/home/ada");
}
