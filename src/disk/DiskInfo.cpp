#include "disk/DiskInfo.h"

namespace zelvar {
namespace {

constexpr double kBytesPerGB = 1073741824.0;

}  // namespace

double DiskInfo::usedGB() const {
    return static_cast<double>(usedBytes) / kBytesPerGB;
}

double DiskInfo::totalGB() const {
    return static_cast<double>(totalBytes) / kBytesPerGB;
}

double DiskInfo::availableGB() const {
    return static_cast<double>(availableBytes) / kBytesPerGB;
}

double DiskInfo::percentUsed() const {
    if (totalBytes < 1) {
        return 0.0;
    }
    return static_cast<double>(usedBytes) / static_cast<double>(totalBytes) * 100.0;
}

QString DiskInfo::displayUsed() const {
    return QString::asprintf("%.1f GB / %.1f GB", usedGB(), totalGB());
}

QString DiskInfo::displayPercent() const {
    return QString::asprintf("%.0f%%", percentUsed());
}

}  // namespace zelvar
