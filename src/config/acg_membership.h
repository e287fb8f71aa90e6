// Bringing hosts into the ACG and taking them out.
#pragma once

#include <cstdint>

#include "kvrapi/kvrapi.h"

namespace kvr {

// As KVR_AddServerToACG promises, behind the gate.
std::uint32_t AddServerToACG(KVR_SYSTEM system);

// As KVR_RemoveServerFromACG promises, behind the gate.
std::uint32_t RemoveServerFromACG(KVR_SYSTEM system);

}  // namespace kvr
