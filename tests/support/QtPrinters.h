#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <ostream>

// Qt's strings as GoogleTest prints them in failures, also inside tuples, pairs and optionals:
// their text in quotes rather than their bytes. Qt's types live in the global namespace, so
// argument-dependent lookup finds these.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
    *out << '"' << bytes.toStdString() << '"';
}
inline void PrintTo(const QStringList& list, std::ostream* out) {
    *out << '{';
    for (qsizetype i = 0; i < list.size(); ++i) {
        *out << (i ? ", " : "") << '"' << list[i].toStdString() << '"';
    }
    *out << '}';
}
