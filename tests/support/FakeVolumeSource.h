#pragma once

#include <QHash>

#include "platform/VolumeSource.h"
#include "support/Guarded.h"

namespace zelvar::test {

// Volumes from memory: a listing and a capacity per mount point; a mount point without one
// fails to answer with "no such volume".
class FakeVolumeSource final : public VolumeSource {
public:
    void setListing(VolumeListing listing) { m_state.lock()->listing = std::move(listing); }
    void setCapacity(const QString& mountPoint, qint64 totalBytes, qint64 freeBytes) {
        m_state.lock()->capacities.insert(mountPoint, VolumeCapacity{totalBytes, freeBytes});
    }
    void removeCapacity(const QString& mountPoint) {
        m_state.lock()->capacities.remove(mountPoint);
    }

    VolumeListing listVolumes() const override { return m_state.lock()->listing; }
    std::optional<VolumeCapacity> measure(const QString& mountPoint,
                                          QString* error) const override {
        const std::optional<VolumeCapacity> capacity = m_state.lock()->capacities.value(mountPoint);
        if (!capacity && error) {
            *error = QStringLiteral("no such volume");
        }
        return capacity;
    }

private:
    struct State {
        VolumeListing listing;
        QHash<QString, std::optional<VolumeCapacity>> capacities;
    };
    Guarded<State> m_state;
};

}  // namespace zelvar::test
