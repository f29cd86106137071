#include "platform/portable/FullProcessName.h"

namespace zelvar {

QString FullProcessName::choose(const QString& shortName, const QString& executablePath) {
    if (!mayBeCut(shortName)) {
        return shortName;
    }
    const QString fileName = executablePath.section(QLatin1Char('/'), -1);
    return fileName.size() > shortName.size() && fileName.startsWith(shortName) ? fileName
                                                                                : shortName;
}

QString FullProcessName::executablePathFromProcArgs(const QByteArray& buffer) {
    const qsizetype start = sizeof(int);
    if (buffer.size() <= start) {
        return {};
    }
    const qsizetype end = buffer.indexOf('\0', start);
    if (end <= start) {
        return {};  // an empty path, or one the buffer cuts
    }
    return QString::fromUtf8(buffer.constData() + start, end - start);
}

}  // namespace zelvar
