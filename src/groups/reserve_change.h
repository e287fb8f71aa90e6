// Growing and shrinking the reserve of slots that a group's client holds for its child groups.
#pragma once

#include <cstdint>

#include "kvrapi/kvrapi.h"

namespace kvr {

// As KVR_ModifyReservedIndexCount promises, behind the gate.
std::uint32_t ModifyReservedIndexCount(KVR_GROUP group, std::uint32_t *count);

}  // namespace kvr
