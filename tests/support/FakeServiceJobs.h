#pragma once

#include <QList>
#include <functional>

#include "platform/ServiceJobs.h"
#include "support/Guarded.h"

namespace zelvar::test {

// Service manager listings held in memory. Counts how often it was asked.
class FakeServiceJobs final : public ServiceJobs {
public:
    void setListings(QList<ServiceJobListing> listings) {
        m_state.lock()->listings = std::move(listings);
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
        const auto state = m_state.lock();
        ++state->calls;
        return state->listings;
    }
    int calls() const { return m_state.lock()->calls; }

private:
    struct State {
        QList<ServiceJobListing> listings;
        int calls = 0;
    };
    Guarded<State> m_state;
    std::function<void()> m_onListing;
};

}  // namespace zelvar::test
