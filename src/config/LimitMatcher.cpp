#include "config/LimitMatcher.h"

#include "common/LocalizedText.h"

namespace zelvar {

LimitMatcher::LimitMatcher() = default;

LimitMatcher::~LimitMatcher() = default;

void LimitMatcher::setRules(const QList<ProcessLimit>& limits, const std::set<QString>& whitelist) {
    QStringList names;
    names.reserve(limits.size());
    for (const ProcessLimit& limit : limits) {
        names.append(limit.processName);
    }
    if (names == m_limitNames && whitelist == m_whitelist) {
        return;
    }
    m_limitNames = std::move(names);
    m_whitelist = whitelist;
    m_byName.clear();

    m_whitelistPatterns.clear();
    for (const QString& entry : m_whitelist) {
        // A blank entry exempts nothing; the entry as stored, blanks included, is looked for.
        if (!entry.trimmed().isEmpty()) {
            m_whitelistPatterns.push_back(std::make_unique<LocalizedPattern>(entry));
        }
    }
    m_limitWhitelisted.assign(m_limitNames.size(), false);
    m_limitPatterns.clear();
    for (qsizetype i = 0; i < m_limitNames.size(); ++i) {
        const QString& name = m_limitNames[i];
        m_limitWhitelisted[i] = whitelistCoversFolded(localizedFold(name));
        const bool canMatch = !name.trimmed().isEmpty() && !m_limitWhitelisted[i];
        m_limitPatterns.push_back(canMatch ? std::make_unique<LocalizedPattern>(name) : nullptr);
    }
}

bool LimitMatcher::whitelistCoversFolded(const QString& foldedName) {
    for (const auto& pattern : m_whitelistPatterns) {
        if (pattern->foundInFolded(foldedName)) {
            return true;
        }
    }
    return false;
}

const LimitMatcher::Match& LimitMatcher::match(const QString& processName) {
    auto it = m_byName.find(processName);
    if (it == m_byName.end()) {
        Entry entry;
        const QString folded = localizedFold(processName);
        for (qsizetype i = 0; i < static_cast<qsizetype>(m_limitPatterns.size()); ++i) {
            if (m_limitPatterns[i] && m_limitPatterns[i]->foundInFolded(folded)) {
                entry.match.limitIndices.append(i);
            }
        }
        // Only a name that some limit covers needs the whitelist's verdict.
        entry.match.whitelisted =
            !entry.match.limitIndices.isEmpty() && whitelistCoversFolded(folded);
        it = m_byName.insert(processName, std::move(entry));
    }
    if (it->lastCycle != m_cycle) {
        it->lastCycle = m_cycle;
        ++m_namesThisCycle;
    }
    return it->match;
}

void LimitMatcher::endCycle() {
    if (m_byName.size() > 2 * m_namesThisCycle + 256) {
        m_byName.removeIf([this](const auto& item) { return item.value().lastCycle != m_cycle; });
    }
    ++m_cycle;
    m_namesThisCycle = 0;
}

}  // namespace zelvar
