// Which slots of a table are free and which are used.
//
// The MSC gives slots out of its own table, where every untouched slot is free. Any other client
// gives them out of the reserve that was set aside for it.
#pragma once

#include <algorithm>
#include <cstdint>

#include "kvrapi/table_formats.h"

namespace kvr {

enum class PoolMode {
  MscTopLevel,  // the local table, read while this host is the MSC
  Reserve       // the table of any other client
};

inline bool IsReserved(const AccessEntry &entry) {
  return (entry.roleFlags & ACE_RESERVED) != 0;
}

inline bool IsChild(const AccessEntry &entry) {
  return (entry.roleFlags & ACE_CHILD) != 0;
}

// Whether a slot of the pool went to a child, as its own slot or into its reserve.
inline bool IsHandedOn(const AccessEntry &entry) {
  return (entry.roleFlags & (ACE_CHILD | ACE_DELEGATED)) != 0;
}

inline bool IsFreeSlot(const AccessEntry &entry, PoolMode mode) {
  if (mode == PoolMode::MscTopLevel) return entry.serveFlags == 0 && entry.roleFlags == 0;
  return IsReserved(entry) && !IsHandedOn(entry);
}

inline bool IsUsedSlot(const AccessEntry &entry, PoolMode mode) {
  if (mode == PoolMode::MscTopLevel) return entry.roleFlags != 0;
  return IsReserved(entry) && IsHandedOn(entry);
}

// Number of slots, 0 to 246, whose entry meets the rule in the mode.
inline std::uint32_t CountSlots(const AccessControlTable &table, PoolMode mode,
                                bool (*rule)(const AccessEntry &, PoolMode)) {
  const auto count = std::count_if(table.entries, table.entries + KVR_SLOT_COUNT,
                                   [&](const AccessEntry &entry) { return rule(entry, mode); });
  return static_cast<std::uint32_t>(count);
}

// Takes every relation off the slots: their roleFlags become 0.
inline void ClearRoles(AccessControlTable &table) {
  for (std::uint32_t slot = 0; slot < KVR_SLOT_COUNT; ++slot) {
    table.entries[slot].roleFlags = 0;
  }
}

}  // namespace kvr
