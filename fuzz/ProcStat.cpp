// A /proc/<pid>/stat line.
#include "platform/linux/ProcStat.h"

#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zelvar::parseProcStat(zelvar::fuzz::view(data, size));
    return 0;
}
