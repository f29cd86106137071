#pragma once

#include <QHash>
#include <QString>
#include <QStringView>

#include "platform/ProcessTable.h"

namespace zelvar {

// Running launchd jobs by pid from `launchctl list`: a header line, then
// "pid<TAB>status<TAB>label" lines. The pid and label fields are trimmed of blanks; a line
// with fewer than three tab-separated fields, or whose pid is "-", not a 32-bit number or
// below 1, is skipped. A later line with the same pid wins. Fewer than two non-empty lines
// give an empty map.
QHash<Pid, QString> parseLaunchctlList(QStringView text);

// Running systemd services by main pid from `systemctl show --property=Id,MainPID` over many
// units: one block of "Key=Value" lines a unit, blocks separated by an empty line, the
// properties in any order. The label is the unit's name without its ".service" suffix, so that
// its last dot-separated part names the service rather than the unit type. A block without an
// Id, or whose MainPID is absent, not a 32-bit number or below 1 (no main process), adds
// nothing.
QHash<Pid, QString> parseSystemdShow(QStringView text);

}  // namespace zelvar
