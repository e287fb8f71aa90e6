// Replacing the keys of the configuration.
#pragma once

#include <cstdint>

namespace kvr {

// As KVR_GenerateNewKeys promises, behind the gate.
std::uint32_t GenerateNewKeys();

}  // namespace kvr
