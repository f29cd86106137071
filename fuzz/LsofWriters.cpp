// `lsof -nP` output, decoded as the disk change tracker decodes a tool's output.
#include "FuzzInput.h"
#include "disk/DiskChangeParsers.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (const auto text = zelvar::fuzz::utf8Text(data, size, QStringDecoder::Flag::Stateless)) {
        QStringList writers = zelvar::DiskChangeParsers::lsofWriters(*text);
        zelvar::fuzz::check(writers.size() <= 8, "at most the cap");
        zelvar::fuzz::check(writers.removeDuplicates() == 0, "each name once");
    }
    return 0;
}
