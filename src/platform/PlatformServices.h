#pragma once

#include <memory>

#include "platform/Paths.h"
#include "platform/ProcessTable.h"
#include "platform/VolumeSource.h"

namespace zelvar {

// The current system's adapters. Each build compiles exactly one implementation of these.
std::unique_ptr<ProcessTable> makeProcessTable();
std::unique_ptr<Paths> makePaths();
std::unique_ptr<VolumeSource> makeVolumeSource();

}  // namespace zelvar
