// The registry: one record per host that the discovery library delivered, and the backup MSCs among
// them. Discovery fills it, the configuration's operations change it in place.
#pragma once

#include <cstdint>

#include "model/ordered_list.h"
#include "model/system_record.h"

namespace kvr {

extern OrderedList *g_systemList;      // owns its records; null before the first discovery
extern OrderedList *g_backupMscList;   // refers to records of g_systemList; null likewise
extern std::uint32_t g_systemCount;    // records of g_systemList
extern std::uint32_t g_secureCount;    // of them in the ACG
extern std::uint32_t g_unsecureCount;  // of them outside

// The registry's systems in order, for range-for.
inline ListView<SystemRecord> Systems() {
  return ListView<SystemRecord>(g_systemList);
}

// Notes that a system serves the holder of a slot as a server of one group more, or no longer. What
// was noted already as ended is not counted twice.
void BeginService(SystemRecord &system, std::int32_t slot);
void EndService(SystemRecord &system, std::int32_t slot);

// Takes every mark of the configuration off a record: it is outside the ACG and holds nothing.
void ResetMembership(SystemRecord &system);

}  // namespace kvr
