#pragma once

#include <QString>
#include <functional>

namespace zelvar {

// An option of a report: how --help lists it and what the command line accepts for it. Most
// take a number; some take a text that `check` accepts, or no value at all. The options every
// report has (--json, --verbose) are not listed here.
struct ReportOption {
    enum class Type { Number, Text, Flag };

    QString name;       // without the leading dashes
    QString valueName;  // as --help shows the value: N, SECONDS
    QString description;
    double minimum = 0.0;
    double maximum = 0.0;
    bool whole = false;
    // The value when the option is absent; it may lie outside the range to mean "not set".
    double defaultValue = 0.0;
    QString defaultText;
    // A line for standard error when a value is accepted but not used as given; empty when it
    // is used as given. Unset for options that take every value in their range as it is.
    std::function<QString(double)> adjustment = nullptr;
    Type type = Type::Number;
    // A text option's refusal of a value ("not a date"), empty for a value it accepts; and what
    // it accepts, for --help and that refusal.
    std::function<QString(const QString&)> check = nullptr;
    QString acceptsText;

    // What the option accepts, for --help and for the message that rejects a value.
    QString accepts() const {
        if (type != Type::Number) {
            return acceptsText;
        }
        return QStringLiteral("a %1 from %2 to %3")
            .arg(whole ? QStringLiteral("whole number") : QStringLiteral("number of seconds"))
            .arg(minimum)
            .arg(maximum);
    }
};

}  // namespace zelvar
