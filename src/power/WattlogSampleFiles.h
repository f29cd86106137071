#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

#include "platform/Paths.h"
#include "power/WattlogBatterySample.h"
#include "power/WattlogCorrelationSample.h"

namespace zelvar {

// The daemon's two sample files, one JSON object per line, oldest first, appended to while we
// read them. Only their recent end is read: from the end backwards until `limit` lines are in
// hand, so the cost of a read doesn't grow with the file. The lines kept are the file's last
// `limit` non-empty lines, and a line that doesn't decode (such as a last line half written)
// is dropped after that cut, so it lowers the count.
class WattlogSampleFiles {
public:
    WattlogSampleFiles() = delete;

    // How many samples the power monitor keeps of each file.
    static constexpr int kRecentLimit = 240;
    // The first stretch read from a file's end; doubled until enough lines are in it.
    static constexpr qint64 kFirstTailBytes = 64 * 1024;
    // How far back a read goes at most, for a file of absurdly long lines.
    static constexpr qint64 kMaxTailBytes = 64LL * 1024 * 1024;

    static QString batterySamplesFile(const Paths& paths);
    static QString correlationSamplesFile(const Paths& paths);

    // The last `limit` non-empty lines of the file, in file order. Nothing for a missing or
    // unreadable file.
    static QList<QByteArray> lastLines(const QString& path, int limit);

    // The last `limit` lines decoded, newest first.
    template <typename Sample>
    static QList<Sample> readJSONLLines(const QString& path, int limit) {
        const QList<QByteArray> lines = lastLines(path, limit);
        QList<Sample> samples;
        samples.reserve(lines.size());
        for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
            if (std::optional<Sample> sample = Sample::decode(*line)) {
                samples.append(std::move(*sample));
            }
        }
        return samples;
    }

    static QList<WattlogBatterySample> loadBatterySamples(const Paths& paths,
                                                          int limit = kRecentLimit);
    static QList<WattlogCorrelationSample> loadCorrelationSamples(const Paths& paths,
                                                                  int limit = kRecentLimit);
};

}  // namespace zelvar
