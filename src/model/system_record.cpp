#include "model/system_record.h"

#include <algorithm>
#include <cstring>

#include "platform/memory.h"
#include "platform/text.h"

namespace kvr {
namespace {

bool HasReachId(const SystemRecord &system, const std::uint8_t (&wanted)[8]) {
  for (std::uint32_t i = 0; i < AdapterCountOf(system); ++i) {
    const AdapterInfo &adapter = system.discovered.adapters[i];
    const std::uint32_t count = std::min(adapter.reachIdCount, VEXO_MAX_REACH_IDS);
    for (std::uint32_t j = 0; j < count; ++j) {
      if (std::memcmp(adapter.reachIds[j], wanted, sizeof wanted) == 0) return true;
    }
  }
  return false;
}

}  // namespace

SystemRecord *NewSystemRecord(const DiscoveredSystem &discovered) {
  auto *system = static_cast<SystemRecord *>(Allocate(sizeof(SystemRecord)));
  std::memcpy(&system->discovered, &discovered, sizeof discovered);
  constexpr std::size_t rest = offsetof(SystemRecord, inAcg);
  std::memset(reinterpret_cast<char *>(system) + rest, 0, sizeof(SystemRecord) - rest);
  system->magic = SYSTEM_MAGIC;
  system->saIndex = -1;
  return system;
}

bool IsLive(const SystemRecord *system) {
  if (system == nullptr || system == LOCAL_SYSTEM || system == OFFLINE_CLIENT) return false;
  return system->magic == SYSTEM_MAGIC;
}

std::uint32_t AdapterCountOf(const SystemRecord &system) {
  return std::min(system.discovered.adapterCount, VEXO_MAX_ADAPTERS);
}

bool ShareReachId(const SystemRecord &a, const SystemRecord &b) {
  for (std::uint32_t i = 0; i < AdapterCountOf(a); ++i) {
    const AdapterInfo &adapter = a.discovered.adapters[i];
    const std::uint32_t count = std::min(adapter.reachIdCount, VEXO_MAX_REACH_IDS);
    for (std::uint32_t j = 0; j < count; ++j) {
      if (HasReachId(b, adapter.reachIds[j])) return true;
    }
  }
  return false;
}

std::int32_t CompareSystems(const void *a, const void *b) {
  if (a == b) return 0;
  const DiscoveredSystem &left = static_cast<const SystemRecord *>(a)->discovered;
  const DiscoveredSystem &right = static_cast<const SystemRecord *>(b)->discovered;
  const bool wide = left.systemNameW[0] != 0 && right.systemNameW[0] != 0;
  const int order =
      wide ? CompareOrdinal(left.systemNameW, right.systemNameW, VEXO_SYSTEM_NAME_CAPACITY)
           : CompareOrdinal(left.systemName, right.systemName, VEXO_SYSTEM_NAME_CAPACITY);
  return order != 0 ? order : -1;
}

}  // namespace kvr
