#include <gtest/gtest.h>

#include <QMenu>

#include "support/EventLoop.h"
#include "ui/StatusItem.h"

using namespace zelvar;
using namespace zelvar::test;

TEST(StatusItemTest, MenuOffersTheDashboardAndQuitWithItsShortcut) {
    StatusItem item;
    int open = 0;
    int quit = 0;
    QObject::connect(&item, &StatusItem::openDashboardRequested, [&] { ++open; });
    QObject::connect(&item, &StatusItem::quitRequested, [&] { ++quit; });
    std::unique_ptr<QMenu> menu(item.buildMenu());

    const QList<QAction*> actions = menu->actions();
    ASSERT_EQ(actions.size(), 3);
    EXPECT_EQ(actions[0]->text(), "Open Dashboard");
    EXPECT_TRUE(actions[0]->shortcut().isEmpty());
    EXPECT_TRUE(actions[1]->isSeparator());
    EXPECT_EQ(actions[2]->text(), "Quit Zelvar+");
    EXPECT_EQ(actions[2]->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));

    actions[0]->trigger();
    EXPECT_EQ(open, 1);
    EXPECT_EQ(quit, 0);
    actions[2]->trigger();
    EXPECT_EQ(quit, 1);
}

TEST(StatusItemTest, EachClickBuildsAMenuThatExistsOnlyWhileOpen) {
    StatusItem item;
    item.showStatusMenu();
    QPointer<QMenu> first = item.openMenu();
    ASSERT_FALSE(first.isNull());
    EXPECT_TRUE(first->isVisible());

    item.showStatusMenu();
    QPointer<QMenu> second = item.openMenu();
    ASSERT_FALSE(second.isNull());
    EXPECT_NE(first.data(), second.data());
    EXPECT_TRUE(processEventsUntil([&] { return first.isNull(); }));

    second->hide();
    EXPECT_TRUE(processEventsUntil([&] { return second.isNull(); }));
    EXPECT_EQ(item.openMenu(), nullptr);
}
