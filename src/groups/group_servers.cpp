#include "groups/group_servers.h"

#include "model/group_record.h"
#include "model/local_state.h"
#include "model/system_registry.h"
#include "tables/host_tables.h"

namespace kvr {
namespace {

std::uint32_t CheckAddition(const GroupRecord *group, const SystemRecord *system) {
  if (g_isBackupMsc != 0) return KVR_ERR_IS_BACKUP_MSC;
  if (!IsLive(group) || !IsLive(system)) return KVR_ERR_INVALID_HANDLE;
  if (IsOffline(*group)) return KVR_ERR_OFFLINE_GROUP;
  if (system->inAcg == 0) return KVR_ERR_SYSTEM_NOT_IN_ACG;
  if (ListFind(group->servers, system) != nullptr) return KVR_ERR_ALREADY_ASG_SERVER;
  if (group->parent != nullptr && ListFind(group->parent->servers, system) == nullptr) {
    return KVR_ERR_INVALID_HANDLE;
  }
  if (ListFind(g_backupMscList, system) != nullptr) return KVR_ERR_IS_BACKUP_MSC;
  // A deletion of the configuration that stopped halfway may have taken the client's slot.
  return IsSlot(group->client->saIndex) ? KVR_OK : KVR_ERR_SYSTEM_NOT_IN_ACG;
}

std::uint32_t CheckRemoval(const GroupRecord *group, const SystemRecord *system) {
  if (g_isBackupMsc != 0) return KVR_ERR_IS_BACKUP_MSC;
  if (!IsLive(group) || !IsLive(system)) return KVR_ERR_INVALID_HANDLE;
  if (IsOffline(*group)) return KVR_ERR_OFFLINE_GROUP;
  if (ListFind(group->servers, system) == nullptr) return KVR_ERR_NOT_ASG_SERVER;
  return IsSlot(group->client->saIndex) ? KVR_OK : KVR_ERR_SYSTEM_NOT_IN_ACG;
}

// Writes whether a host serves the client that holds a slot: one read and one write of its table.
std::uint32_t WriteService(SystemRecord *system, std::int32_t slot, std::uint32_t serveFlags) {
  return ChangeAccessTable(
      system, [=](AccessControlTable &table) { table.entries[slot].serveFlags = serveFlags; });
}

}  // namespace

std::uint32_t AddServerToAsg(KVR_GROUP group, KVR_SYSTEM system) {
  if (const std::uint32_t refusal = CheckAddition(group, system)) return refusal;
  const std::int32_t slot = group->client->saIndex;
  if (const std::uint32_t result = WriteService(system, slot, ACE_SERVES)) return result;
  BeginService(*system, slot);
  ListInsertSorted(group->servers, system);
  ++group->serverCount;
  return KVR_OK;
}

std::uint32_t RemoveServerFromAsg(KVR_GROUP group, KVR_SYSTEM system) {
  if (const std::uint32_t refusal = CheckRemoval(group, system)) return refusal;
  const std::int32_t slot = group->client->saIndex;
  if (const std::uint32_t result = WriteService(system, slot, 0)) return result;
  EndService(*system, slot);
  ListUnlink(ListFind(group->servers, system), 0);
  --group->serverCount;
  return KVR_OK;
}

std::uint32_t WithdrawServers(const GroupRecord &group) {
  std::uint32_t outcome = KVR_OK;
  for (SystemRecord &server : ListView<SystemRecord>(group.servers)) {
    const bool written = WriteService(&server, group.client->saIndex, 0) == KVR_OK;
    server.lastOpFailed = written ? 0 : 1;
    if (!written) outcome = KVR_ERR_SERVERS_FAILED;
    EndService(server, group.client->saIndex);
  }
  return outcome;
}

}  // namespace kvr
