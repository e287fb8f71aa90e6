#include "library_walk.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "kvrapi/kvrapi.h"

#include "discovery/discovery.h"
#include "discovery/initialization.h"
#include "model/local_state.h"

std::uint32_t fuzz::g_now = 1'000'000'000;

// kvr::CurrentTimeSeconds()
extern "C" std::uint32_t __wrap__ZN3kvr18CurrentTimeSecondsEv() { return fuzz::g_now; }

namespace {

// Tables that contradict each other can lead to thousands of groups that all look alike.
constexpr std::size_t kMostGroups = 300;

void Require(bool promise, const char *what) {
  if (promise) return;
  std::fprintf(stderr, "broken promise: %s\n", what);
  std::abort();
}

template <class Handle>
using ListOf = std::uint32_t (*)(KVR_GROUP group, Handle *handles, std::uint32_t *count);

// All that a list holds, and that it is as many items as were counted, also when half of the room
// is missing.
template <class Handle>
std::vector<Handle> Listed(std::uint32_t total, KVR_GROUP group, ListOf<Handle> list) {
  std::vector<Handle> all(total);
  std::uint32_t count = total;
  Require(list(group, all.data(), &count) == KVR_OK && count == total, "counted as listed");
  std::vector<Handle> part(total / 2);
  count = total / 2;
  const std::uint32_t result = list(group, part.data(), &count);
  Require((result == KVR_OK) == (total == 0) && count == total / 2, "a cut list says so");
  Require(std::equal(part.begin(), part.end(), all.begin()), "a cut list has the first items");
  return all;
}

struct Handles {
  std::vector<KVR_SYSTEM> systems;
  std::vector<KVR_GROUP> groups;

  [[nodiscard]] KVR_SYSTEM System(std::uint32_t pick) const {
    return systems.empty() ? nullptr : systems[pick % systems.size()];
  }
  [[nodiscard]] KVR_GROUP Group(std::uint32_t pick) const {
    return groups.empty() ? nullptr : groups[pick % groups.size()];
  }
};

// A deletion that stopped halfway keeps the counts, so these lists have room for any number.
void AddSystems(Handles &all, std::uint32_t (*list)(KVR_SYSTEM *, std::uint32_t *) noexcept) {
  std::vector<KVR_SYSTEM> found(4096);
  std::uint32_t count = 4096;
  if (list(found.data(), &count) != KVR_OK) return;
  all.systems.insert(all.systems.end(), found.begin(), found.begin() + count);
}

void AddChildren(Handles &all, KVR_GROUP group) {
  const auto children = Listed<KVR_GROUP>(KVR_GetChildAsgCount(group), group, KVR_GetChildAsgs);
  all.groups.insert(all.groups.end(), children.begin(), children.end());
}

Handles Collect() {
  Handles all;
  AddSystems(all, KVR_GetAcgServers);
  AddSystems(all, KVR_GetUnsecureServers);
  AddChildren(all, nullptr);
  for (std::size_t i = 0; i < all.groups.size() && all.groups.size() < kMostGroups; ++i)
    AddChildren(all, all.groups[i]);
  return all;
}

// Buffers of exactly the size given, so that a sanitizer sees the first character too many.
template <class Char, class Handle>
void AskName(std::uint32_t (*name)(Handle, Char *, std::uint32_t) noexcept, Handle handle) {
  for (const std::uint32_t size : {1u, 31u, 32u, 40u}) {
    std::vector<Char> buffer(size, Char{1});
    const std::uint32_t result = name(handle, buffer.data(), size);
    Require(size < 32 || result != KVR_ERR_NAME_TRUNCATED, "a name has at most 32 characters");
  }
  name(handle, nullptr, 0);
}

void AskSystem(KVR_SYSTEM system) {
  AskName(KVR_GetSystemNameA, system);
  AskName(KVR_GetSystemNameW, system);
  KVR_IsClient(system);
  KVR_IsServer(system);
}

void AskGroup(KVR_GROUP group, KVR_SYSTEM system) {
  AskName(KVR_GetAsgNameA, group);
  AskName(KVR_GetAsgNameW, group);
  const bool offline = KVR_IsAsgOffline(group) != 0;
  Require((KVR_GetAsgClient(group) == nullptr) == offline, "every other group has a client");
  Listed<KVR_SYSTEM>(KVR_GetAsgServerCount(group), group, KVR_GetAsgServers);
  Require(KVR_GetFreeIndexCount(group) + KVR_GetUsedIndexCount(group) <= 246, "246 slots");
  KVR_IsClientInChildAsg(group, system);
  KVR_IsServerInChildAsg(group, system);
}

void AskEverything() {
  Handles all = Collect();
  AddSystems(all, KVR_GetLastOpFailedServers);
  for (KVR_SYSTEM system : all.systems) AskSystem(system);
  for (std::uint32_t i = 0; i < all.groups.size(); ++i) AskGroup(all.groups[i], all.System(i));
  // Comparing the reach identifiers of hosts with hundreds of them is slow, so one is asked.
  KVR_CanDiscoverAllSystems(all.System(0));
  if (KVR_IsBackupMSC() == 0 && !all.groups.empty())
    Listed<KVR_SYSTEM>(KVR_GetAvailAsgServerCount(all.groups.back()), all.groups.back(),
                       KVR_GetAvailAsgServers);
  Listed<KVR_SYSTEM>(KVR_GetBackupMSCCount(), nullptr, [](KVR_GROUP, auto *systems, auto *n) {
    return KVR_GetBackupMSCs(systems, n);
  });
  AskSystem(nullptr);
  KVR_GetFreeIndexCount(nullptr);
}

// In an order in which a network whose tables agree lets most of them through.
using Operation = void (*)(const Handles &all, std::uint32_t pick, std::uint32_t reserve);
const Operation kOperations[] = {
    [](auto &, auto, auto) { KVR_CreateKVR(nullptr); },
    [](auto &all, auto, auto) { std::ranges::for_each(all.systems, KVR_AddServerToACG); },
    [](auto &, auto pick, auto) { KVR_EnableSwitchAccess(pick % 2); },
    [](auto &, auto, auto) { KVR_GenerateNewKeys(); },
    [](auto &all, auto pick, auto) { KVR_AddBackupMSC(all.System(pick + 2)); },
    [](auto &all, auto pick, auto reserve) {
      KVR_CreateAsgA(nullptr, "made here", all.System(pick), &reserve, nullptr);
    },
    [](auto &all, auto pick, auto) { KVR_AddServerToAsg(all.Group(pick), all.System(pick + 1)); },
    [](auto &all, auto pick, auto reserve) {
      const KVR_WCHAR name[] = {'w', 0x263A, 0};
      KVR_CreateAsgW(all.Group(pick), name, all.System(pick + 1), &reserve, nullptr);
    },
    [](auto &all, auto pick, auto count) { KVR_ModifyReservedIndexCount(all.Group(pick), &count); },
    [](auto &all, auto pick, auto) { KVR_RenameAsgA(all.Group(pick), "renamed"); },
    [](auto &all, auto pick, auto) { KVR_AssignNewClient(all.Group(pick), all.System(pick + 3)); },
    [](auto &all, auto pick, auto) { KVR_RemoveServerFromAsg(all.Group(pick), all.System(pick)); },
    [](auto &, auto, auto) { KVR_SyncDiscovery(); },
    [](auto &all, auto pick, auto) { KVR_DeleteAsg(all.Group(pick)); },
    [](auto &all, auto pick, auto) { KVR_RemoveBackupMSC(all.System(pick + 2)); },
    [](auto &all, auto pick, auto) { KVR_RemoveServerFromACG(all.System(pick)); },
    [](auto &all, auto pick, auto) { KVR_AssignNewMSC(all.System(pick + 2)); },
    [](auto &, auto, auto) { KVR_DeleteKVR(); }};

}  // namespace

void fuzz::ForgetEverything() {
  kvr::ReleaseLocalState();
  kvr::g_apiInitialized = kvr::g_initResult = kvr::g_switchAccessEnabled = 0;
  kvr::g_securityActive = kvr::g_isSecureClient = kvr::g_isMsc = kvr::g_isBackupMsc = 0;
  kvr::g_localSaTable = {};
  kvr::g_localIndex = -1;
  kvr::g_discoveryCallback = nullptr;
  kvr::g_discoveryContext = kvr::g_discoveryDone = kvr::g_discoveryActive = 0;
}

void fuzz::UseEverything(std::uint32_t choice) {
  if (KVR_Initialize() == KVR_ERR_NO_LOCAL_ADAPTER) return ForgetEverything();
  KVR_DiscoverServers(nullptr, 0);
  AskEverything();
  // The second round acts on what the first has left, without a new discovery in between.
  for (std::uint32_t round = 0; round < 2; ++round) {
    for (const Operation operation : kOperations)
      operation(Collect(), choice + round, choice % 300);
    AskEverything();
  }
  KVR_DiscoverServers(nullptr, 0);
  AskEverything();
  ForgetEverything();
}
