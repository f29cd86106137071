// `launchctl list` output, decoded as the origin detector decodes it.
#include "FuzzInput.h"
#include "process/ServiceJobParsers.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (const auto text = zelvar::fuzz::utf8Text(data, size)) {
        const auto jobs = zelvar::parseLaunchctlList(*text);
        for (auto it = jobs.begin(); it != jobs.end(); ++it) {
            zelvar::fuzz::check(it.key() >= 1, "pids are positive");
        }
    }
    return 0;
}
