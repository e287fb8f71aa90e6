// Switching switch access on and off for the whole configuration.
#pragma once

#include <cstdint>

namespace kvr {

// As KVR_EnableSwitchAccess promises, behind the gate.
std::uint32_t EnableSwitchAccess(std::uint32_t enable);

}  // namespace kvr
