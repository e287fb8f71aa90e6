#include "groups/slot_allocation.h"

#include "model/group_record.h"
#include "model/local_state.h"
#include "tables/host_tables.h"

namespace kvr {
namespace {

std::uint32_t CountUnder(KVR_GROUP group, bool (*rule)(const AccessEntry &, PoolMode)) {
  if (group != nullptr && (!IsLive(group) || IsOffline(*group))) return 0;
  AccessControlTable pool = {};
  if (ReadAccessTable(PoolHostOf(group), pool) != KVR_OK) return 0;
  return CountSlots(pool, PoolModeUnder(group), rule);
}

// The first free slot from a given one on; KVR_SLOT_COUNT when there is none.
std::uint32_t NextFreeSlot(const AccessControlTable &pool, PoolMode mode, std::uint32_t slot) {
  while (slot < KVR_SLOT_COUNT && !IsFreeSlot(pool.entries[slot], mode))
    ++slot;
  return slot;
}

}  // namespace

PoolMode PoolModeUnder(const GroupRecord *parent) {
  return parent == nullptr && g_isMsc != 0 ? PoolMode::MscTopLevel : PoolMode::Reserve;
}

std::uint32_t GetFreeIndexCount(KVR_GROUP group) {
  return CountUnder(group, IsFreeSlot);
}

std::uint32_t GetUsedIndexCount(KVR_GROUP group) {
  return CountUnder(group, IsUsedSlot);
}

void AllocateIndices(AccessControlTable &pool, AccessControlTable &client, PoolMode mode,
                     std::int32_t *ownIndex, std::uint32_t reserveCount) {
  std::uint32_t slot = 0;
  if (ownIndex != nullptr) {
    *ownIndex = -1;
    slot = NextFreeSlot(pool, mode, slot);
    if (slot == KVR_SLOT_COUNT) return;
    *ownIndex = static_cast<std::int32_t>(slot);
    client.entries[slot].roleFlags |= ACE_SELF;
    pool.entries[slot].roleFlags |= ACE_CHILD;
    ++slot;
  }
  for (std::uint32_t taken = 0; taken < reserveCount; ++taken, ++slot) {
    slot = NextFreeSlot(pool, mode, slot);
    if (slot == KVR_SLOT_COUNT) return;
    client.entries[slot].roleFlags |= ACE_RESERVED;
    pool.entries[slot].roleFlags |= ACE_DELEGATED;
  }
}

}  // namespace kvr
