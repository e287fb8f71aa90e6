#include "model/system_registry.h"

#include <algorithm>

namespace kvr {

OrderedList *g_systemList = nullptr;
OrderedList *g_backupMscList = nullptr;
std::uint32_t g_systemCount = 0;
std::uint32_t g_secureCount = 0;
std::uint32_t g_unsecureCount = 0;

void ResetMembership(SystemRecord &system) {
  system.inAcg = 0;
  system.lastOpFailed = 0;
  system.saIndex = -1;
  system.asgServerCount = 0;
  system.clientGroup = nullptr;
  std::ranges::fill(system.indexBitmap, 0U);
}

}  // namespace kvr
