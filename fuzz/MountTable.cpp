// /proc/self/mounts, with the roots the Linux volume source looks under.
#include "platform/linux/MountTable.h"

#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QStringList roots{QStringLiteral("/media"), QStringLiteral("/run/media"),
                            QStringLiteral("/mnt")};
    QStringList points = zelvar::blockDeviceMountsUnder(zelvar::fuzz::bytes(data, size), roots);
    for (const QString& point : points) {
        zelvar::fuzz::check(std::any_of(roots.begin(), roots.end(),
                                        [&](const QString& root) {
                                            return point == root ||
                                                   point.startsWith(root + QLatin1Char('/'));
                                        }),
                            "points lie under a root");
    }
    zelvar::fuzz::check(points.removeDuplicates() == 0, "each point once");
    return 0;
}
