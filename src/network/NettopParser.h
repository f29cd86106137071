#pragma once

#include <QString>

#include "network/NetworkUsage.h"

namespace zelvar {

// The per-process text report of `nettop -P -x -J bytes_in,bytes_out -l 1`: a header line,
// then one line a process with a time column, the label "name.pid" (which may contain blanks
// and dots, and may have been cut short by the tool), and the two byte counters last.
class NettopParser {
public:
    // Lines that don't follow the grammar are skipped; a later line with the same key
    // replaces an earlier one.
    static ProcessCounterMap parse(const QString& text);
};

}  // namespace zelvar
