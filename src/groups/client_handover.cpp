#include "groups/client_handover.h"

#include "groups/group_name.h"
#include "model/group_record.h"
#include "model/local_state.h"
#include "model/system_registry.h"
#include "tables/host_names.h"
#include "tables/host_tables.h"
#include "tables/slot_rules.h"

namespace kvr {
namespace {

// Behind the checks that a host which is the client already need not pass.
std::uint32_t CheckNewClient(const GroupRecord &group, const SystemRecord &system) {
  if (system.saIndex >= 0) return KVR_ERR_ALREADY_CLIENT;
  if (system.inAcg == 0) return KVR_ERR_SYSTEM_NOT_IN_ACG;
  if (group.parent != nullptr && ListFind(group.parent->servers, &system) == nullptr) {
    return KVR_ERR_INVALID_HANDLE;
  }
  // A deletion of the configuration that stopped halfway may have taken the client's slot.
  return IsSlot(group.client->saIndex) ? KVR_OK : KVR_ERR_SYSTEM_NOT_IN_ACG;
}

// Moves the reserve, with the marks of the child groups, and the slot from one table to the other.
void MoveSlots(AccessControlTable &from, AccessControlTable &to, std::int32_t ownSlot) {
  for (std::uint32_t slot = 0; slot < KVR_SLOT_COUNT; ++slot) {
    if (!IsReserved(from.entries[slot])) continue;
    to.entries[slot].roleFlags = from.entries[slot].roleFlags;
    from.entries[slot].roleFlags = 0;
  }
  to.entries[ownSlot].roleFlags = ACE_SELF;
  to.entries[ownSlot].serveFlags &= ~ACE_SERVES;
  from.entries[ownSlot].roleFlags = 0;
}

std::uint32_t HandOnSlots(SystemRecord *from, SystemRecord *to) {
  AccessControlTable fromTable = {};
  AccessControlTable toTable = {};
  if (const std::uint32_t result = ReadAccessTable(from, fromTable)) return result;
  if (const std::uint32_t result = ReadAccessTable(to, toTable)) return result;

  const AccessControlTable before = fromTable;
  MoveSlots(fromTable, toTable, from->saIndex);
  std::uint32_t result = WriteAccessTable(from, fromTable);
  if (result == KVR_OK) result = WriteAccessTable(to, toTable);
  if (result != KVR_OK) WriteAccessTable(from, before);
  return result;
}

// The model's part: a client does not serve itself.
void SetClient(GroupRecord &group, SystemRecord *client) {
  SystemRecord *former = group.client;
  client->saIndex = former->saIndex;
  former->saIndex = -1;
  if (former->clientGroup == &group) former->clientGroup = nullptr;
  group.client = client;
  if (ListNode *node = ListFind(group.servers, client)) {
    EndService(*client, client->saIndex);
    ListUnlink(node, 0);
    --group.serverCount;
  }
}

}  // namespace

std::uint32_t AssignNewClient(KVR_GROUP group, KVR_SYSTEM system) {
  if (g_isBackupMsc != 0) return KVR_ERR_IS_BACKUP_MSC;
  if (!IsLive(group) || !IsLive(system)) return KVR_ERR_INVALID_HANDLE;
  if (IsOffline(*group)) return KVR_ERR_OFFLINE_GROUP;
  if (group->client == system) return KVR_OK;
  if (const std::uint32_t refusal = CheckNewClient(*group, *system)) return refusal;

  SystemRecord *former = group->client;
  if (const std::uint32_t result = HandOnSlots(former, system)) return result;
  const bool isWide = group->nameW[0] != 0;
  StoreName(system, {isWide ? nullptr : group->name, isWide ? group->nameW : nullptr});
  ClearHostName(former);
  SetClient(*group, system);
  return KVR_OK;
}

}  // namespace kvr
