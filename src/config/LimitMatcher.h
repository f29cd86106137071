#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <memory>
#include <set>
#include <vector>

#include "config/ProcessLimit.h"

namespace zelvar {

class LocalizedPattern;

// The configuration's name rules (ConfigManager::limitMatches and whitelistCovers) applied to a
// whole sample at once, at a cost that doesn't grow with limits × processes × whitelist: each
// distinct process name is tested against the rules once, and the answer is kept until the
// limit names or the whitelist change. A steady sample then costs one hash lookup per process.
// Not thread-safe; one thread uses it.
class LimitMatcher {
public:
    struct Match {
        QList<qsizetype> limitIndices;  // the limits that cover the name, in list order
        bool whitelisted = false;       // a whitelist entry exempts the name
    };

    LimitMatcher();
    ~LimitMatcher();
    LimitMatcher(const LimitMatcher&) = delete;
    LimitMatcher& operator=(const LimitMatcher&) = delete;

    // The rules of this cycle. The kept answers survive when neither the limits' names nor the
    // whitelist changed; a new limit size or auto-kill setting doesn't touch matching.
    void setRules(const QList<ProcessLimit>& limits, const std::set<QString>& whitelist);

    // Whether the whitelist exempts the limit itself, by its own name.
    bool limitWhitelisted(qsizetype limitIndex) const { return m_limitWhitelisted[limitIndex]; }

    const Match& match(const QString& processName);

    // Forgets the names not asked about since the previous call, once they outnumber the
    // names in use; so a machine that churns through unique names keeps a bounded cache.
    void endCycle();

private:
    struct Entry {
        Match match;
        quint64 lastCycle = 0;
    };

    bool whitelistCoversFolded(const QString& foldedName);

    QStringList m_limitNames;
    std::set<QString> m_whitelist;
    std::vector<bool> m_limitWhitelisted;
    // One prepared search per limit that can match anything (null for a blank or exempt one),
    // and per non-blank whitelist entry.
    std::vector<std::unique_ptr<LocalizedPattern>> m_limitPatterns;
    std::vector<std::unique_ptr<LocalizedPattern>> m_whitelistPatterns;
    QHash<QString, Entry> m_byName;
    quint64 m_cycle = 1;
    qsizetype m_namesThisCycle = 0;
};

}  // namespace zelvar
