#include "model/system_queries.h"

#include "model/copy_out.h"
#include "model/local_state.h"
#include "model/name_copy.h"
#include "model/system_registry.h"

namespace kvr {

std::uint32_t GetAcgServerCount() {
  return g_secureCount;
}

std::uint32_t GetAcgServers(KVR_SYSTEM *systems, std::uint32_t *count) {
  return CopyOut(g_systemList, systems, count, KVR_ERR_MORE_SYSTEMS,
                 [](const SystemRecord &system) { return system.inAcg != 0; });
}

std::uint32_t GetUnsecureServerCount() {
  return IsNotMscOfActive() ? 0 : g_unsecureCount;
}

std::uint32_t GetUnsecureServers(KVR_SYSTEM *systems, std::uint32_t *count) {
  if (IsNotMscOfActive()) return KVR_ERR_NOT_MSC;
  return CopyOut(g_systemList, systems, count, KVR_ERR_MORE_SYSTEMS,
                 [](const SystemRecord &system) { return system.inAcg == 0; });
}

std::uint32_t GetLastOpFailedServers(KVR_SYSTEM *systems, std::uint32_t *count) {
  return CopyOut(
      g_systemList, systems, count, KVR_ERR_MORE_SYSTEMS,
      [](const SystemRecord &system) { return system.lastOpFailed != 0; },
      [](SystemRecord &system) { system.lastOpFailed = 0; });
}

std::uint32_t GetBackupMSCCount() {
  std::uint32_t backups = 0;
  for (const ListNode *node = ListFirst(g_backupMscList); node != nullptr; node = ListNext(node)) {
    ++backups;
  }
  return backups;
}

std::uint32_t GetBackupMSCs(KVR_SYSTEM *systems, std::uint32_t *count) {
  return CopyOutAll(g_backupMscList, systems, count, KVR_ERR_MORE_SYSTEMS);
}

std::uint32_t IsClient(KVR_SYSTEM system) {
  return IsLive(system) && system->saIndex >= 0 ? 1 : 0;
}

std::uint32_t IsServer(KVR_SYSTEM system) {
  return IsLive(system) ? system->inAcg : 0;
}

std::uint32_t CanDiscoverAllSystems(KVR_SYSTEM system) {
  if (!IsLive(system)) return 0;
  for (const SystemRecord &other : Systems()) {
    if (&other != system && !ShareReachId(*system, other)) return 0;
  }
  return 1;
}

std::uint32_t GetSystemName(KVR_SYSTEM system, char *ascii, KVR_WCHAR *wide, std::uint32_t size) {
  if (ascii != nullptr) *ascii = 0;
  if (wide != nullptr) *wide = 0;
  if (!IsLive(system)) return KVR_ERR_INVALID_HANDLE;
  // A host that does not own the configuration learns nothing of hosts that are not part of it.
  if (IsNotMscOfActive() && system->inAcg == 0) return KVR_ERR_INVALID_HANDLE;
  const DiscoveredSystem &names = system->discovered;
  if (ascii != nullptr) return CopyName(names.systemName, VEXO_SYSTEM_NAME_CAPACITY, ascii, size);
  if (wide != nullptr) return CopyName(names.systemNameW, VEXO_SYSTEM_NAME_CAPACITY, wide, size);
  return KVR_OK;
}

}  // namespace kvr
