#include "config/msc_succession.h"

#include "config/backup_push.h"
#include "model/local_state.h"
#include "model/release.h"
#include "model/system_registry.h"
#include "tables/host_tables.h"
#include "tables/slot_rules.h"
#include "tables/synchronization.h"

namespace kvr {
namespace {

// Marks the shared slot of the MSC and its backups as the MSC's own.
void MarkAsMsc(AccessControlTable &table) {
  table.entries[g_localIndex].roleFlags = ACE_SELF | ACE_MSC;
}

// The role in this host's own table alone: the MSC that it replaces need not be there any more.
std::uint32_t TakeOver() {
  return ChangeAccessTable(LOCAL_SYSTEM, [](AccessControlTable &local) {
    local.entries[g_localIndex].serveFlags = 0;
    MarkAsMsc(local);
  });
}

// Makes a backup's table the MSC's: a fresh copy of the local one, which serves nobody.
std::uint32_t WriteNewMsc(SystemRecord &backup) {
  if (const std::uint32_t result = PushAccessTableToBackup(backup)) return result;
  return ChangeAccessTable(&backup, [](AccessControlTable &table) {
    for (std::uint32_t slot = 0; slot < KVR_SLOT_COUNT; ++slot) {
      table.entries[slot].serveFlags = 0;
    }
    MarkAsMsc(table);
  });
}

// Leaves this host a server of the new MSC. That its own table could not be stored is not reported:
// the role has gone.
void StepDown() {
  ChangeAccessTable(LOCAL_SYSTEM, [](AccessControlTable &local) {
    ClearRoles(local);
    local.entries[g_localIndex].serveFlags = ACE_SERVES;
  });
}

}  // namespace

std::uint32_t AssignNewMSC(KVR_SYSTEM system) {
  if (g_isMsc == 0 && g_isBackupMsc == 0) return KVR_ERR_NOT_MSC;
  // A backup MSC that handed the role on has no slot to hand on or take any more.
  if (!IsSlot(g_localIndex)) return KVR_ERR_NOT_MSC;
  if (g_isMsc != 0 && system == nullptr) return KVR_ERR_NO_NEW_MSC;
  if (system == nullptr) return TakeOver();
  if (!IsLive(system)) return KVR_ERR_INVALID_HANDLE;
  if (ListFind(g_backupMscList, system) == nullptr) return KVR_ERR_NOT_BACKUP_MSC;

  if (const std::uint32_t result = WriteNewMsc(*system)) return result;
  StepDown();
  SynchronizeAllHosts();
  g_isMsc = 0;
  g_isSecureClient = 0;
  g_localIndex = -1;
  ReleaseModel();
  return KVR_OK;
}

}  // namespace kvr
