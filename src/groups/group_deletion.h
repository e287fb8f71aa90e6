// Deleting a group: what its servers and its client hold for it, and the slots' way back.
#pragma once

#include <cstdint>

#include "kvrapi/kvrapi.h"

namespace kvr {

// As KVR_DeleteAsg promises, behind the gate.
std::uint32_t DeleteAsg(KVR_GROUP group);

}  // namespace kvr
