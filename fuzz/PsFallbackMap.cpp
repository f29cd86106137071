// `ps -axo pid=,rss=` output, as the process info provider reads it.
#include "process/PsFallbackMap.h"

#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zelvar::parsePsFallbackMap(zelvar::fuzz::view(data, size));
    return 0;
}
