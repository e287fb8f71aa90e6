#include "config/key_renewal.h"

#include "kvrapi/kvrapi.h"

#include "config/key_material.h"
#include "model/local_state.h"
#include "model/system_registry.h"
#include "platform/memory.h"
#include "tables/host_tables.h"

namespace kvr {
namespace {

struct WalkOutcome {
  bool anyAccepted = false;
  bool anyFailed = false;
};

WalkOutcome WriteToAllHosts(const KeyTable &keys) {
  WalkOutcome outcome;
  for (SystemRecord &system : Systems()) {
    if (system.inAcg == 0) continue;
    const bool accepted = WriteHostKeyTable(system, keys) == KVR_OK;
    system.lastOpFailed = accepted ? 0 : 1;
    (accepted ? outcome.anyAccepted : outcome.anyFailed) = true;
  }
  return outcome;
}

}  // namespace

std::uint32_t GenerateNewKeys() {
  if (IsNotMscOfActive()) return KVR_ERR_NOT_MSC;
  Scratch<KeyTable> keys;
  GenerateKeyTable(*keys);
  const WalkOutcome outcome = WriteToAllHosts(*keys);
  if (outcome.anyAccepted) {
    for (std::uint32_t n = 0; n < KVR_POSITION_COUNT; ++n) {
      g_localSaTable.entries[n].key = keys->entries[n];
    }
    StoreLocalSaTable();
  }
  return outcome.anyFailed ? KVR_ERR_SERVERS_FAILED : KVR_OK;
}

}  // namespace kvr
