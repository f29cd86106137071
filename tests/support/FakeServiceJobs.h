#pragma once

#include <QList>
#include <mutex>

#include "platform/ServiceJobs.h"

namespace zelvar::test {

// Service manager listings held in memory. Counts how often it was asked.
class FakeServiceJobs final : public ServiceJobs {
public:
    void setListings(QList<ServiceJobListing> listings) {
        std::lock_guard lock(m_mutex);
        m_listings = std::move(listings);
    }
    void setLaunchctlList(QByteArray text) {
        setListings({{ServiceJobListing::Format::LaunchctlList, std::move(text)}});
    }

    QList<ServiceJobListing> runningJobListings() override {
        std::lock_guard lock(m_mutex);
        ++m_calls;
        return m_listings;
    }

    int calls() const {
        std::lock_guard lock(m_mutex);
        return m_calls;
    }

private:
    mutable std::mutex m_mutex;
    QList<ServiceJobListing> m_listings;
    int m_calls = 0;
};

}  // namespace zelvar::test
