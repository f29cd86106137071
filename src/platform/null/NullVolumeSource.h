#pragma once

#include "platform/VolumeSource.h"

namespace zelvar {

// For systems whose volumes can't be asked: no place for extra volumes, and no volume, the root
// included, can be measured.
class NullVolumeSource final : public VolumeSource {
public:
    VolumeListing listVolumes() const override { return {}; }
    std::optional<VolumeCapacity> measure(const QString&, QString* error) const override {
        if (error) {
            *error = QStringLiteral("volumes can't be measured on this system");
        }
        return std::nullopt;
    }
};

}  // namespace zelvar
