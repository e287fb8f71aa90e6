// Slots under a group: how many are left, and taking some.
#pragma once

#include <cstdint>

#include "kvrapi/kvrapi.h"
#include "kvrapi/table_formats.h"

#include "tables/slot_rules.h"

namespace kvr {

// The rule by which slots are free in the table of the host that supplies groups under a parent.
PoolMode PoolModeUnder(const KVR_GroupRecord *parent);

// As the exports of the same names promise, behind the gate.
std::uint32_t GetFreeIndexCount(KVR_GROUP group);
std::uint32_t GetUsedIndexCount(KVR_GROUP group);

// Takes slots from a pool's table for a client's table, lowest first: the client's own one when
// ownIndex is not null, then reserveCount for its reserve. *ownIndex becomes the slot, or -1 when
// none is free; then nothing is taken. Marks are only added. Takes fewer when the pool runs out:
// the caller sees to it that there are enough. Both images are only changed in memory.
void AllocateIndices(AccessControlTable &pool, AccessControlTable &client, PoolMode mode,
                     std::int32_t *ownIndex, std::uint32_t reserveCount);

}  // namespace kvr
