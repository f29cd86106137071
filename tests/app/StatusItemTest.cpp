#include <QMenu>

#include "support/EventLoop.h"
#include "support/Testing.h"
#include "ui/StatusItem.h"

TEST(StatusItemTest, MenuOffersTheDashboardAndQuitAndExistsOnlyWhileOpen) {
    StatusItem item;
    QStringList emitted;
    QObject::connect(&item, &StatusItem::openDashboardRequested, [&] { emitted << "open"; });
    QObject::connect(&item, &StatusItem::quitRequested, [&] { emitted << "quit"; });
    std::unique_ptr<QMenu> menu(item.buildMenu());
    QStringList described;
    for (QAction* action : menu->actions()) {
        described << (action->isSeparator() ? QStringLiteral("---")
                                            : action->text() + "|" + action->shortcut().toString());
        action->trigger();
    }
    EXPECT_EQ(described, (QStringList{"Open Dashboard|", "---", "Quit Zelvar+|Ctrl+Q"}));
    EXPECT_EQ(emitted, (QStringList{"open", "quit"}));

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
