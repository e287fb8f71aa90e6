#include "discovery/discovery.h"

#include <thread>

#include "kvrapi/vexonet.h"

#include "discovery/collector.h"
#include "model/local_state.h"
#include "model/release.h"
#include "platform/clock.h"
#include "platform/memory.h"
#include "tables/synchronization.h"

namespace kvr {

KVR_DISCOVERY_CALLBACK g_discoveryCallback = nullptr;
std::uintptr_t g_discoveryContext = 0;
std::atomic<std::uint32_t> g_discoveryDone = 0;
std::atomic<std::uint32_t> g_discoveryActive = 0;

namespace {

constexpr std::uint32_t POLL_INTERVAL_MS = 250;

std::atomic<bool> g_eventsRefused = false;
std::atomic<std::thread::id> g_collectingThread;

extern "C" void ForwardDiscoveryEvent(std::uint32_t first, std::uint32_t second) {
  OnDiscoveryEvent(first, second);
}

// Ends only when the event has been worked off, not when it has merely been taken. The thread that
// works it off, in the caller's callback, does not wait for itself.
void WaitUntilCollected() {
  if (IsCollecting() && g_collectingThread.load() == std::this_thread::get_id()) return;
  while (g_discoveryActive != 0)
    SleepMilliseconds(POLL_INTERVAL_MS);
}

// Starts the discovery library; returns whether it knew systems already, which were then collected.
bool StartDiscovery() {
  Vexo_RegisterCallBack(ForwardDiscoveryEvent, 4, 0);
  g_discoveryActive = 1;
  Vexo_Startup(1);
  DiscoveredSystem unused;
  if (Vexo_GetFirstSystem(&unused) == 0) return false;
  SecureZero(&unused, sizeof unused);
  OnDiscoveryEvent(0, 0);
  return true;
}

}  // namespace

void OnDiscoveryEvent(std::uint32_t, std::uint32_t) noexcept {
  if (g_eventsRefused || g_discoveryDone.exchange(1) != 0) return;
  g_collectingThread = std::this_thread::get_id();
  Vexo_PauseDiscovery();
  CollectSystems();
  if (g_discoveryCallback != nullptr) g_discoveryCallback(g_discoveryContext);
  Vexo_Terminate();
  g_collectingThread = std::thread::id();
  g_discoveryActive = 0;
}

bool IsCollecting() {
  return g_discoveryActive != 0 && g_discoveryDone != 0;
}

void RefuseEvents() {
  g_eventsRefused = true;
}

std::uint32_t DiscoverServers(KVR_DISCOVERY_CALLBACK callback, std::uintptr_t context) {
  // The former discovery has called its callback, but its thread has not come to the end of it.
  if (IsCollecting()) WaitUntilCollected();
  // Discovery reads what the hosts serve, not whether switch access is on: that flag stays.
  const std::uint32_t switchAccess = g_switchAccessEnabled;
  ReleaseModel();
  g_switchAccessEnabled = switchAccess;
  g_discoveryCallback = callback;
  g_discoveryContext = context;
  g_discoveryDone = 0;
  const bool started = g_discoveryActive == 0 && StartDiscovery();
  // The event may have been taken by the discovery library's thread, which is still at it.
  if (callback == nullptr) WaitUntilCollected();
  if (started) Vexo_StartDiscoveryCycle();
  return KVR_OK;
}

std::uint32_t SyncDiscovery() {
  SynchronizeAllHosts();
  return KVR_OK;
}

}  // namespace kvr
