#include "config/configuration.h"

#include "kvrapi/kvrapi.h"

#include "config/key_material.h"
#include "model/group_record.h"
#include "model/local_state.h"
#include "model/system_registry.h"
#include "platform/memory.h"
#include "tables/group_tree_rebuild.h"
#include "tables/host_tables.h"

namespace kvr {
namespace {

// Fills the local table with a new configuration in which this host alone holds a slot.
void BuildLocalSaTable() {
  SecureZero(&g_localSaTable, sizeof g_localSaTable);
  g_localIndex = static_cast<std::int32_t>(RandomGenerator().Draw() % KVR_SLOT_COUNT);
  g_localSaTable.header.formatId = KVR_SA_TABLE_FORMAT_ID;
  g_localSaTable.header.formatRevision = KVR_SA_TABLE_FORMAT_REVISION;
  MakeConfigId(g_localSaTable.header.configId, false);
  Scratch<KeyTable> keys;
  GenerateKeyTable(*keys);
  for (std::uint32_t n = 0; n < KVR_POSITION_COUNT; ++n) {
    g_localSaTable.entries[n].slotIndex = n;
    g_localSaTable.entries[n].key = keys->entries[n];
  }
  g_localSaTable.entries[g_localIndex].access.roleFlags = ACE_SELF | ACE_MSC;
}

// Removes the table of every host of the ACG; returns whether all of them let it go.
bool RemoveAllHostTables() {
  bool allRemoved = true;
  for (SystemRecord &system : Systems()) {
    if (system.inAcg == 0) continue;
    if (RemoveHostSaTable(system) == KVR_OK) {
      ResetMembership(system);
    } else {
      system.lastOpFailed = 1;
      allRemoved = false;
    }
  }
  return allRemoved;
}

void EmptyModel() {
  FreeGroupTree(g_topGroups);
  g_topGroups = nullptr;
  RebuildGroupTree();
  if (g_backupMscList != nullptr) {
    ListDestroy(g_backupMscList, 0);
    g_backupMscList = ListCreate(CompareSystems);
  }
}

void ClearRole() {
  g_localIndex = -1;
  g_securityActive = 0;
  g_isSecureClient = 0;
  g_isMsc = 0;
  g_switchAccessEnabled = 0;
  g_secureCount = 0;
  g_unsecureCount = g_systemCount;
}

}  // namespace

std::uint32_t CreateKVR(std::int32_t *slot) {
  if (IsNotMscOfActive()) return KVR_ERR_NOT_MSC;
  if (g_isMsc != 0) return KVR_ERR_ALREADY_MSC;
  BuildLocalSaTable();
  const std::uint32_t result = StoreLocalSaTable();
  if (result == KVR_ERR_LOCAL_WRITE_FAILED) return KVR_ERR_CREATE_LOCAL_FAILED;
  if (result != KVR_OK) return result;
  g_securityActive = 1;
  g_isSecureClient = 1;
  g_isMsc = 1;
  if (slot != nullptr) *slot = g_localIndex;
  return KVR_OK;
}

std::uint32_t DeleteKVR() {
  if (IsNotMscOfActive()) return KVR_ERR_NOT_MSC;
  if (g_isSecureClient == 0) return KVR_ERR_NOT_SECURED;
  if (!RemoveAllHostTables()) return KVR_ERR_SERVERS_FAILED;
  EmptyModel();
  SecureZero(&g_localSaTable, sizeof g_localSaTable);
  if (const std::uint32_t result = RemoveLocalSaTable()) return result;
  ClearRole();
  return KVR_OK;
}

}  // namespace kvr
