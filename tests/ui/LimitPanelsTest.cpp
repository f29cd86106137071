#include <QLabel>
#include <QMenu>
#include <QToolButton>

#include "UiFixture.h"
#include "ui/LimitRow.h"
#include "ui/LimitsView.h"
#include "ui/WhitelistView.h"
#include "ui/widgets/RowList.h"
#include "ui/widgets/SearchBar.h"

namespace {

using LimitPanelsTest = UiFixture;

QStringList actionTexts(const QMenu& menu) {
    QStringList texts;
    for (const QAction* action : menu.actions()) {
        texts << action->text();
    }
    return texts;
}

}  // namespace

TEST_F(LimitPanelsTest, LimitRowsFollowTheConfigurationAndTheirMenusAct) {
    LimitsView view(processMonitor(), config());
    EXPECT_TRUE(view.isShowingEmptyState());

    config().addLimit("builder", 1500.7, true);
    ASSERT_EQ(view.rows()->rowCount(), 1);
    auto* row = static_cast<LimitRow*>(view.rows()->row(0));
    EXPECT_TRUE(row->texts().contains("1500 MB"));
    EXPECT_TRUE(row->texts().contains("Auto-Kill"));
    EXPECT_EQ(actionTexts(*row->menu()), QStringList({"Edit", "Disable Auto-Kill", "Remove"}));

    row->menu()->actions().at(1)->trigger();
    EXPECT_FALSE(savedConfig().limits.first().autoKillEnabled);
    row = static_cast<LimitRow*>(view.rows()->row(0));
    EXPECT_EQ(actionTexts(*row->menu()), QStringList({"Edit", "Enable Auto-Kill", "Remove"}));
    EXPECT_FALSE(row->texts().contains("Auto-Kill"));

    row->menu()->actions().at(2)->trigger();
    EXPECT_TRUE(savedConfig().limits.isEmpty());
    EXPECT_TRUE(view.isShowingEmptyState());
}

TEST_F(LimitPanelsTest, WhitelistRowsCountInstancesFilterAndRemove) {
    config().addToWhitelist("worker");
    config().addToWhitelist("absent");
    sample({{"worker", 10}, {"worker", 20}});
    WhitelistView view(processMonitor(), config());
    ASSERT_EQ(view.rows()->rowCount(), 2);

    view.searchBar()->setText("WORK");
    ASSERT_EQ(view.rows()->rowCount(), 1);
    QWidget* row = view.rows()->row(0);
    QStringList texts;
    for (const QLabel* label : row->findChildren<QLabel*>()) {
        texts << label->text();
    }
    EXPECT_EQ(texts, QStringList({"worker", "Running (2 instances)"}));

    row->findChild<QToolButton*>()->click();
    EXPECT_EQ(savedConfig().whitelistedProcesses, std::set<QString>{"absent"});
    EXPECT_EQ(view.rows()->rowCount(), 0);
    EXPECT_FALSE(view.isShowingEmptyState());  // the filter hides "absent"; the list isn't empty
}
