#pragma once

#include <QStringList>
#include <mutex>

#include "common/Log.h"

namespace zelvar::test {

// Collects the log lines written while it exists.
class LogCapture {
public:
    LogCapture()
        : m_redirect([this](const QString& line) {
              std::lock_guard lock(m_mutex);
              m_lines.append(line);
          }) {}

    QStringList lines() const {
        std::lock_guard lock(m_mutex);
        return m_lines;
    }
    bool contains(const QString& text) const {
        const QStringList all = lines();
        return std::any_of(all.begin(), all.end(),
                           [&](const QString& l) { return l.contains(text); });
    }

private:
    mutable std::mutex m_mutex;
    QStringList m_lines;
    LogRedirect m_redirect;
};

}  // namespace zelvar::test
