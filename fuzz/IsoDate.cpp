// A date string of the configuration file or the disk I/O log (any JSON string).
#include "common/IsoDate.h"

#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto instant = zelvar::parseIsoDate(QString::fromUtf8(zelvar::fuzz::view(data, size)));
    if (instant) {
        // A date that was read is written back in the whole-second UTC form, which reads back.
        zelvar::fuzz::check(zelvar::parseIsoDate(zelvar::formatIsoDate(*instant)) == instant,
                            "a parsed date round-trips");
    }
    return 0;
}
