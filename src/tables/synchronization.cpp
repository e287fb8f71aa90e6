#include "tables/synchronization.h"

#include "kvrapi/tqlink.h"

#include "model/local_state.h"
#include "model/system_registry.h"
#include "tables/adapter_loop.h"

namespace kvr {
namespace {

std::uint32_t Synchronize(const AdapterAddress &a) {
  return TQ_syncSecurityConfig(a.cred0, a.cred1, a.id0, a.id1);
}

}  // namespace

void SynchronizeAllHosts() {
  for (const SystemRecord &system : Systems()) {
    TryAdapters(system, Synchronize);
    if (g_localAdapterCount != 0) Synchronize(LocalAddress());
  }
}

}  // namespace kvr
