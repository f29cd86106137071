// A process's /proc/<pid>/comm and cmdline, as the process table reads them: the command line
// only when the kernel may have cut the name.
#include <fuzzer/FuzzedDataProvider.h>

#include "FuzzInput.h"
#include "platform/linux/ProcStat.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    QByteArray comm = QByteArray::fromStdString(input.ConsumeRandomLengthString(64));
    if (comm.endsWith('\n')) {
        comm.chop(1);
    }
    if (comm.isEmpty()) {
        return 0;
    }
    const QByteArray cmdline =
        comm.size() >= 15
            ? QByteArray::fromStdString(input.ConsumeRemainingBytesAsString()).left(4096)
            : QByteArray();
    const QByteArray name = zelvar::fullProcessName(comm, cmdline);
    zelvar::fuzz::check(name.startsWith(comm), "the full name begins with the kernel's");
    QString::fromUtf8(name);
    return 0;
}
