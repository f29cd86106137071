// The configuration file's bytes, as the configuration manager reads them.
#include "FuzzInput.h"
#include "config/ConfigCoding.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const zelvar::ConfigDecodeResult decoded =
        zelvar::ConfigCoding::decode(zelvar::fuzz::bytes(data, size));
    if (decoded.config) {
        // What was read is written back at shutdown, and must read back the same.
        const auto again =
            zelvar::ConfigCoding::decode(zelvar::ConfigCoding::encode(*decoded.config));
        zelvar::fuzz::check(again.config == decoded.config, "a decoded file round-trips");
    }
    return 0;
}
