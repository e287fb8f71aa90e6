#include "groups/group_creation.h"

#include "config/backup_push.h"
#include "groups/group_name.h"
#include "groups/slot_allocation.h"
#include "model/group_record.h"
#include "model/local_state.h"
#include "tables/host_tables.h"

namespace kvr {
namespace {

std::uint32_t CheckCreation(const GroupRecord *parent, const GivenName &name,
                            const SystemRecord *client, std::uint32_t freeCount) {
  if (g_isBackupMsc != 0) return KVR_ERR_IS_BACKUP_MSC;
  if (parent != nullptr && !IsLive(parent)) return KVR_ERR_INVALID_HANDLE;
  if (!IsLive(client)) return KVR_ERR_INVALID_HANDLE;
  if (parent != nullptr && IsOffline(*parent)) return KVR_ERR_OFFLINE_GROUP;
  if (client->saIndex >= 0) return KVR_ERR_ALREADY_CLIENT;
  if (LengthOf(name) == KVR_NAME_CAPACITY) return KVR_ERR_INVALID_NAME;
  if (client->inAcg == 0) return KVR_ERR_SYSTEM_NOT_IN_ACG;
  if (parent != nullptr && ListFind(parent->servers, client) == nullptr) {
    return KVR_ERR_INVALID_HANDLE;
  }
  return freeCount != 0 ? KVR_OK : KVR_ERR_NO_FREE_INDEX;
}

// Takes the client's slot and reserve from the pool in both hosts' tables. *ownIndex becomes the
// client's slot on success.
std::uint32_t TakeSlots(const GroupRecord *parent, SystemRecord *client, std::uint32_t reserveCount,
                        std::int32_t *ownIndex) {
  SystemRecord *poolHost = PoolHostOf(parent);
  AccessControlTable pool = {};
  AccessControlTable table = {};
  if (const std::uint32_t result = ReadAccessTable(poolHost, pool)) return result;
  if (const std::uint32_t result = ReadAccessTable(client, table)) return result;

  const AccessControlTable before = table;
  AllocateIndices(pool, table, PoolModeUnder(parent), ownIndex, reserveCount);
  // The slots counted before the checks may have gone to somebody else since.
  if (*ownIndex < 0) return KVR_ERR_NO_FREE_INDEX;

  if (const std::uint32_t result = WriteAccessTable(client, table)) return result;
  const std::uint32_t result = WriteAccessTable(poolHost, pool);
  if (result != KVR_OK) WriteAccessTable(client, before);
  return result;
}

GroupRecord *AddGroup(GroupRecord *parent, const GivenName &name, SystemRecord *client) {
  GroupRecord *group = NewGroup(client, parent);
  group->servers = ListCreate(CompareSystems);
  SetName(*group, name);
  InsertGroup(group);
  return group;
}

}  // namespace

std::uint32_t CreateAsg(KVR_GROUP parent, const char *ascii, const KVR_WCHAR *wide,
                        KVR_SYSTEM client, std::uint32_t *reservedCount, KVR_GROUP *group) {
  const GivenName name{ascii, wide};
  const std::uint32_t freeCount = GetFreeIndexCount(parent);
  if (const std::uint32_t refusal = CheckCreation(parent, name, client, freeCount)) return refusal;

  // One free slot is the client's own.
  std::uint32_t reserveCount = reservedCount != nullptr ? *reservedCount : 0;
  const bool reduced = reserveCount > freeCount - 1;
  if (reduced) *reservedCount = reserveCount = freeCount - 1;

  if (group != nullptr) *group = nullptr;
  std::int32_t ownIndex = -1;
  if (const std::uint32_t result = TakeSlots(parent, client, reserveCount, &ownIndex)) {
    return result;
  }
  client->saIndex = ownIndex;
  StoreName(client, name);
  GroupRecord *created = AddGroup(parent, name, client);
  if (group != nullptr) *group = created;
  if (parent == nullptr && g_isMsc != 0) PushAccessTableToAllBackups();
  return reduced ? KVR_ERR_RESERVED_COUNT_REDUCED : KVR_OK;
}

}  // namespace kvr
