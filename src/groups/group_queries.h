// Queries over the tree of groups, as the exports of the same names answer them behind the gate.
// They read the model only.
#pragma once

#include <cstdint>

#include "kvrapi/kvrapi.h"

namespace kvr {

std::uint32_t GetAsgCount();
std::uint32_t GetAsgs(KVR_GROUP *groups, std::uint32_t *count);
KVR_SYSTEM GetAsgClient(KVR_GROUP group);
std::uint32_t GetAsgServerCount(KVR_GROUP group);
std::uint32_t GetAsgServers(KVR_GROUP group, KVR_SYSTEM *systems, std::uint32_t *count);
std::uint32_t GetChildAsgCount(KVR_GROUP group);
std::uint32_t GetChildAsgs(KVR_GROUP group, KVR_GROUP *groups, std::uint32_t *count);
std::uint32_t IsClientInChildAsg(KVR_GROUP group, KVR_SYSTEM system);
std::uint32_t IsServerInChildAsg(KVR_GROUP group, KVR_SYSTEM system);
std::uint32_t IsAsgOffline(KVR_GROUP group);

// One of the two buffers is given, or neither.
std::uint32_t GetAsgName(KVR_GROUP group, char *ascii, KVR_WCHAR *wide, std::uint32_t size);

}  // namespace kvr
