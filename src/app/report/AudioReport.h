#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

#include "app/report/ReportKind.h"
#include "audio/AudioAppEvent.h"

namespace zelvar {

class AudioMonitor;

// `zelvar2 report audio [--seconds S]`: runs the audio monitor for S seconds and prints each
// change of the speaker's and the microphone's status and each use as it starts; with
// --json, the final state and every event at the end.
class AudioReport {
public:
    static ReportKind kind();

    static int run(const ReportOptions& options, Monitors& monitors, QTextStream& out);

    // "12:00:01  Speaker: Speaker idle  Microphone: Microphone idle", at `time` local.
    static QString formatStatusLine(const QDateTime& time, const QString& outputStatus,
                                    const QString& inputStatus);
    // "12:00:01  Speaker started: Tonegen (coreaudiod clients)".
    static QString formatEventLine(const AudioAppEvent& event);
    static QByteArray formatJson(const AudioMonitor& monitor);
};

}  // namespace zelvar
