#include "daemon/JsonlFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace zelvar {

JsonlFile::JsonlFile(QString path, qint64 capBytes, FailureHandler onFailure)
    : m_path(std::move(path)), m_capBytes(capBytes), m_onFailure(std::move(onFailure)) {}

void JsonlFile::fail(const QString& error) {
    if (m_onFailure) {
        m_onFailure(m_path, error);
    }
}

bool JsonlFile::append(const QByteArray& line) {
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    QFile file(m_path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) {
        fail(file.errorString());
        return false;
    }
    const QByteArray whole = line + '\n';
    // An append-mode write of a few kilobytes lands in one piece; a short write (a full disk)
    // would leave a fragment, which is cut back off so that the next line starts clean.
    const qint64 before = file.size();
    if (file.write(whole) != whole.size() || !file.flush()) {
        const QString error = file.errorString();
        file.resize(before);
        fail(error);
        return false;
    }
    const qint64 size = file.size();
    file.close();
    if (size > m_capBytes) {
        QString error;
        if (!keepNewest(m_path, m_capBytes / 2, &error)) {
            fail(error);
        }
    }
    return true;
}

bool JsonlFile::keepNewest(const QString& path, qint64 keepBytes, QString* error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return false;
    }
    const qint64 size = file.size();
    if (size <= keepBytes) {
        return true;
    }
    file.seek(size - keepBytes);
    QByteArray tail = file.readAll();
    file.close();
    // The block almost always starts inside a line: that fragment goes.
    const qsizetype newline = tail.indexOf('\n');
    tail = newline < 0 ? QByteArray() : tail.mid(newline + 1);
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(tail) != tail.size() || !out.commit()) {
        *error = out.errorString();
        return false;
    }
    return true;
}

}  // namespace zelvar
