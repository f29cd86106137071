#include "platform/portable/PactlOutput.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <algorithm>

namespace zelvar {
namespace {

const QStringList kStates{QStringLiteral("RUNNING"), QStringLiteral("IDLE"),
                          QStringLiteral("SUSPENDED"), QStringLiteral("INVALID")};

// pactl quotes property values C-style; only \" and \\ occur in names.
QString unquoted(QString value) {
    value.replace(QStringLiteral("\\\""), QStringLiteral("\""));
    value.replace(QStringLiteral("\\\\"), QStringLiteral("\\"));
    return value;
}

void setProperty(PactlStream& stream, const QString& key, const QString& value) {
    if (key == QLatin1String("application.name")) {
        stream.applicationName = value;
    } else if (key == QLatin1String("application.process.binary")) {
        stream.binary = value;
    } else if (key == QLatin1String("application.process.id")) {
        stream.pid = value.toLongLong();
    }
}

QList<PactlStream> parseJsonStreams(const QJsonArray& array) {
    QList<PactlStream> streams;
    for (const QJsonValue& value : array) {
        const QJsonObject object = value.toObject();
        PactlStream stream;
        stream.index = object.value(QStringLiteral("index")).toInt(-1);
        stream.corked = object.value(QStringLiteral("corked")).toBool(false);
        const QJsonObject properties = object.value(QStringLiteral("properties")).toObject();
        for (auto it = properties.begin(); it != properties.end(); ++it) {
            setProperty(stream, it.key(), it.value().toString());
        }
        streams.append(stream);
    }
    return streams;
}

}  // namespace

bool PactlOutput::isJson(const QByteArray& output) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(output, &error);
    return error.error == QJsonParseError::NoError && !document.isNull();
}

QList<PactlStream> PactlOutput::parseStreams(const QByteArray& output) {
    const QJsonDocument document = QJsonDocument::fromJson(output);
    if (document.isArray()) {
        return parseJsonStreams(document.array());
    }
    static const QRegularExpression heading(QStringLiteral("^\\S.*#(\\d+)\\s*$"));
    static const QRegularExpression property(
        QStringLiteral("^\\s+([A-Za-z0-9_.-]+) = \"(.*)\"\\s*$"));
    QList<PactlStream> streams;
    for (const QString& line : QString::fromUtf8(output).split(u'\n')) {
        if (const QRegularExpressionMatch match = heading.match(line); match.hasMatch()) {
            PactlStream stream;
            stream.index = match.captured(1).toInt();
            streams.append(stream);
        } else if (streams.isEmpty()) {
            continue;
        } else if (const QRegularExpressionMatch match = property.match(line); match.hasMatch()) {
            setProperty(streams.last(), match.captured(1), unquoted(match.captured(2)));
        } else if (line.trimmed() == QLatin1String("Corked: yes")) {
            streams.last().corked = true;
        }
    }
    return streams;
}

std::optional<PactlDefaults> PactlOutput::parseInfo(const QByteArray& output) {
    PactlDefaults defaults;
    const QJsonDocument document = QJsonDocument::fromJson(output);
    if (document.isObject()) {
        defaults.sink = document.object().value(QStringLiteral("default_sink_name")).toString();
        defaults.source = document.object().value(QStringLiteral("default_source_name")).toString();
    } else {
        for (const QString& line : QString::fromUtf8(output).split(u'\n')) {
            if (line.startsWith(QLatin1String("Default Sink: "))) {
                defaults.sink = line.mid(14).trimmed();
            } else if (line.startsWith(QLatin1String("Default Source: "))) {
                defaults.source = line.mid(16).trimmed();
            }
        }
    }
    if (defaults.sink.isEmpty() && defaults.source.isEmpty()) {
        return std::nullopt;
    }
    return defaults;
}

QHash<QString, QString> PactlOutput::parseShortStates(const QByteArray& output) {
    QHash<QString, QString> states;
    for (const QString& line : QString::fromUtf8(output).split(u'\n')) {
        const QStringList columns = line.trimmed().split(u'\t');
        if (columns.size() >= 5 && kStates.contains(columns.last().trimmed())) {
            states.insert(columns.at(1), columns.last().trimmed());
        }
    }
    return states;
}

QString PactlOutput::subscribedFacility(const QString& line) {
    static const QRegularExpression event(QStringLiteral("^Event '[^']*' on ([a-z-]+)"));
    const QRegularExpressionMatch match = event.match(line);
    return match.hasMatch() ? match.captured(1) : QString();
}

}  // namespace zelvar
