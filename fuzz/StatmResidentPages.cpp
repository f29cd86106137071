// A /proc/<pid>/statm line.
#include "FuzzInput.h"
#include "platform/linux/ProcStat.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zelvar::parseStatmResidentPages(zelvar::fuzz::view(data, size));
    return 0;
}
