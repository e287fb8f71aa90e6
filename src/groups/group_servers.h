// Which hosts serve a group's client.
#pragma once

#include <cstdint>

#include "kvrapi/kvrapi.h"

namespace kvr {

// As KVR_AddServerToAsg promises, behind the gate.
std::uint32_t AddServerToAsg(KVR_GROUP group, KVR_SYSTEM system);

}  // namespace kvr
