// Which hosts could still be added to a group as servers.
#pragma once

#include <cstdint>

#include "kvrapi/kvrapi.h"

namespace kvr {

// As the exports of the same names promise, behind the gate.
std::uint32_t GetAvailAsgServerCount(KVR_GROUP group);
std::uint32_t GetAvailAsgServers(KVR_GROUP group, KVR_SYSTEM *systems, std::uint32_t *count);

}  // namespace kvr
