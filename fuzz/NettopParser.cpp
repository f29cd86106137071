// `nettop -P -x -J bytes_in,bytes_out -l 1` output, decoded as the bandwidth monitor decodes it.
#include "network/NettopParser.h"

#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (const auto text = zelvar::fuzz::utf8Text(data, size)) {
        zelvar::NettopParser::parse(*text);
    }
    return 0;
}
