#pragma once

#include "platform/ServiceJobs.h"

namespace zelvar {

// For systems without a service manager that can be asked: no listing, so no job classifies a
// process.
class NullServiceJobs final : public ServiceJobs {
public:
    QList<ServiceJobListing> runningJobListings() override { return {}; }
};

}  // namespace zelvar
