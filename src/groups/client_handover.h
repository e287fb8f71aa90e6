// Handing a group to another client, with its slot, its reserve and the groups below it.
#pragma once

#include <cstdint>

#include "kvrapi/kvrapi.h"

namespace kvr {

// As KVR_AssignNewClient promises, behind the gate.
std::uint32_t AssignNewClient(KVR_GROUP group, KVR_SYSTEM system);

}  // namespace kvr
