#include "config/switch_access.h"

#include "kvrapi/kvrapi.h"

#include "model/local_state.h"
#include "model/system_registry.h"
#include "tables/host_tables.h"

namespace kvr {
namespace {

void SetSwitchAccess(AccessEntry &entry) {
  if (g_switchAccessEnabled != 0) {
    entry.serveFlags |= ACE_SWITCH_ACCESS;
  } else {
    entry.serveFlags &= ~ACE_SWITCH_ACCESS;
  }
}

std::uint32_t WriteSwitchAccess(SystemRecord &system) {
  return ChangeAccessTable(&system, [](AccessControlTable &table) {
    SetSwitchAccess(table.entries[KVR_SWITCH_POSITION]);
  });
}

}  // namespace

std::uint32_t EnableSwitchAccess(std::uint32_t enable) {
  if (IsNotMscOfActive()) return KVR_ERR_NOT_MSC;
  if (enable == g_switchAccessEnabled) return KVR_OK;
  g_switchAccessEnabled = enable;
  bool anyFailed = false;
  for (SystemRecord &system : Systems()) {
    if (system.inAcg == 0) continue;
    const bool failed = WriteSwitchAccess(system) != KVR_OK;
    system.lastOpFailed = failed ? 1 : 0;
    anyFailed = anyFailed || failed;
  }
  SetSwitchAccess(g_localSaTable.entries[KVR_SWITCH_POSITION].access);
  StoreLocalSaTable();
  return anyFailed ? KVR_ERR_SERVERS_FAILED : KVR_OK;
}

}  // namespace kvr
