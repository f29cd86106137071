#include <sys/wait.h>
#include <unistd.h>

#include <QAbstractButton>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTemporaryDir>
#include <cerrno>
#include <csignal>

#include "network/BandwidthMonitor.h"
#include "network/ByteFormatter.h"
#include "platform/ProcessSignaller.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/Testing.h"
#include "ui/NetworkUsageModel.h"
#include "ui/NetworkView.h"
#include "ui/RateGraph.h"
#include "ui/widgets/EmptyStateView.h"

namespace zelvar::test {
namespace {

// kill(2) itself, so that a suspension stops a real process.
class RealSignaller final : public ProcessSignaller {
public:
    int send(Pid pid, int signal) override { return ::kill(pid, signal) == 0 ? 0 : errno; }
    SignalResult sendToMeasured(const ProcessIdentity& process, int signal) override {
        const int error = send(process.pid, signal);
        return {error == 0 ? SignalResult::Outcome::delivered : SignalResult::Outcome::failed,
                error};
    }
};

// A bandwidth monitor on fake counters, sampled one step of the fake clock at a time.
class NetworkViewTest : public ::testing::Test {
protected:
    NetworkViewTest() {
        m_counters.set({{"eth0", 10000, 5000, true}});
        m_names.set({NetworkNameReading::Form::ConnectionName, "Home"});
        setProcesses("");
        QObject::connect(&m_monitor, &BandwidthMonitor::sampleFinished, [this] { ++m_samples; });
        // On screen, as the dashboard's tab would be: a hidden view waits until it shows.
        m_view.show();
    }
    void setProcesses(const QString& rows) {
        m_processes.set({ProcessNetworkReading::Grammar::Nettop,
                         ("time bytes_in bytes_out\n" + rows).toUtf8()});
    }
    void nextSample() {
        const int expected = m_samples + 1;
        if (m_samples == 0 && expected == 1) {
            m_monitor.start();
        } else {
            m_clock.advance(2.0);
        }
        ASSERT_TRUE(processEventsUntil([&] { return m_samples == expected; }));
    }
    // Two samples, so that the processes of `rows` have rates.
    void showProcesses(const QString& first, const QString& second) {
        setProcesses(first);
        nextSample();
        m_counters.add("eth0", 4000, 2000);
        setProcesses(second);
        nextSample();
    }

    QTemporaryDir m_dir;
    FakeClock m_clock;
    FakeInterfaceCounters m_counters;
    FakeNetworkNameSource m_names;
    FakeProcessNetworkSource m_processes;
    RealSignaller m_signals;
    BandwidthMonitor m_monitor{{m_counters, m_names, m_processes, m_signals, m_clock, m_clock,
                                m_dir.filePath("usage-by-date.json")}};
    int m_samples = 0;
    NetworkView m_view{m_monitor};
};

TEST_F(NetworkViewTest, TheDotRuleChoosesTheSymbol) {
    EXPECT_EQ(NetworkUsageModel::rowSymbol("com.example.Browser"), "app");
    EXPECT_EQ(NetworkUsageModel::rowSymbol("firefox.bin"), "app");
    EXPECT_EQ(NetworkUsageModel::rowSymbol("curl"), "terminal");
}

TEST_F(NetworkViewTest, SummaryRowsFooterAndResetRestartsTheTotalButKeepsTheGraph) {
    EXPECT_EQ(m_view.shownEmptyState()->message(), "Waiting for network samples");
    EXPECT_EQ(m_view.footerText(), "0 active network processes");
    showProcesses("t curl.7 0 0\nt org.app.9 0 0\n", "t curl.7 100 0\nt org.app.9 300 40\n");
    EXPECT_EQ(m_view.networkNameText(), "Home");
    EXPECT_EQ(m_view.totalText(), "6.00KB");
    EXPECT_EQ(m_view.downText(), ByteFormatter::rate(m_monitor.downloadBytesPerSecond()));
    EXPECT_EQ(m_view.shownEmptyState(), nullptr);
    EXPECT_EQ(m_view.footerText(), "2 active network processes");
    const QAbstractItemModel* model = m_view.table()->model();
    ASSERT_EQ(model->rowCount(), 2);
    EXPECT_EQ(model->index(0, 0).data().toString(), "org.app\npid 9");
    EXPECT_EQ(model->index(0, NetworkUsageModel::ActionColumn).data(Qt::ToolTipRole).toString(),
              "Suspend this process\nNothing here resumes it; to continue it: kill -CONT 9");

    // The selection follows its row when the order changes.
    m_view.table()->selectRow(1);  // curl.7
    m_counters.add("eth0", 10, 0);
    setProcesses("t curl.7 5000 0\nt org.app.9 300 40\n");
    nextSample();
    EXPECT_EQ(model->index(0, 0).data().toString(), "curl\npid 7");
    ASSERT_EQ(m_view.table()->selectionModel()->selectedRows().size(), 1);
    EXPECT_EQ(m_view.table()->selectionModel()->selectedRows()[0].row(), 0);

    const qsizetype samples = m_view.rateGraph()->samples().size();
    ASSERT_GE(samples, 3);
    m_view.resetButton()->click();  // no question asked
    EXPECT_EQ(m_view.totalText(), "0B");
    EXPECT_EQ(m_view.rateGraph()->samples().size(), samples);
    EXPECT_EQ(model->rowCount(), 2);
}

TEST_F(NetworkViewTest, DailyModeWithLiveProcessesButNoCacheShowsItsEmptyStateAndIsKept) {
    showProcesses("t curl.7 0 0\n", "t curl.7 100 0\n");
    QTabWidget tabs;
    auto* view = new NetworkView(m_monitor);
    tabs.addTab(new QWidget, "RAM");
    tabs.addTab(view, "Network");
    tabs.setCurrentIndex(1);
    tabs.show();
    view->modeButton(AppUsageMode::daily)->click();
    EXPECT_EQ(m_monitor.appUsageMode(), AppUsageMode::daily);
    ASSERT_NE(view->shownEmptyState(), nullptr);
    EXPECT_EQ(view->shownEmptyState()->message(), "No daily app usage recorded yet");
    EXPECT_EQ(view->footerText(), "Daily app totals are recorded by the Zelvar+ daemon");
    tabs.setCurrentIndex(0);
    tabs.setCurrentIndex(1);
    EXPECT_TRUE(view->modeButton(AppUsageMode::daily)->isChecked());
    // A view made later, as after the dashboard is opened again, starts in the same mode.
    EXPECT_TRUE(m_view.modeButton(AppUsageMode::daily)->isChecked());
    EXPECT_FALSE(m_view.modeButton(AppUsageMode::current)->isChecked());
}

TEST_F(NetworkViewTest, SuspendStopsARealChildAndSaysHowToContinueIt) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        for (;;) {
            pause();
        }
    }
    const QString name = QStringLiteral("sleeper");
    showProcesses(QStringLiteral("t %1.%2 0 0\n").arg(name).arg(child),
                  QStringLiteral("t %1.%2 500 0\n").arg(name).arg(child));
    ASSERT_EQ(m_view.model()->rowCount(), 1);
    m_view.suspendRow(0);

    // The stop lands when the child is next scheduled: wait for it rather than read /proc at
    // once, which a loaded machine may not have caught up with.
    int stopped = 0;
    ASSERT_EQ(waitpid(child, &stopped, WUNTRACED), child);
    EXPECT_TRUE(WIFSTOPPED(stopped));
    EXPECT_EQ(WSTOPSIG(stopped), SIGSTOP);
    EXPECT_EQ(
        m_view.suspendStatusText(),
        QStringLiteral("Suspended sleeper (pid %1). To continue it: kill -CONT %1").arg(child));
    EXPECT_EQ(m_view.model()->rowCount(), 0);

    kill(child, SIGCONT);
    kill(child, SIGKILL);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
}

}  // namespace
}  // namespace zelvar::test
