#pragma once

#include <QByteArrayView>
#include <QHash>

#include "platform/ProcessTable.h"

namespace zelvar {

// Resident sizes in KiB by pid, from `ps -axo pid=,rss=`: one "pid rss" pair a line. A line
// needs two blank-separated fields, a 32-bit pid and a 64-bit size; any other line is skipped.
QHash<Pid, qint64> parsePsFallbackMap(QByteArrayView text);

}  // namespace zelvar
