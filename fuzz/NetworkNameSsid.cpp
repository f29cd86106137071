// `networksetup -getairportnetwork en0` output, decoded as its network name source decodes it.
#include "FuzzInput.h"
#include "network/NetworkName.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (const auto text = zelvar::fuzz::utf8Text(data, size)) {
        zelvar::NetworkName::ssid({zelvar::NetworkNameReading::Form::AirportToolOutput, *text});
    }
    return 0;
}
