#pragma once

#include <QList>
#include <functional>
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

    // Runs inside each listing, on the caller's thread: lets a test make the listing slow.
    void onListing(std::function<void()> hook) { m_onListing = std::move(hook); }

    QList<ServiceJobListing> runningJobListings() override {
        if (m_onListing) {
            m_onListing();
        }
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
    std::function<void()> m_onListing;
};

}  // namespace zelvar::test
