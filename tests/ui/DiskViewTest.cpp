#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>

#include "UiFixture.h"
#include "disk/DiskIOReader.h"
#include "ui/DiskView.h"

namespace zelvar::test {
namespace {

class DiskViewTest : public UiFixture {
protected:
    // Writes the daemon's log and publishes it by one cycle.
    void publish(const QList<QByteArray>& lines) {
        const QString path = DiskIOReader::defaultFile(m_fake.paths);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(lines.join('\n') + '\n');
        file.close();
        sample({});
    }
    static QByteArray burst(int minute) {
        return QStringLiteral(R"({"type":"diskio_burst","timestamp":"2026-01-15T10:%1:00Z",)"
                              R"("source":"process","label":"dd%1","written_mb":50})")
            .arg(minute, 2, 10, QLatin1Char('0'))
            .toUtf8();
    }
    QStringList texts(const QWidget& parent, const QString& name) const {
        QStringList result;
        for (const QLabel* label : parent.findChildren<QLabel*>(name)) {
            result << label->text();
        }
        return result;
    }

    DiskView m_view{processMonitor(), config()};
    // On screen, as the dashboard's tab would be: a hidden view waits until it shows.
    DiskViewTest() { m_view.show(); }
};

TEST_F(DiskViewTest, UsageColoursChangeOnlyAbove75AndAbove90) {
    using C = NamedColor;
    const auto colors = [](double percent) {
        const DiskView::UsageColors c = DiskView::usageColors(percent);
        return std::pair(c.text, c.bar);
    };
    EXPECT_EQ(colors(0.0), std::pair(C::Green, C::Blue));
    EXPECT_EQ(colors(75.0), std::pair(C::Green, C::Blue));
    EXPECT_EQ(colors(75.01), std::pair(C::Orange, C::Orange));
    EXPECT_EQ(colors(90.0), std::pair(C::Orange, C::Orange));
    EXPECT_EQ(colors(90.01), std::pair(C::Red, C::Red));

    // "/" at exactly 75 %: green text on a blue bar.
    m_fake.volumes.setCapacity("/", qint64(100) << 30, qint64(25) << 30);
    sample({});
    const QList<QWidget*> cards = m_view.findChildren<QWidget*>("DiskUsageCard");
    ASSERT_EQ(cards.size(), 1);
    const QLabel* percent = cards[0]->findChild<QLabel*>("percent");
    EXPECT_EQ(percent->text(), "75%");
    EXPECT_EQ(percent->palette().color(QPalette::WindowText), namedColor(C::Green));
    const QWidget* bar = cards[0]->findChild<QWidget*>("bar");
    EXPECT_EQ(bar->property("fill").value<QColor>(), namedColor(C::Blue));
    EXPECT_DOUBLE_EQ(bar->property("fraction").toDouble(), 0.75);
}

TEST_F(DiskViewTest, ASummaryWithoutTheWindowShowsTheEmptyCardButStillItsFigures) {
    publish(
        {R"({"type":"diskio_summary","timestamp":"2026-01-15T10:00:00Z",)"
         R"("rusage_interval_s":15,"rusage_overhead_pct":0.256,"windows":[)"
         R"({"window":"1m","top_writers":[{"name":"dd","written_mb":999.9,"read_mb":1000}]}]})"});
    EXPECT_EQ(m_view.selectedWindow(), "5m");
    EXPECT_EQ(m_view.windowPicker()->currentText(), "5m");
    EXPECT_EQ(m_view.overheadText(), "rusage 15s · overhead 0.26%");
    EXPECT_EQ(m_view.findChildren<QWidget*>("EmptyIOCard").size(), 1);
    EXPECT_TRUE(m_view.findChildren<QWidget*>("IOActivitySection").isEmpty());

    // Switching shows the 1m window of the summary already held: nothing is read again.
    QFile::remove(DiskIOReader::defaultFile(m_fake.paths));
    m_view.windowPicker()->setCurrentText("1m");
    EXPECT_EQ(m_view.selectedWindow(), "1m");
    EXPECT_TRUE(m_view.findChildren<QWidget*>("EmptyIOCard").isEmpty());
    // 999.9 MB stays in megabytes ("%.0f" gives 1000); 1000.0 is 1000 / 1024 GB.
    EXPECT_EQ(texts(m_view, "written"), QStringList{"1000 MB"});
    EXPECT_EQ(texts(m_view, "rank"), QStringList{"1"});
    EXPECT_EQ(m_view.findChild<QLabel*>("written")
                  ->parentWidget()
                  ->findChildren<QLabel*>()
                  .last()
                  ->text(),
              "↑  1.0 GB ↓");
}

TEST_F(DiskViewTest, GroupsRanksAndBarsWithALargestEntryOfZero) {
    publish(
        {R"({"type":"diskio_summary","timestamp":"2026-01-15T10:00:00Z","windows":[)"
         R"({"window":"5m","top_writers":[{"name":"a","written_mb":40},{"name":"b","written_mb":10}],)"
         R"("top_directories":[{"path":"/var/log","written_mb":0},{"path":"/tmp","written_mb":0}]}]})"});
    EXPECT_EQ(texts(m_view, "rank"), (QStringList{"1", "2"}));
    EXPECT_EQ(m_view.findChildren<QWidget*>("DirectoryRow").size(), 2);
    EXPECT_TRUE(m_view.findChildren<QWidget*>("FileRow").isEmpty());
    QList<double> fractions;
    for (const QWidget* bar : m_view.findChildren<QWidget*>("bar")) {
        fractions << bar->property("fraction").toDouble();
    }
    // Two writers against 40 MB, two directories against 0 MB (volume "/" first).
    EXPECT_EQ(fractions.mid(fractions.size() - 4), (QList<double>{1.0, 0.25, 0.0, 0.0}));
    EXPECT_DOUBLE_EQ(DiskView::barFraction(5.0, 0.0), 1.0);  // never a division by zero
}

TEST_F(DiskViewTest, NineBurstsShowAsEightCards) {
    QList<QByteArray> lines;
    for (int minute = 0; minute < 9; ++minute) {
        lines << burst(minute);
    }
    publish(lines);
    ASSERT_EQ(processMonitor().diskIOBursts().size(), 9);
    EXPECT_EQ(m_view.findChildren<QWidget*>("BurstCard").size(), 8);
}

TEST_F(DiskViewTest, OriginCaptionLeavesOutWhatIsMissing) {
    const ProcessOrigin terminal = ProcessOrigin::gui("Terminal");
    EXPECT_EQ(
        DiskView::originCaption(std::nullopt, ProcessOrigin::unknown(), ProcessOrigin::unknown()),
        "");
    EXPECT_EQ(DiskView::originCaption(QString(), terminal, terminal),
              terminal.icon() + " " + terminal.shortLabel());
    const ProcessOrigin shell = ProcessOrigin::cli("zsh");
    EXPECT_EQ(DiskView::originCaption(QString("launchd"), shell, terminal),
              "parent launchd · " + shell.icon() + " zsh · via " + terminal.icon() + " " +
                  terminal.shortLabel());
    EXPECT_EQ(DiskView::originCaption(std::nullopt, ProcessOrigin::unknown(), terminal),
              "via " + terminal.icon() + " " + terminal.shortLabel());
}

}  // namespace
}  // namespace zelvar::test
