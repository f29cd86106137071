#pragma once

#include <QStringList>

#include "common/Log.h"
#include "support/Guarded.h"

namespace zelvar::test {

// Collects the log lines written while it exists.
class LogCapture {
public:
    QStringList lines() const { return *m_lines.lock(); }
    bool contains(const QString& text) const { return !lines().filter(text).isEmpty(); }

private:
    Guarded<QStringList> m_lines;
    LogRedirect m_redirect{[this](const QString& line) { *m_lines.lock() << line; }};
};

}  // namespace zelvar::test
