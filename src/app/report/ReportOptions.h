#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <utility>

namespace zelvar {

// A report's options as the command line gave them, already checked: the flags given (such as
// "json") and the value of every numeric option, its default when it was not given.
class ReportOptions {
public:
    ReportOptions() = default;
    ReportOptions(QSet<QString> flags, QHash<QString, double> numbers,
                  QHash<QString, QString> texts = {})
        : m_flags(std::move(flags)), m_numbers(std::move(numbers)), m_texts(std::move(texts)) {}

    bool flag(const QString& name) const { return m_flags.contains(name); }
    // The option's value; 0 for a name the report does not declare.
    double number(const QString& name) const { return m_numbers.value(name); }
    // A text option's value; empty when it was not given.
    QString text(const QString& name) const { return m_texts.value(name); }

private:
    QSet<QString> m_flags;
    QHash<QString, double> m_numbers;
    QHash<QString, QString> m_texts;
};

}  // namespace zelvar
