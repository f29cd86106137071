#include "app/report/ReportOptions.h"

namespace zelvar {

std::optional<ReportOptions> ReportOptions::parse(const QStringList& arguments,
                                                  const QSet<QString>& valueOptions,
                                                  QString* error) {
    ReportOptions options;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        if (!argument.startsWith(QLatin1String("--"))) {
            *error = QStringLiteral("unexpected argument \"%1\"").arg(argument);
            return std::nullopt;
        }
        QString name = argument.mid(2);
        std::optional<QString> value;
        if (const qsizetype equals = name.indexOf(QLatin1Char('=')); equals >= 0) {
            value = name.mid(equals + 1);
            name.truncate(equals);
        }
        if (!valueOptions.contains(name)) {
            if (value) {
                *error = QStringLiteral("--%1 takes no value").arg(name);
                return std::nullopt;
            }
            options.m_flags.insert(name);
            continue;
        }
        if (!value) {
            if (i + 1 >= arguments.size()) {
                *error = QStringLiteral("--%1 needs a value").arg(name);
                return std::nullopt;
            }
            value = arguments.at(++i);
        }
        options.m_values.insert(name, *value);
    }
    return options;
}

std::optional<double> ReportOptions::number(const QString& name, double fallback, double minimum,
                                            double maximum) const {
    const auto it = m_values.constFind(name);
    if (it == m_values.constEnd()) {
        return fallback;
    }
    bool ok = false;
    const double value = it->toDouble(&ok);
    if (!ok || value < minimum || value > maximum) {
        return std::nullopt;
    }
    return value;
}

}  // namespace zelvar
