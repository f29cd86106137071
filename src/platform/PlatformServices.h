#pragma once

#include <memory>

#include "platform/Paths.h"
#include "platform/ProcessTable.h"
#include "platform/ServiceJobs.h"

namespace zelvar {

class CommandRunner;

// The current system's adapters. Each build compiles exactly one implementation of these.
std::unique_ptr<ProcessTable> makeProcessTable();
std::unique_ptr<Paths> makePaths();
// Runs its tools through `runner`, which must outlive it.
std::unique_ptr<ServiceJobs> makeServiceJobs(CommandRunner& runner);

}  // namespace zelvar
