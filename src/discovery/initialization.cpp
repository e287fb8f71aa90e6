#include "discovery/initialization.h"

#include <algorithm>

#include "kvrapi/kvrapi.h"
#include "kvrapi/tqlink.h"

#include "discovery/discovery.h"
#include "model/group_record.h"
#include "model/local_state.h"
#include "model/release.h"
#include "platform/library_entry.h"
#include "platform/memory.h"
#include "tables/host_tables.h"

namespace kvr {
namespace {

void LoadLocalAdapters() {
  for (std::uint32_t i = 0; i < g_localAdapterCount; ++i) {
    g_localAdapters[i] = static_cast<LocalAdapterInfo *>(AllocateZeroed(sizeof(LocalAdapterInfo)));
    std::uint32_t request[2] = {0, i};
    if (TQ_GetLocalHBAInfo(request, g_localAdapters[i]) == 0) return;
  }
}

// The slot that the local table calls this host's own, and what it makes of this host.
void DeriveRoleFrom(const AccessEntry &entry, std::int32_t slot) {
  if ((entry.serveFlags & ACE_SERVES) != 0) g_securityActive = 1;
  if ((entry.roleFlags & ACE_SELF) == 0) return;
  g_localIndex = slot;
  g_securityActive = 1;
  g_isSecureClient = 1;
  if ((entry.roleFlags & ACE_MSC) != 0) {
    g_isMsc = 1;
  } else if ((entry.roleFlags & ACE_BACKUP_MSC) != 0) {
    g_isBackupMsc = 1;
  }
}

void DeriveRole() {
  for (std::uint32_t n = 0; n < KVR_SLOT_COUNT; ++n) {
    DeriveRoleFrom(g_localSaTable.entries[n].access, static_cast<std::int32_t>(n));
  }
  const AccessEntry &switchEntry = g_localSaTable.entries[KVR_SWITCH_POSITION].access;
  if ((switchEntry.serveFlags & ACE_SWITCH_ACCESS) != 0) g_switchAccessEnabled = 1;
}

std::uint32_t LoadRole() {
  const std::uint32_t result = LoadLocalSaTable();
  if (result == KVR_OK) {
    DeriveRole();
    return KVR_OK;
  }
  // What a failed read left behind is nobody's table.
  SecureZero(&g_localSaTable, sizeof g_localSaTable);
  g_securityActive = 0;
  g_isSecureClient = 0;
  g_isMsc = 0;
  return result;
}

}  // namespace

std::uint32_t LoadLocalState() {
  if (g_localStateLoaded == 1) return g_initResult;
  g_localSaTable = {};
  std::ranges::fill(g_localAdapters, nullptr);
  g_topGroups = ListCreate(CompareGroups);
  g_topGroupCount = 0;
  TQ_InitLib();
  g_localAdapterCount = std::min(TQ_GetNumberOfLocalAdapters(), TQ_MAX_LOCAL_ADAPTERS);
  if (g_localAdapterCount == 0) {
    g_initResult = KVR_ERR_NO_LOCAL_ADAPTER;
  } else {
    LoadLocalAdapters();
    g_initResult = LoadRole();
  }
  g_localStateLoaded = 1;
  return g_initResult;
}

std::uint32_t Initialize() {
  if (g_apiInitialized != 0) return KVR_OK;
  const std::uint32_t result = LoadLocalState();
  if (result == KVR_OK || result == KVR_ERR_NOT_SECURED) g_apiInitialized = 1;
  return result;
}

void ReleaseLocalState() {
  ReleaseModel();
  for (std::uint32_t i = 0; i < g_localAdapterCount; ++i) {
    Release(g_localAdapters[i]);
    g_localAdapters[i] = nullptr;
  }
  g_localAdapterCount = 0;
  g_localStateLoaded = 0;
  g_discoveryDone = 0;
}

void OnProcessDetach() {
  // A thread that is still at work on the model and the tables goes on with them until the process
  // ends.
  if (!RefuseEvents()) return;
  ReleaseLocalState();
  SecureZero(&g_localSaTable, sizeof g_localSaTable);
}

}  // namespace kvr
