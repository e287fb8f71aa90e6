// The 54 exported functions. Each is a thin entry: it stands behind the gate and hands its
// arguments unchanged to the operation that answers it.
#include "kvrapi/kvrapi.h"

#include "config/acg_membership.h"
#include "config/backup_mscs.h"
#include "config/configuration.h"
#include "config/key_renewal.h"
#include "config/msc_succession.h"
#include "config/switch_access.h"
#include "discovery/discovery.h"
#include "discovery/initialization.h"
#include "groups/available_servers.h"
#include "groups/client_handover.h"
#include "groups/group_creation.h"
#include "groups/group_deletion.h"
#include "groups/group_name.h"
#include "groups/group_queries.h"
#include "groups/group_servers.h"
#include "groups/reserve_change.h"
#include "groups/slot_allocation.h"
#include "model/local_state.h"
#include "model/system_queries.h"

namespace {

using namespace kvr;

// An export that returns a result code.
template <class Operation, class... Arguments>
std::uint32_t Result(Operation operation, Arguments... arguments) {
  return g_apiInitialized != 0 ? operation(arguments...) : KVR_ERR_NOT_INITIALIZED;
}

// An export that returns a count, a flag or a handle.
template <class Operation, class... Arguments>
auto Value(Operation operation, Arguments... arguments) -> decltype(operation(arguments...)) {
  if (g_apiInitialized == 0) return {};
  return operation(arguments...);
}

// An export that returns a variable.
std::uint32_t Flag(const std::uint32_t &variable) {
  return g_apiInitialized != 0 ? variable : 0;
}

}  // namespace

std::uint32_t KVR_Initialize() noexcept {
  return Initialize();
}
std::uint32_t KVR_SecurityState() noexcept {
  return Result(SecurityState);
}
std::uint32_t KVR_IsSecureClient() noexcept {
  return Flag(g_isSecureClient);
}
std::uint32_t KVR_IsMSC() noexcept {
  return Flag(g_isMsc);
}
std::uint32_t KVR_IsBackupMSC() noexcept {
  return Flag(g_isBackupMsc);
}

std::uint32_t KVR_DiscoverServers(KVR_DISCOVERY_CALLBACK callback,
                                  std::uintptr_t context) noexcept {
  return Result(DiscoverServers, callback, context);
}

std::uint32_t KVR_SyncDiscovery() noexcept {
  return Result(SyncDiscovery);
}

std::uint32_t KVR_GetAcgServerCount() noexcept {
  return Value(GetAcgServerCount);
}

std::uint32_t KVR_GetAcgServers(KVR_SYSTEM *systems, std::uint32_t *count) noexcept {
  return Result(GetAcgServers, systems, count);
}

std::uint32_t KVR_GetUnsecureServerCount() noexcept {
  return Value(GetUnsecureServerCount);
}

std::uint32_t KVR_GetUnsecureServers(KVR_SYSTEM *systems, std::uint32_t *count) noexcept {
  return Result(GetUnsecureServers, systems, count);
}

std::uint32_t KVR_GetSystemNameA(KVR_SYSTEM system, char *buffer, std::uint32_t size) noexcept {
  return Result(GetSystemName, system, buffer, nullptr, size);
}

std::uint32_t KVR_GetSystemNameW(KVR_SYSTEM system, KVR_WCHAR *buffer,
                                 std::uint32_t size) noexcept {
  return Result(GetSystemName, system, nullptr, buffer, size);
}

std::uint32_t KVR_GetLastOpFailedServers(KVR_SYSTEM *systems, std::uint32_t *count) noexcept {
  return Result(GetLastOpFailedServers, systems, count);
}

std::uint32_t KVR_IsClient(KVR_SYSTEM system) noexcept {
  return Value(IsClient, system);
}
std::uint32_t KVR_IsServer(KVR_SYSTEM system) noexcept {
  return Value(IsServer, system);
}

std::uint32_t KVR_CanDiscoverAllSystems(KVR_SYSTEM system) noexcept {
  return Value(CanDiscoverAllSystems, system);
}

std::uint32_t KVR_CreateKVR(std::int32_t *slot) noexcept {
  return Result(CreateKVR, slot);
}
std::uint32_t KVR_DeleteKVR() noexcept {
  return Result(DeleteKVR);
}
std::uint32_t KVR_GenerateNewKeys() noexcept {
  return Result(GenerateNewKeys);
}

std::uint32_t KVR_AddServerToACG(KVR_SYSTEM system) noexcept {
  return Result(AddServerToACG, system);
}

std::uint32_t KVR_RemoveServerFromACG(KVR_SYSTEM system) noexcept {
  return Result(RemoveServerFromACG, system);
}

std::uint32_t KVR_IsSwitchAccessEnabled() noexcept {
  return Flag(g_switchAccessEnabled);
}
std::uint32_t KVR_EnableSwitchAccess(std::uint32_t enable) noexcept {
  return Result(EnableSwitchAccess, enable);
}
std::uint32_t KVR_GetBackupMSCCount() noexcept {
  return Value(GetBackupMSCCount);
}

std::uint32_t KVR_GetBackupMSCs(KVR_SYSTEM *systems, std::uint32_t *count) noexcept {
  return Result(GetBackupMSCs, systems, count);
}

std::uint32_t KVR_AddBackupMSC(KVR_SYSTEM system) noexcept {
  return Result(AddBackupMSC, system);
}
std::uint32_t KVR_RemoveBackupMSC(KVR_SYSTEM system) noexcept {
  return Result(RemoveBackupMSC, system);
}
std::uint32_t KVR_AssignNewMSC(KVR_SYSTEM system) noexcept {
  return Result(AssignNewMSC, system);
}

std::uint32_t KVR_GetAsgCount() noexcept {
  return Value(GetAsgCount);
}

std::uint32_t KVR_GetAsgs(KVR_GROUP *groups, std::uint32_t *count) noexcept {
  return Result(GetAsgs, groups, count);
}

std::uint32_t KVR_GetAsgNameA(KVR_GROUP group, char *buffer, std::uint32_t size) noexcept {
  return Result(GetAsgName, group, buffer, nullptr, size);
}

std::uint32_t KVR_GetAsgNameW(KVR_GROUP group, KVR_WCHAR *buffer, std::uint32_t size) noexcept {
  return Result(GetAsgName, group, nullptr, buffer, size);
}

std::uint32_t KVR_RenameAsgA(KVR_GROUP group, const char *name) noexcept {
  return Result(RenameAsg, group, name, nullptr);
}
std::uint32_t KVR_RenameAsgW(KVR_GROUP group, const KVR_WCHAR *name) noexcept {
  return Result(RenameAsg, group, nullptr, name);
}
KVR_SYSTEM KVR_GetAsgClient(KVR_GROUP group) noexcept {
  return Value(GetAsgClient, group);
}

std::uint32_t KVR_GetAsgServerCount(KVR_GROUP group) noexcept {
  return Value(GetAsgServerCount, group);
}

std::uint32_t KVR_GetAsgServers(KVR_GROUP group, KVR_SYSTEM *systems,
                                std::uint32_t *count) noexcept {
  return Result(GetAsgServers, group, systems, count);
}

std::uint32_t KVR_GetAvailAsgServerCount(KVR_GROUP group) noexcept {
  return Value(GetAvailAsgServerCount, group);
}

std::uint32_t KVR_GetAvailAsgServers(KVR_GROUP group, KVR_SYSTEM *systems,
                                     std::uint32_t *count) noexcept {
  return Result(GetAvailAsgServers, group, systems, count);
}

std::uint32_t KVR_GetFreeIndexCount(KVR_GROUP group) noexcept {
  return Value(GetFreeIndexCount, group);
}

std::uint32_t KVR_GetUsedIndexCount(KVR_GROUP group) noexcept {
  return Value(GetUsedIndexCount, group);
}

std::uint32_t KVR_CreateAsgA(KVR_GROUP parent, const char *name, KVR_SYSTEM client,
                             std::uint32_t *reservedCount, KVR_GROUP *group) noexcept {
  return Result(CreateAsg, parent, name, nullptr, client, reservedCount, group);
}

std::uint32_t KVR_CreateAsgW(KVR_GROUP parent, const KVR_WCHAR *name, KVR_SYSTEM client,
                             std::uint32_t *reservedCount, KVR_GROUP *group) noexcept {
  return Result(CreateAsg, parent, nullptr, name, client, reservedCount, group);
}

std::uint32_t KVR_DeleteAsg(KVR_GROUP group) noexcept {
  return Result(DeleteAsg, group);
}

std::uint32_t KVR_AddServerToAsg(KVR_GROUP group, KVR_SYSTEM system) noexcept {
  return Result(AddServerToAsg, group, system);
}

std::uint32_t KVR_RemoveServerFromAsg(KVR_GROUP group, KVR_SYSTEM system) noexcept {
  return Result(RemoveServerFromAsg, group, system);
}

std::uint32_t KVR_ModifyReservedIndexCount(KVR_GROUP group, std::uint32_t *count) noexcept {
  return Result(ModifyReservedIndexCount, group, count);
}

std::uint32_t KVR_AssignNewClient(KVR_GROUP group, KVR_SYSTEM system) noexcept {
  return Result(AssignNewClient, group, system);
}

std::uint32_t KVR_IsClientInChildAsg(KVR_GROUP group, KVR_SYSTEM system) noexcept {
  return Value(IsClientInChildAsg, group, system);
}

std::uint32_t KVR_IsServerInChildAsg(KVR_GROUP group, KVR_SYSTEM system) noexcept {
  return Value(IsServerInChildAsg, group, system);
}

std::uint32_t KVR_GetChildAsgCount(KVR_GROUP group) noexcept {
  return Value(GetChildAsgCount, group);
}

std::uint32_t KVR_GetChildAsgs(KVR_GROUP group, KVR_GROUP *groups, std::uint32_t *count) noexcept {
  return Result(GetChildAsgs, group, groups, count);
}

std::uint32_t KVR_IsAsgOffline(KVR_GROUP group) noexcept {
  return Value(IsAsgOffline, group);
}
