#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

namespace zelvar {

// A file of JSON lines that the daemon appends to. Each line goes out whole in one write, so a
// reader sees whole lines or a fragment at the very end, never an interleaving. Past its cap
// the file is rewritten atomically (a temporary file renamed over it) with only its newest
// half, cut at a line boundary, so it never grows without bound. A write that fails drops the
// line and tells `onFailure`; the caller decides how often to say so.
class JsonlFile {
public:
    using FailureHandler = std::function<void(const QString& path, const QString& error)>;

    JsonlFile(QString path, qint64 capBytes, FailureHandler onFailure = {});

    // Appends `line` (without its newline). False when it was dropped.
    bool append(const QByteArray& line);
    const QString& path() const { return m_path; }
    qint64 capBytes() const { return m_capBytes; }

    // Keeps the newest `keepBytes` of the file, starting after the first newline within them.
    // False, with the reason, when it couldn't.
    static bool keepNewest(const QString& path, qint64 keepBytes, QString* error);

private:
    void fail(const QString& error);

    QString m_path;
    qint64 m_capBytes;
    FailureHandler m_onFailure;
};

}  // namespace zelvar
