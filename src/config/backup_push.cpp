#include "config/backup_push.h"

#include "kvrapi/kvrapi.h"

#include "model/local_state.h"
#include "model/system_registry.h"
#include "tables/host_tables.h"

namespace kvr {

std::uint32_t PushAccessTableToBackup(SystemRecord &backup) {
  if (!IsSlot(g_localIndex)) return KVR_ERR_NOT_SECURED;
  AccessControlTable table = {};
  // What the backup holds is replaced whole; the read only establishes that it answers.
  if (const std::uint32_t result = ReadAccessTable(&backup, table)) return result;
  GetLocalAccessTable(table);
  AccessEntry &own = table.entries[g_localIndex];
  own.roleFlags = (own.roleFlags | ACE_BACKUP_MSC) & ~ACE_MSC;
  own.serveFlags |= ACE_SERVES;
  return WriteAccessTable(&backup, table);
}

void PushAccessTableToAllBackups() {
  for (SystemRecord &backup : ListView<SystemRecord>(g_backupMscList)) {
    PushAccessTableToBackup(backup);
  }
}

}  // namespace kvr
