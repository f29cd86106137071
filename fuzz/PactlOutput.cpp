// The pulse server's listings as pactl prints them, text or JSON, and the lines of its event
// subscription: every parser takes any bytes, and what it returns stays within them.
#include "platform/portable/PactlOutput.h"

#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray output = zelvar::fuzz::bytes(data, size);
    for (const zelvar::PactlStream& stream : zelvar::PactlOutput::parseStreams(output)) {
        zelvar::fuzz::check(stream.displayName().size() <= output.size() + 1,
                            "a stream's name comes from the output");
    }
    const auto states = zelvar::PactlOutput::parseShortStates(output);
    for (auto it = states.begin(); it != states.end(); ++it) {
        zelvar::fuzz::check(it.value() == "RUNNING" || it.value() == "IDLE" ||
                                it.value() == "SUSPENDED" || it.value() == "INVALID",
                            "a state is one of the server's words");
    }
    zelvar::PactlOutput::parseInfo(output);
    zelvar::PactlOutput::subscribedFacility(QString::fromUtf8(output));
    return 0;
}
