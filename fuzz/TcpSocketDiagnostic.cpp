// One reply of the kernel's socket diagnostics (`struct inet_diag_msg` and its attributes), as
// the netlink source decodes each message of a dump.
#include "FuzzInput.h"
#include "platform/linux/TcpSocketDiagnostics.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // A copy of exactly `size` bytes, so that a read past the message is a reported overflow.
    const QByteArray payload = zelvar::fuzz::bytes(data, size);
    const auto socket = zelvar::TcpSocketDiagnostics::decode(payload.constData(), size);
    zelvar::fuzz::check(!socket || size > 0, "nothing decodes from no bytes");
    return 0;
}
