#include "model/system_registry.h"

#include <algorithm>

namespace kvr {

OrderedList *g_systemList = nullptr;
OrderedList *g_backupMscList = nullptr;
std::uint32_t g_systemCount = 0;
std::uint32_t g_secureCount = 0;
std::uint32_t g_unsecureCount = 0;

void BeginService(SystemRecord &system, std::int32_t slot) {
  SetIndexBit(system.indexBitmap, static_cast<std::uint32_t>(slot));
  ++system.asgServerCount;
}

void EndService(SystemRecord &system, std::int32_t slot) {
  if (!TestIndexBit(system.indexBitmap, slot)) return;
  ClearIndexBit(system.indexBitmap, static_cast<std::uint32_t>(slot));
  --system.asgServerCount;
}

void ResetMembership(SystemRecord &system) {
  system.inAcg = 0;
  system.lastOpFailed = 0;
  system.saIndex = -1;
  system.asgServerCount = 0;
  system.clientGroup = nullptr;
  std::ranges::fill(system.indexBitmap, 0U);
}

}  // namespace kvr
