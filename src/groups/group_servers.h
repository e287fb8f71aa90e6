// Which hosts serve a group's client.
#pragma once

#include <cstdint>

#include "kvrapi/kvrapi.h"

#include "model/group_record.h"

namespace kvr {

// As KVR_AddServerToAsg promises, behind the gate.
std::uint32_t AddServerToAsg(KVR_GROUP group, KVR_SYSTEM system);

// As KVR_RemoveServerFromAsg promises, behind the gate.
std::uint32_t RemoveServerFromAsg(KVR_GROUP group, KVR_SYSTEM system);

// Ends the service of every server of a group to its client, who holds a slot, in the servers'
// tables and records; the group's list stays. A server whose table could not be read or written is
// marked, one that could is unmarked. Returns 0, or 5008 when one is marked.
std::uint32_t WithdrawServers(const GroupRecord &group);

}  // namespace kvr
