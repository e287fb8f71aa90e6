// Queries over the registry, as the exports of the same names answer them behind the gate.
#pragma once

#include <cstdint>

#include "kvrapi/kvrapi.h"

namespace kvr {

std::uint32_t GetAcgServerCount();
std::uint32_t GetAcgServers(KVR_SYSTEM *systems, std::uint32_t *count);
std::uint32_t GetUnsecureServerCount();
std::uint32_t GetUnsecureServers(KVR_SYSTEM *systems, std::uint32_t *count);
std::uint32_t GetLastOpFailedServers(KVR_SYSTEM *systems, std::uint32_t *count);
std::uint32_t GetBackupMSCCount();
std::uint32_t GetBackupMSCs(KVR_SYSTEM *systems, std::uint32_t *count);
std::uint32_t IsClient(KVR_SYSTEM system);
std::uint32_t IsServer(KVR_SYSTEM system);
std::uint32_t CanDiscoverAllSystems(KVR_SYSTEM system);

// One of the two buffers is given, the other is null.
std::uint32_t GetSystemName(KVR_SYSTEM system, char *ascii, KVR_WCHAR *wide, std::uint32_t size);

}  // namespace kvr
