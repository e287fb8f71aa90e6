#include "config/backup_mscs.h"

#include "config/acg_membership.h"
#include "config/backup_push.h"
#include "model/group_search.h"
#include "model/local_state.h"
#include "model/system_registry.h"
#include "tables/host_tables.h"
#include "tables/slot_rules.h"

namespace kvr {

std::uint32_t AddBackupMSC(KVR_SYSTEM system) {
  if (IsNotMscOfActive()) return KVR_ERR_NOT_MSC;
  if (g_isMsc == 0) return KVR_ERR_NOT_SECURED;
  if (g_backupMscList == nullptr) g_backupMscList = ListCreate(CompareSystems);
  if (!IsLive(system)) return KVR_ERR_INVALID_HANDLE;
  if (ListFind(g_backupMscList, system) != nullptr) return KVR_ERR_ALREADY_BACKUP_MSC;
  if (system->saIndex >= 0) return KVR_ERR_SYSTEM_IS_CLIENT;
  if (IsInChildGroups(nullptr, system, GroupRole::Server) != 0) return KVR_ERR_SYSTEM_IS_ASG_SERVER;
  if (system->inAcg == 0) {
    if (const std::uint32_t result = AddServerToACG(system)) return result;
  }
  if (const std::uint32_t result = PushAccessTableToBackup(*system)) return result;
  system->saIndex = g_localIndex;
  ListInsertSorted(g_backupMscList, system);
  return KVR_OK;
}

std::uint32_t RemoveBackupMSC(KVR_SYSTEM system) {
  if (IsNotMscOfActive()) return KVR_ERR_NOT_MSC;
  if (!IsLive(system)) return KVR_ERR_INVALID_HANDLE;
  ListNode *node = ListFind(g_backupMscList, system);
  if (node == nullptr) return KVR_ERR_NOT_BACKUP_MSC;
  if (const std::uint32_t result = ChangeAccessTable(system, ClearRoles)) return result;
  system->saIndex = -1;
  ListUnlink(node, 0);
  return KVR_OK;
}

}  // namespace kvr
