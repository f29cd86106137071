#include <QRandomGenerator>

#include "config/ConfigManager.h"
#include "config/LimitMatcher.h"
#include "support/Testing.h"

// The matcher answers exactly what the configuration's own rules answer for each pair, on
// random names drawn from a small alphabet (so that containment is frequent), through rule
// changes that must drop the kept answers.
TEST(LimitMatcherTest, AgreesWithTheNameRulesThroughRuleChanges) {
    QRandomGenerator random(7);
    const QStringList pieces{"a", "B", "ß", "ss", "é", "E", " ", "chrome", "Helper", ""};
    const auto name = [&] {
        QString text;
        for (int n = random.bounded(4); n >= 0; --n) {
            text += pieces[random.bounded(pieces.size())];
        }
        return text;
    };
    LimitMatcher matcher;
    for (int round = 0; round < 30; ++round) {
        QList<ProcessLimit> limits;
        for (int n = random.bounded(6); n >= 0; --n) {
            limits.append(ProcessLimit::create(name(), 1, false, {}));
        }
        std::set<QString> whitelist;
        for (int n = random.bounded(3); n > 0; --n) {
            whitelist.insert(name());
        }
        matcher.setRules(limits, whitelist);
        for (int p = 0; p < 40; ++p) {
            const QString process = name();
            QList<qsizetype> expected;
            for (qsizetype l = 0; l < limits.size(); ++l) {
                if (!ConfigManager::whitelistCovers(whitelist, limits[l].processName) &&
                    ConfigManager::limitMatches(limits[l], process)) {
                    expected.append(l);
                }
            }
            const LimitMatcher::Match& match = matcher.match(process);
            ASSERT_EQ(match.limitIndices, expected) << process.toStdString();
            if (!expected.isEmpty()) {
                ASSERT_EQ(match.whitelisted, ConfigManager::whitelistCovers(whitelist, process))
                    << process.toStdString();
            }
        }
        matcher.endCycle();
    }
}
