#include "disk/DiskIOModels.h"

namespace zelvar {

std::optional<WindowData> DiskIOSummary::windowData(const QString& window) const {
    for (const WindowData& data : windows) {
        if (data.window == window) {
            return data;
        }
    }
    return std::nullopt;
}

QString DiskIOBurst::icon() const {
    switch (source) {
        case BurstSource::Process:
            return QStringLiteral("cpu");
        case BurstSource::Directory:
            return QStringLiteral("folder.fill");
        case BurstSource::File:
            return QStringLiteral("doc.fill");
    }
    return {};
}

QString formatMegabytes(double megabytes) {
    if (megabytes >= 1000.0) {
        return QString::asprintf("%.1f GB", megabytes / 1024.0);
    }
    return QString::asprintf("%.0f MB", megabytes);
}

QString DiskIOBurst::sourceName(BurstSource source) {
    switch (source) {
        case BurstSource::Process:
            return QStringLiteral("process");
        case BurstSource::Directory:
            return QStringLiteral("directory");
        case BurstSource::File:
            return QStringLiteral("file");
    }
    return {};
}

}  // namespace zelvar
