#include "discovery/collector.h"

#include <vector>

#include "kvrapi/kvrapi.h"
#include "kvrapi/vexonet.h"

#include "config/backup_push.h"
#include "model/local_state.h"
#include "model/system_order.h"
#include "model/system_registry.h"
#include "platform/memory.h"
#include "tables/group_tree_rebuild.h"
#include "tables/host_tables.h"

namespace kvr {
namespace {

// The one buffer of the walk: too large for the stack of a thread that is not ours.
DiscoveredSystem g_delivered;

// What is met during the walk, put into the lists at its end.
struct Collected {
  std::vector<SystemRecord *> systems;
  std::vector<SystemRecord *> backups;
};

// Learns from a member's table whom it serves, which slot it holds and whether it is a backup MSC.
// A table that cannot be read says nothing.
void ScanMembership(SystemRecord &system, Collected &collected) {
  AccessControlTable table = {};
  if (ReadAccessTable(&system, table) != KVR_OK) return;
  for (std::uint32_t i = 0; i < KVR_SLOT_COUNT; ++i) {
    const AccessEntry &entry = table.entries[i];
    if ((entry.serveFlags | entry.roleFlags) == 0) continue;
    if ((entry.serveFlags & ACE_SERVES) != 0) SetIndexBit(system.indexBitmap, i);
    if ((entry.roleFlags & ACE_SELF) != 0) system.saIndex = static_cast<std::int32_t>(i);
    if ((entry.roleFlags & ACE_BACKUP_MSC) != 0) collected.backups.push_back(&system);
  }
}

// Only whether a header can be read counts: a host without a table has none.
bool IsMember(SystemRecord &system) {
  SaTableHeader header;
  return g_securityActive != 0 && ReadSaHeader(&system, header) == KVR_OK;
}

void Collect(const DiscoveredSystem &delivered, Collected &collected) {
  if (delivered.excluded != 0) return;
  SystemRecord *system = NewSystemRecord(delivered);
  collected.systems.push_back(system);
  if (IsMember(*system)) {
    system->inAcg = 1;
    ++g_secureCount;
    if (g_isSecureClient != 0) ScanMembership(*system, collected);
  } else {
    ++g_unsecureCount;
  }
  ++g_systemCount;
}

void WalkDeliveredSystems(Collected &collected) {
  for (bool more = Vexo_GetFirstSystem(&g_delivered) != 0; more;
       more = Vexo_GetNextSystem(&g_delivered) != 0) {
    Collect(g_delivered, collected);
  }
  SecureZero(&g_delivered, sizeof g_delivered);
}

}  // namespace

void CollectSystems() {
  g_systemList = ListCreate(CompareSystems);
  g_backupMscList = ListCreate(CompareSystems);
  g_systemCount = 0;
  g_unsecureCount = 0;
  g_secureCount = 0;
  Collected collected;
  WalkDeliveredSystems(collected);
  ListFillSystems(*g_systemList, collected.systems);
  ListFillSystems(*g_backupMscList, collected.backups);
  RebuildGroupTree();
  if (g_isMsc != 0) PushAccessTableToAllBackups();
}

}  // namespace kvr
