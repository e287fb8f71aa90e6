// Why there is nothing to talk to, as far as the settings of a simulated network tell.
#pragma once

#include <filesystem>

#include "fabric/description.h"
#include "failure.h"

namespace kvrctl {

// The failure of a host without an adapter (5002), with the cause where the fabric folder or the
// host's name is missing or wrong.
Failure NoLocalAdapter();

// The fabric folder of this run, from --fabric or KVR_FABRIC. Throws Failure where none is named.
std::filesystem::path FabricFolder();

// The description in the folder. Throws Failure where there is none or it is refused, with file and
// line.
fabric::Description ReadDescription(const std::filesystem::path &folder);

// The failure of a description that cannot be used.
Failure DescriptionRefused(const std::exception &error);

}  // namespace kvrctl
