// Naming hosts as backup MSCs, which can take the MSC's role over, and taking the naming back.
#pragma once

#include <cstdint>

#include "kvrapi/kvrapi.h"

namespace kvr {

// As KVR_AddBackupMSC promises, behind the gate.
std::uint32_t AddBackupMSC(KVR_SYSTEM system);

// As KVR_RemoveBackupMSC promises, behind the gate.
std::uint32_t RemoveBackupMSC(KVR_SYSTEM system);

}  // namespace kvr
