// A process row or an alert record in its JSON form, as `--json` reports write them and as
// a reader of those reports takes them back.
#include <QJsonDocument>

#include "FuzzInput.h"
#include "alerts/AlertRecord.h"
#include "process/ProcessInfo.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QJsonDocument document = QJsonDocument::fromJson(zelvar::fuzz::bytes(data, size));
    if (!document.isObject()) {
        return 0;
    }
    if (const auto process = zelvar::ProcessInfo::fromJson(document.object())) {
        zelvar::fuzz::check(zelvar::ProcessInfo::fromJson(process->toJson()) == process,
                            "a process read from JSON round-trips");
    }
    if (const auto alert = zelvar::AlertRecord::fromJson(document.object())) {
        zelvar::fuzz::check(zelvar::AlertRecord::fromJson(alert->toJson()) == alert,
                            "an alert read from JSON round-trips");
    }
    return 0;
}
