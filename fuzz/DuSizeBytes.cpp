// `du -sk <dir>` output, decoded as the disk change tracker decodes a tool's output.
#include "FuzzInput.h"
#include "disk/DiskChangeParsers.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (const auto text = zelvar::fuzz::utf8Text(data, size, QStringDecoder::Flag::Stateless)) {
        zelvar::DiskChangeParsers::duSizeBytes(*text);
    }
    return 0;
}
