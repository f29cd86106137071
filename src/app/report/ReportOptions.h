#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>

namespace zelvar {

// The arguments after `report <what>`: flags such as --json and options with a value such as
// --cycles 3 (or --cycles=3).
class ReportOptions {
public:
    // `valueOptions` names the options that take a value; anything else starting with "--" is
    // a flag. No value and an error message for an option without its value, or a stray word.
    static std::optional<ReportOptions> parse(const QStringList& arguments,
                                              const QSet<QString>& valueOptions, QString* error);

    bool flag(const QString& name) const { return m_flags.contains(name); }
    // The option's value as a number within [minimum, maximum]; `fallback` when absent; no
    // value when present but not such a number.
    std::optional<double> number(const QString& name, double fallback, double minimum,
                                 double maximum) const;
    const QSet<QString>& flags() const { return m_flags; }

private:
    QSet<QString> m_flags;
    QHash<QString, QString> m_values;
};

}  // namespace zelvar
