#include "config/acg_membership.h"

#include "config/key_material.h"
#include "model/group_search.h"
#include "model/local_state.h"
#include "model/system_registry.h"
#include "platform/memory.h"
#include "tables/host_tables.h"

namespace kvr {
namespace {

// The table of a host that joins: the configuration's identity and keys, and one relation, to serve
// the MSC.
void BuildMemberTable(SaTable &image) {
  image.header.formatId = KVR_SA_TABLE_FORMAT_ID;
  image.header.formatRevision = KVR_SA_TABLE_FORMAT_REVISION;
  MakeConfigId(image.header.configId, true);
  for (std::uint32_t n = 0; n < KVR_POSITION_COUNT; ++n) {
    image.entries[n].slotIndex = n;
    image.entries[n].key = g_localSaTable.entries[n].key;
  }
  image.entries[g_localIndex].access.serveFlags = ACE_SERVES;
  if (g_switchAccessEnabled != 0) {
    image.entries[KVR_SWITCH_POSITION].access.serveFlags = ACE_SWITCH_ACCESS;
  }
}

}  // namespace

std::uint32_t AddServerToACG(KVR_SYSTEM system) {
  if (IsNotMscOfActive()) return KVR_ERR_NOT_MSC;
  if (g_isMsc == 0) return KVR_ERR_NOT_SECURED;
  if (!IsLive(system)) return KVR_ERR_INVALID_HANDLE;
  if (system->inAcg != 0) return KVR_ERR_ALREADY_IN_ACG;
  Scratch<SaTable> image;
  BuildMemberTable(*image);
  if (const std::uint32_t result = WriteHostSaTable(*system, *image)) return result;
  system->inAcg = 1;
  ++g_secureCount;
  --g_unsecureCount;
  SetIndexBit(system->indexBitmap, static_cast<std::uint32_t>(g_localIndex));
  return KVR_OK;
}

std::uint32_t RemoveServerFromACG(KVR_SYSTEM system) {
  if (IsNotMscOfActive()) return KVR_ERR_NOT_MSC;
  if (!IsLive(system)) return KVR_ERR_INVALID_HANDLE;
  if (system->inAcg == 0) return KVR_ERR_NOT_IN_ACG;
  if (system->saIndex >= 0) return KVR_ERR_SYSTEM_IS_CLIENT;
  if (const std::uint32_t result = RemoveHostSaTable(*system)) return result;
  --g_secureCount;
  ++g_unsecureCount;
  RemoveServerFromAllGroups(g_topGroups, system);
  ResetMembership(*system);
  return KVR_OK;
}

}  // namespace kvr
