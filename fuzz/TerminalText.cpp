// A name from the machine (process name, path, network name) on its way to a report's table.
#include "common/TerminalText.h"

#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString name = QString::fromUtf8(zelvar::fuzz::view(data, size));
    const QString shown = zelvar::TerminalText::escaped(name);
    for (const QChar c : shown) {
        zelvar::fuzz::check(c.unicode() >= 0x20 && c.unicode() != 0x7f, "no control character");
    }
    zelvar::fuzz::check(zelvar::TerminalText::width(shown) >= 0, "a width is never negative");
    zelvar::TerminalText::leftJustified(shown, 40);
    return 0;
}
