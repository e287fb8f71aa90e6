// What kvrapi.hpp promises of sessions, carried out over the C interface. Include kvrapi.hpp, not
// this.
#ifndef KVRAPI_SESSION_INLINE_HPP
#define KVRAPI_SESSION_INLINE_HPP

#include "kvrapi/kvrapi.hpp"

namespace kvrapi {
namespace detail {

// Voids all that was given out, and what an earlier discovery has still to announce. Waits for the
// end of an announcement under way, which may still give out. Returns the new one's number.
inline std::uintptr_t BeginDiscovery(std::function<void()> done) {
  State &state = TheState();
  const std::lock_guard lock(state.mutex);
  VoidHandles();
  state.done.swap(done);
  return ++state.discovery;
}

// For the discovery's end, which C announces. The library may come to that of an earlier one before
// it learns of a later one, which has taken the place of the earlier already.
inline void OnDiscovered(std::uintptr_t number) noexcept {
  State &state = TheState();
  const std::lock_guard lock(state.mutex);
  if (number != state.discovery) return;
  state.discovered = true;
  const std::function<void()> done = std::exchange(state.done, nullptr);
  if (done) done();
}

}  // namespace detail

inline Session::Session(DeferDiscovery) {
  const std::uint32_t code = KVR_Initialize();
  if (code != KVR_ERR_NOT_SECURED) detail::Require("initializing the library", code);
}

inline Session::Session() : Session(DeferDiscovery{}) {
  Discover();
}

inline void Session::Discover() {
  detail::BeginDiscovery(nullptr);
  detail::Require("discovering the hosts", KVR_DiscoverServers(nullptr, 0));
  detail::TheState().discovered = true;
}

inline void Session::Discover(std::function<void()> done) {
  const std::uintptr_t number = detail::BeginDiscovery(std::move(done));
  detail::Require("discovering the hosts", KVR_DiscoverServers(detail::OnDiscovered, number));
}

inline bool Session::HasDiscovered() const noexcept {
  return detail::TheState().discovered;
}

inline bool Session::IsSecured() const {
  return KVR_SecurityState() == KVR_OK;
}

inline bool Session::HoldsSlot() const {
  return KVR_IsSecureClient() != 0;
}

inline bool Session::IsMsc() const {
  return KVR_IsMSC() != 0;
}

inline bool Session::IsBackupMsc() const {
  return KVR_IsBackupMSC() != 0;
}

inline std::int32_t Session::CreateConfiguration() {
  std::int32_t slot = -1;
  detail::Require("creating a configuration", KVR_CreateKVR(&slot));
  return slot;
}

inline void Session::DeleteConfiguration() {
  const std::uint32_t code = KVR_DeleteKVR();
  detail::ForgetDeadGroups();
  Lists::RequireAll("deleting the configuration", code);
}

inline void Session::RenewKeys() {
  Lists::RequireAll("renewing the keys", KVR_GenerateNewKeys());
}

inline void Session::Synchronize() {
  detail::Require("synchronizing", KVR_SyncDiscovery());
}

inline bool Session::IsSwitchAccessOn() const {
  return KVR_IsSwitchAccessEnabled() != 0;
}

// The library writes only a value that differs from the stored one; the stored one is still
// refused where this host may not switch.
inline void Session::SwitchAccess(bool on) {
  const std::uint32_t stored = KVR_IsSwitchAccessEnabled();
  const std::uint32_t wanted = on ? 1 : 0;
  Lists::RequireAll("switching switch access",
                    KVR_EnableSwitchAccess((stored != 0) == on ? stored : wanted));
}

// Any number but 0 is on, but off is 0 alone, so that it has to be on in between.
inline void Session::RewriteSwitchAccess(bool on) {
  constexpr char kDoing[] = "switching switch access";
  const std::uint32_t stored = KVR_IsSwitchAccessEnabled();
  std::uint32_t code = KVR_OK;
  if (on) {
    code = KVR_EnableSwitchAccess(stored == UINT32_MAX ? 1 : stored + 1);
  } else {
    if (stored == 0) code = KVR_EnableSwitchAccess(1);
    if (code == KVR_OK || code == KVR_ERR_SERVERS_FAILED) code = KVR_EnableSwitchAccess(0);
  }
  Lists::RequireAll(kDoing, code);
}

inline std::vector<System> Session::Members() const {
  return Lists::Systems("listing the ACG", KVR_GetAcgServerCount(), KVR_GetAcgServers);
}

inline std::vector<System> Session::Outsiders() const {
  return Lists::Systems("listing the hosts outside the ACG", KVR_GetUnsecureServerCount(),
                        KVR_GetUnsecureServers);
}

inline std::vector<System> Session::BackupMscs() const {
  return Lists::Systems("listing the backup MSCs", KVR_GetBackupMSCCount(), KVR_GetBackupMSCs);
}

inline void Session::AddToAcg(const System &system) {
  detail::Require("adding a host to the ACG", KVR_AddServerToACG(system.Handle()));
}

inline void Session::RemoveFromAcg(const System &system) {
  detail::Require("removing a host from the ACG", KVR_RemoveServerFromACG(system.Handle()));
}

inline void Session::AddBackupMsc(const System &system) {
  detail::Require("making a backup MSC", KVR_AddBackupMSC(system.Handle()));
}

inline void Session::RemoveBackupMsc(const System &system) {
  detail::Require("ending the role of a backup MSC", KVR_RemoveBackupMSC(system.Handle()));
}

inline std::vector<System> Session::TakeFailedSystems() {
  return Lists::Failed();
}

inline void Session::HandOver(const System &backup) {
  detail::Require("handing the MSC's role over", KVR_AssignNewMSC(backup.Handle()));
  detail::VoidHandles();
}

inline void Session::TakeOver() {
  detail::Require("taking the MSC's role over", KVR_AssignNewMSC(nullptr));
}

inline std::vector<Group> Session::Groups() const {
  return Lists::Groups(nullptr);
}

inline SlotCount Session::Slots() const {
  return {KVR_GetFreeIndexCount(nullptr), KVR_GetUsedIndexCount(nullptr)};
}

inline CreatedGroup Session::CreateGroup(std::string_view name, const System &client,
                                         std::uint32_t reserve) {
  return Lists::Create(nullptr, name, client, reserve);
}

}  // namespace kvrapi

#endif
