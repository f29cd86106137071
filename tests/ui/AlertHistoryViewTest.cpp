#include <QToolButton>

#include "UiFixture.h"
#include "ui/AlertHistoryView.h"
#include "ui/AlertRow.h"
#include "ui/widgets/RowList.h"
#include "ui/widgets/SearchBar.h"

namespace {

using AlertHistoryViewTest = UiFixture;

AlertRecord record(const QString& name, double memoryMB, double limitMB, bool killed = false) {
    AlertRecord alert;
    alert.processName = name;
    alert.pid = 4242;
    alert.memoryMB = memoryMB;
    alert.limitMB = limitMB;
    alert.wasAutoKilled = killed;
    return alert;
}

}  // namespace

TEST(AlertHistoryValues, FilterKeepsOrderAndRowsCutWholeNumbers) {
    const QList<AlertRecord> history{record("Chrome Helper", 1, 0), record("node", 1, 0),
                                     record("chrome", 1, 0)};
    const QList<AlertRecord> chrome = filteredAlerts(history, "CHROME");
    ASSERT_EQ(chrome.size(), 2);
    EXPECT_EQ(chrome.at(0), history.at(0));
    EXPECT_EQ(chrome.at(1), history.at(2));
    EXPECT_EQ(filteredAlerts(history, ""), history);

    const QStringList shown = AlertRow(record("hog", 2048.9, 2000, true)).texts();
    for (const char* text : {"hog", "Auto-Killed", "PID: 4242", "2048 MB", "/ 2000 MB", "+48 MB",
                             "Memory Usage", "Exceeded by"}) {
        EXPECT_TRUE(shown.contains(QString(text)))
            << text << " in " << shown.join(" | ").toStdString();
    }
    EXPECT_FALSE(AlertRow(record("calm", 150, 100)).texts().contains("Auto-Killed"));
}

// Alerts that arrive while the tab is hidden show when it does. The trash button clears the
// whole history even when the filter hides every record, and the filter's text stays for the
// empty state that follows.
TEST_F(AlertHistoryViewTest, ClearingUnderAFilterEmptiesTheWholeHistory) {
    AlertHistoryView view(processMonitor());
    EXPECT_TRUE(view.isShowingEmptyState());
    EXPECT_TRUE(view.clearButton()->isHidden());

    config().addLimit("hog", 100, false);
    config().addLimit("leak", 200, false);
    sample({{"hog", 300}, {"leak", 250}, {"calm", 50}});
    ASSERT_EQ(processMonitor().alertHistory().size(), 2);
    EXPECT_EQ(view.rows()->rowCount(), 0);
    view.show();
    EXPECT_EQ(view.rows()->rowCount(), 2);
    EXPECT_FALSE(view.isShowingEmptyState());

    view.searchBar()->setText("LEAK");
    ASSERT_EQ(view.rows()->rowCount(), 1);
    EXPECT_EQ(static_cast<AlertRow*>(view.rows()->row(0))->alert().processName, "leak");
    view.searchBar()->setText("nothing matches");
    EXPECT_EQ(view.rows()->rowCount(), 0);
    EXPECT_FALSE(view.isShowingEmptyState());
    ASSERT_FALSE(view.clearButton()->isHidden());

    view.clearButton()->click();
    EXPECT_TRUE(processMonitor().alertHistory().isEmpty());
    EXPECT_EQ(view.searchBar()->text(), "nothing matches");
    EXPECT_TRUE(view.isShowingEmptyState());
    EXPECT_TRUE(view.clearButton()->isHidden());
}
