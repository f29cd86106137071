#include "power/WattlogSampleFiles.h"

#include "common/BoundedFile.h"

namespace zelvar {

QString WattlogSampleFiles::batterySamplesFile(const Paths& paths) {
    return paths.dataDirectory(kWattlogFolder) + QStringLiteral("/battery-samples.jsonl");
}

QString WattlogSampleFiles::correlationSamplesFile(const Paths& paths) {
    return paths.dataDirectory(kWattlogFolder) + QStringLiteral("/correlation/samples.jsonl");
}

QList<QByteArray> WattlogSampleFiles::lastLines(const QString& path, int limit) {
    if (limit <= 0) {
        return {};
    }
    for (qint64 bytes = kFirstTailBytes;; bytes *= 2) {
        const BoundedFile::Tail tail = BoundedFile::readTail(path, bytes);
        if (tail.result.status != BoundedFile::Status::read) {
            return {};
        }
        QList<QByteArray> lines = tail.result.data.split('\n');
        // Unless the read reached the file's start, its first piece may be part of a line.
        const bool wholeFile = tail.offset == 0;
        if (!wholeFile) {
            lines.removeFirst();
        }
        lines.removeIf([](const QByteArray& line) { return line.isEmpty(); });
        if (lines.size() >= limit || wholeFile || bytes >= kMaxTailBytes) {
            return lines.mid(std::max<qsizetype>(0, lines.size() - limit));
        }
    }
}

QList<WattlogBatterySample> WattlogSampleFiles::loadBatterySamples(const Paths& paths, int limit) {
    return readJSONLLines<WattlogBatterySample>(batterySamplesFile(paths), limit);
}

QList<WattlogCorrelationSample> WattlogSampleFiles::loadCorrelationSamples(const Paths& paths,
                                                                           int limit) {
    return readJSONLLines<WattlogCorrelationSample>(correlationSamplesFile(paths), limit);
}

}  // namespace zelvar
