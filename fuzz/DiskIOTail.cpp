// A block of the disk I/O log's tail, as the reader takes it from the file.
#include "FuzzInput.h"
#include "disk/DiskIOReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const zelvar::DiskIORead read = zelvar::DiskIOReader::parseTail(zelvar::fuzz::view(data, size));
    zelvar::fuzz::check(read.bursts.size() <= zelvar::DiskIOReader::kDefaultBurstLimit,
                        "at most the burst limit");
    return 0;
}
