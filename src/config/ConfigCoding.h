#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "config/MonitorConfig.h"

namespace zelvar {

struct ConfigDecodeResult {
    std::optional<MonitorConfig> config;
    QString error;  // why decoding failed, when `config` has no value
};

// The configuration file's JSON form: snake-case keys sorted at every level, pretty-printed,
// dates as whole-second UTC ISO 8601, UUIDs upper case, the whitelist as a sorted array.
class ConfigCoding {
public:
    static QByteArray encode(const MonitorConfig& config);

    // Every top-level key is optional; a value of the wrong type, or a limit missing one of
    // its required keys, fails the whole decode.
    static ConfigDecodeResult decode(const QByteArray& json);
};

}  // namespace zelvar
