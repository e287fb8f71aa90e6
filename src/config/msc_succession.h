// Moving the MSC role to another host.
#pragma once

#include <cstdint>

#include "kvrapi/kvrapi.h"

namespace kvr {

// As KVR_AssignNewMSC promises, behind the gate.
std::uint32_t AssignNewMSC(KVR_SYSTEM system);

}  // namespace kvr
