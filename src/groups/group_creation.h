// Creating a group: its checks, the two table writes with their roll-back, and its record.
#pragma once

#include <cstdint>

#include "kvrapi/kvrapi.h"

namespace kvr {

// As KVR_CreateAsgA and KVR_CreateAsgW promise, behind the gate. One of the two names is given;
// with neither the name is refused.
std::uint32_t CreateAsg(KVR_GROUP parent, const char *ascii, const KVR_WCHAR *wide,
                        KVR_SYSTEM client, std::uint32_t *reservedCount, KVR_GROUP *group);

}  // namespace kvr
