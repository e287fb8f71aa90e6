#include "groups/available_servers.h"

#include "model/copy_out.h"
#include "model/group_record.h"
#include "model/local_state.h"
#include "model/system_registry.h"

namespace kvr {
namespace {

// The servers of a child group are servers of its parent.
const OrderedList *CandidatesOf(const GroupRecord &group) {
  return group.parent != nullptr ? group.parent->servers : g_systemList;
}

bool IsAvailable(const GroupRecord &group, const SystemRecord &system) {
  if (system.inAcg == 0) return false;
  if (&system == group.client) return false;
  if (ListFind(group.servers, &system) != nullptr) return false;
  if (g_isMsc != 0 && ListFind(g_backupMscList, &system) != nullptr) return false;
  return ShareReachId(system, *group.client);
}

}  // namespace

std::uint32_t GetAvailAsgServerCount(KVR_GROUP group) {
  if (g_isBackupMsc != 0) return 0;
  if (!IsLive(group) || IsOffline(*group)) return 0;
  std::uint32_t available = 0;
  for (const SystemRecord &system : ListView<SystemRecord>(CandidatesOf(*group))) {
    if (IsAvailable(*group, system)) ++available;
  }
  return available;
}

std::uint32_t GetAvailAsgServers(KVR_GROUP group, KVR_SYSTEM *systems, std::uint32_t *count) {
  if (g_isBackupMsc != 0) return KVR_ERR_IS_BACKUP_MSC;
  if (!IsLive(group)) return KVR_ERR_INVALID_HANDLE;
  const OrderedList *candidates = IsOffline(*group) ? nullptr : CandidatesOf(*group);
  return CopyOut(candidates, systems, count, KVR_ERR_MORE_SYSTEMS,
                 [&](const SystemRecord &system) { return IsAvailable(*group, system); });
}

}  // namespace kvr
