// `ss -tinpH` output, decoded as the bandwidth monitor decodes it.
#include "network/SocketStatisticsParser.h"

#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (const auto text = zelvar::fuzz::utf8Text(data, size)) {
        const zelvar::ProcessCounterMap counters = zelvar::SocketStatisticsParser::parse(*text);
        for (auto it = counters.begin(); it != counters.end(); ++it) {
            zelvar::fuzz::check(it.key().contains(QLatin1Char('.')), "keys are name.pid");
        }
    }
    return 0;
}
