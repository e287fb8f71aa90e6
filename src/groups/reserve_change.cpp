#include "groups/reserve_change.h"

#include "config/backup_push.h"
#include "groups/slot_allocation.h"
#include "model/group_record.h"
#include "model/local_state.h"
#include "tables/host_tables.h"
#include "tables/slot_rules.h"

namespace kvr {
namespace {

std::uint32_t CheckReserveChange(const GroupRecord *group, const std::uint32_t *count) {
  if (g_isBackupMsc != 0) return KVR_ERR_IS_BACKUP_MSC;
  if (!IsLive(group) || count == nullptr) return KVR_ERR_INVALID_HANDLE;
  if (IsOffline(*group)) return KVR_ERR_OFFLINE_GROUP;
  if (group->parent != nullptr && IsOffline(*group->parent)) return KVR_ERR_OFFLINE_GROUP;
  return KVR_OK;
}

// Gives slots that no child uses back to the pool, lowest first, in both images. The client's table
// reserves at least as many.
void ReleaseReserve(AccessControlTable &pool, AccessControlTable &client, std::uint32_t count) {
  for (std::uint32_t slot = 0; slot < KVR_SLOT_COUNT && count > 0; ++slot) {
    if (!IsFreeSlot(client.entries[slot], PoolMode::Reserve)) continue;
    client.entries[slot].roleFlags = 0;
    pool.entries[slot].roleFlags &= ~ACE_DELEGATED;
    --count;
  }
}

// Changes the reserve in both images from what the client's table holds to *count, or to what the
// pool has room for: then *count becomes that, and the result is 5014.
std::uint32_t ResizeReserve(AccessControlTable &pool, AccessControlTable &client, PoolMode mode,
                            std::uint32_t total, std::uint32_t *count) {
  if (*count < total) {
    ReleaseReserve(pool, client, total - *count);
    return KVR_OK;
  }
  const std::uint32_t room = CountSlots(pool, mode, IsFreeSlot);
  const bool reduced = *count - total > room;
  if (reduced) *count = total + room;
  AllocateIndices(pool, client, mode, nullptr, *count - total);
  return reduced ? KVR_ERR_RESERVED_COUNT_REDUCED : KVR_OK;
}

}  // namespace

std::uint32_t ModifyReservedIndexCount(KVR_GROUP group, std::uint32_t *count) {
  if (const std::uint32_t refusal = CheckReserveChange(group, count)) return refusal;

  SystemRecord *client = group->client;
  AccessControlTable table = {};
  if (const std::uint32_t result = ReadAccessTable(client, table)) return result;
  const std::uint32_t used = CountSlots(table, PoolMode::Reserve, IsUsedSlot);
  const std::uint32_t total = used + CountSlots(table, PoolMode::Reserve, IsFreeSlot);
  if (*count < used) return KVR_ERR_RESERVED_INDICES_IN_USE;
  SystemRecord *poolHost = PoolHostOf(group->parent);
  AccessControlTable pool = {};
  if (const std::uint32_t result = ReadAccessTable(poolHost, pool)) return result;

  const AccessControlTable before = table;
  const std::uint32_t resized =
      ResizeReserve(pool, table, PoolModeUnder(group->parent), total, count);

  if (const std::uint32_t result = WriteAccessTable(client, table)) return result;
  if (const std::uint32_t result = WriteAccessTable(poolHost, pool)) {
    WriteAccessTable(client, before);
    return result;
  }
  if (group->parent == nullptr && g_isMsc != 0) PushAccessTableToAllBackups();
  return resized;
}

}  // namespace kvr
