// What the library knows of the host it runs on: its adapters, its own table and the role that the
// table gives it. The load fills it once per process; the role is not derived again later.
#pragma once

#include <cstdint>

#include "kvrapi/table_formats.h"
#include "kvrapi/tqlink.h"

namespace kvr {

extern std::uint32_t g_apiInitialized;    // the gate: set by the first accepted load, never cleared
extern std::uint32_t g_localStateLoaded;  // the one load has run
extern std::uint32_t g_initResult;        // its result

extern LocalAdapterInfo *g_localAdapters[TQ_MAX_LOCAL_ADAPTERS];  // owned; only the first is used
extern std::uint32_t g_localAdapterCount;                         // as reported, at most 100
extern SaTable g_localSaTable;  // the local table as loaded and as every local write leaves it

extern std::uint32_t g_securityActive;       // a configuration is present on this host
extern std::uint32_t g_isSecureClient;       // this host holds a slot of its own
extern std::uint32_t g_isMsc;                // this host is the MSC
extern std::uint32_t g_isBackupMsc;          // this host was a backup MSC at the load
extern std::uint32_t g_switchAccessEnabled;  // as last set; nonzero: enabled
extern std::int32_t g_localIndex;            // this host's slot, -1 when it holds none

// Whether a configuration is active here that another host owns: its changes are refused with 5000.
inline bool IsNotMscOfActive() {
  return g_securityActive != 0 && g_isMsc == 0;
}

// Whether index names a slot of a table.
inline bool IsSlot(std::int32_t index) {
  return index >= 0 && index < static_cast<std::int32_t>(KVR_SLOT_COUNT);
}

// 0 while a configuration is active on this host, else 5004.
std::uint32_t SecurityState();

}  // namespace kvr
