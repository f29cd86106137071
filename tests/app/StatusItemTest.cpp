#include <gtest/gtest.h>

#include <QMenu>

#include "support/EventLoop.h"
#include "ui/StatusItem.h"

using namespace zelvar;
using namespace zelvar::test;

TEST(StatusItemTest, MenuOffersTheDashboardAndQuitAndExistsOnlyWhileOpen) {
    StatusItem item;
    int open = 0;
    int quit = 0;
    QObject::connect(&item, &StatusItem::openDashboardRequested, [&] { ++open; });
    QObject::connect(&item, &StatusItem::quitRequested, [&] { ++quit; });
    std::unique_ptr<QMenu> menu(item.buildMenu());
    QStringList described;
    for (const QAction* action : menu->actions()) {
        described << (action->isSeparator() ? QStringLiteral("---")
                                            : action->text() + "|" + action->shortcut().toString());
    }
    EXPECT_EQ(described, (QStringList{"Open Dashboard|", "---", "Quit Zelvar+|Ctrl+Q"}));
    menu->actions()[0]->trigger();
    EXPECT_EQ(std::pair(open, quit), std::pair(1, 0));
    menu->actions()[2]->trigger();
    EXPECT_EQ(std::pair(open, quit), std::pair(1, 1));

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
