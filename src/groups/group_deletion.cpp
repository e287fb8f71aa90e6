#include "groups/group_deletion.h"

#include "config/backup_push.h"
#include "groups/group_servers.h"
#include "model/group_record.h"
#include "model/local_state.h"
#include "tables/host_names.h"
#include "tables/host_tables.h"
#include "tables/slot_rules.h"

namespace kvr {
namespace {

std::uint32_t CheckDeletion(const GroupRecord *group) {
  if (g_isBackupMsc != 0) return KVR_ERR_IS_BACKUP_MSC;
  if (!IsLive(group)) return KVR_ERR_INVALID_HANDLE;
  if (IsOffline(*group)) return KVR_ERR_OFFLINE_GROUP;
  if (group->childCount > 0) return KVR_ERR_HAS_CHILD_GROUPS;
  // A deletion of the configuration that stopped halfway may have taken the client's slot.
  return IsSlot(group->client->saIndex) ? KVR_OK : KVR_ERR_SYSTEM_NOT_IN_ACG;
}

// Gives the client's slot and reserve back to the pool, in both images.
void ReturnSlots(AccessControlTable &pool, AccessControlTable &client, std::int32_t ownSlot) {
  for (std::uint32_t slot = 0; slot < KVR_SLOT_COUNT; ++slot) {
    if (!IsReserved(client.entries[slot])) continue;
    client.entries[slot].roleFlags = 0;
    pool.entries[slot].roleFlags &= ~ACE_DELEGATED;
  }
  client.entries[ownSlot].roleFlags &= ~ACE_SELF;
  pool.entries[ownSlot].roleFlags &= ~ACE_CHILD;
}

// Takes a group out of the tree and frees it, and with it an Offline Client group that it leaves
// without children.
void RemoveFromTree(GroupRecord *group) {
  GroupRecord *parent = group->parent;
  group->client->saIndex = -1;
  if (group->client->clientGroup == group) group->client->clientGroup = nullptr;
  TakeOutGroup(group);
  FreeGroup(group);
  if (parent == nullptr && g_isMsc != 0) PushAccessTableToAllBackups();
  if (parent != nullptr && IsOffline(*parent) && parent->childCount == 0) {
    TakeOutGroup(parent);
    RetireGroup(parent);
  }
}

}  // namespace

std::uint32_t DeleteAsg(KVR_GROUP group) {
  if (const std::uint32_t refusal = CheckDeletion(group)) return refusal;

  SystemRecord *client = group->client;
  SystemRecord *poolHost = PoolHostOf(group->parent);
  const bool poolIsKnown = poolHost != OFFLINE_CLIENT;
  AccessControlTable pool = {};
  AccessControlTable table = {};
  if (poolIsKnown) {
    if (const std::uint32_t result = ReadAccessTable(poolHost, pool)) return result;
  }
  if (const std::uint32_t result = ReadAccessTable(client, table)) return result;

  const std::uint32_t withdrawn = WithdrawServers(*group);
  ReturnSlots(pool, table, client->saIndex);
  if (const std::uint32_t result = WriteAccessTable(client, table)) return result;
  ClearHostName(client);
  const std::uint32_t returned = poolIsKnown ? WriteAccessTable(poolHost, pool) : KVR_OK;

  RemoveFromTree(group);
  return returned != KVR_OK ? returned : withdrawn;
}

}  // namespace kvr
