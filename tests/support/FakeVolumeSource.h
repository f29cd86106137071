#pragma once

#include <QHash>
#include <mutex>

#include "platform/VolumeSource.h"

namespace zelvar::test {

// Volumes from memory: a listing and a capacity per mount point; a mount point without one
// fails to answer with "no such volume".
class FakeVolumeSource final : public VolumeSource {
public:
    void setListing(VolumeListing listing) {
        std::lock_guard lock(m_mutex);
        m_listing = std::move(listing);
    }
    void setCapacity(const QString& mountPoint, qint64 totalBytes, qint64 freeBytes) {
        std::lock_guard lock(m_mutex);
        m_capacities.insert(mountPoint, {totalBytes, freeBytes});
    }
    void removeCapacity(const QString& mountPoint) {
        std::lock_guard lock(m_mutex);
        m_capacities.remove(mountPoint);
    }

    VolumeListing listVolumes() const override {
        std::lock_guard lock(m_mutex);
        return m_listing;
    }
    std::optional<VolumeCapacity> measure(const QString& mountPoint,
                                          QString* error) const override {
        std::lock_guard lock(m_mutex);
        const auto it = m_capacities.constFind(mountPoint);
        if (it == m_capacities.constEnd()) {
            if (error) {
                *error = QStringLiteral("no such volume");
            }
            return std::nullopt;
        }
        return *it;
    }

private:
    mutable std::mutex m_mutex;
    VolumeListing m_listing;
    QHash<QString, VolumeCapacity> m_capacities;
};

}  // namespace zelvar::test
