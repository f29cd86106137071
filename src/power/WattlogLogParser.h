#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringView>
#include <optional>

#include "power/WattlogEvent.h"

namespace zelvar {

// The power log as `pmset -g log` prints it: a line is a 25-character stamp such as
// "2024-01-15 10:30:00 +1000" and a body, of which a few shapes are understood (sleep, wake,
// dark wake, display on and off, powerd's start, battery health, assertion summaries with the
// charge); every other line is left out without complaint. Pure functions; cheap prefix tests
// come before any pattern, since a log has hundreds of thousands of lines.
class WattlogLogParser {
public:
    WattlogLogParser() = delete;

    static constexpr int kStampLength = 25;
    // How far back a wake still opens the lid closed before it.
    static constexpr qint64 kLidOpenWindowSeconds = 86400;

    struct BatteryState {
        WattlogPowerSource source;
        int charge = 0;
    };

    // The event of one line, or nothing. `rawLine` is `line` as given.
    static std::optional<WattlogEvent> parse(QStringView line);
    // "yyyy-MM-dd HH:mm:ss Z" with the zone's offset taken from the text; nothing otherwise.
    static std::optional<QDateTime> pmsetDate(QStringView text);
    // The digits after the first "Charge:" followed by digits, unbounded (150 stays 150).
    static std::optional<int> extractCharge(QStringView text);
    static std::optional<WattlogPowerSource> extractSource(QStringView text);
    // The reason after "due to" up to a slash, else the word after "from" up to a colon, else
    // "Wake".
    static QString extractWakeReason(QStringView text);
    // The source and charge of an assertion summary's "Using AC(Charge: 80)"; nothing for a
    // charge above 100.
    static std::optional<BatteryState> extractSummaryBatteryState(QStringView text);

    // The AC connected or disconnected event that a Battery event with a new power source
    // stands for: its time, charge, source and line, "Switched to AC at 80%".
    static WattlogEvent powerSourceChange(const WattlogEvent& level);

    // The events of the lines in order, with two inferences: a wake within a day of a lid
    // close (clamshell sleep) is preceded by a lid-open event, and a change of the power source
    // between two summary lines by an AC connected or disconnected event.
    static QList<WattlogEvent> parsePmsetLines(const QList<QString>& lines);
    // The lines of a whole log, split on line feeds alone.
    static QList<WattlogEvent> parsePmsetText(const QString& text);
};

}  // namespace zelvar
