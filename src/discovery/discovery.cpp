#include "discovery/discovery.h"

#include "kvrapi/vexonet.h"

#include "discovery/collector.h"
#include "model/local_state.h"
#include "model/release.h"
#include "platform/clock.h"
#include "platform/memory.h"
#include "platform/thread.h"
#include "tables/synchronization.h"

namespace kvr {

KVR_DISCOVERY_CALLBACK g_discoveryCallback = nullptr;
std::uintptr_t g_discoveryContext = 0;
std::atomic<std::uint32_t> g_discoveryDone = 0;
std::atomic<std::uint32_t> g_discoveryActive = 0;

namespace {

constexpr std::uint32_t POLL_INTERVAL_MS = 250;
constexpr std::uint32_t HOLD_INTERVAL_MS = 1;

std::atomic<bool> g_eventsRefused = false;
std::atomic<ThreadId> g_collectingThread = NO_THREAD;  // works an event off
std::atomic<ThreadId> g_holdingThread = NO_THREAD;     // keeps events of other threads waiting

extern "C" void ForwardDiscoveryEvent(std::uint32_t first, std::uint32_t second) {
  OnDiscoveryEvent(first, second);
}

bool IsCollecting() {
  return g_discoveryActive != 0 && g_discoveryDone != 0;
}

// Ends only when the event has been worked off, not when it has merely been taken. A thread that
// works it off does not wait for itself.
void WaitUntilCollected() {
  while (g_discoveryActive != 0 && g_collectingThread != CurrentThread()) {
    SleepMilliseconds(POLL_INTERVAL_MS);
  }
}

// Keeps an event that another thread takes from now on waiting, after one that is being worked off
// has come to its end. The discovery library's list and the model are the caller's meanwhile.
void HoldEvents() {
  for (;;) {
    g_holdingThread = CurrentThread();
    if (!IsCollecting() || g_collectingThread == CurrentThread()) return;
    g_holdingThread = NO_THREAD;
    WaitUntilCollected();
  }
}

void LetEventsPass() {
  g_holdingThread = NO_THREAD;
}

void WaitWhileHeld() {
  for (;;) {
    const ThreadId holder = g_holdingThread;
    if (holder == NO_THREAD || holder == CurrentThread()) return;
    SleepMilliseconds(HOLD_INTERVAL_MS);
  }
}

// Whether the discovery library knows systems already.
bool KnowsSystems() {
  DiscoveredSystem unused;
  HoldEvents();
  const bool known = Vexo_GetFirstSystem(&unused) != 0;
  LetEventsPass();
  if (known) SecureZero(&unused, sizeof unused);
  return known;
}

// Starts the discovery library; returns whether it knew systems already, which are then collected,
// unless an event on its own thread has come first.
bool StartDiscovery() {
  Vexo_RegisterCallBack(ForwardDiscoveryEvent, 4, 0);
  g_discoveryActive = 1;
  g_discoveryDone = 0;
  Vexo_Startup(1);
  const bool known = KnowsSystems();
  if (known) OnDiscoveryEvent(0, 0);
  return known;
}

}  // namespace

void OnDiscoveryEvent(std::uint32_t, std::uint32_t) noexcept {
  if (g_discoveryDone.exchange(1) != 0 || g_eventsRefused) return;
  g_collectingThread = CurrentThread();
  WaitWhileHeld();
  Vexo_PauseDiscovery();
  CollectSystems();
  if (g_discoveryCallback != nullptr) g_discoveryCallback(g_discoveryContext);
  Vexo_Terminate();
  g_collectingThread = NO_THREAD;
  g_discoveryActive = 0;
}

bool RefuseEvents() {
  g_eventsRefused = true;
  return g_discoveryDone.exchange(1) == 0 || g_discoveryActive == 0;
}

std::uint32_t DiscoverServers(KVR_DISCOVERY_CALLBACK callback, std::uintptr_t context) {
  HoldEvents();
  // Discovery reads what the hosts serve, not whether switch access is on: that flag stays.
  const std::uint32_t switchAccess = g_switchAccessEnabled;
  ReleaseModel();
  g_switchAccessEnabled = switchAccess;
  g_discoveryCallback = callback;
  g_discoveryContext = context;
  const bool idle = g_discoveryActive == 0;
  // An event of an earlier discovery's cycle that comes before this one is started is not its own.
  if (idle) g_discoveryDone = 1;
  LetEventsPass();
  const bool known = idle && StartDiscovery();
  if (known || callback == nullptr) WaitUntilCollected();
  if (known) Vexo_StartDiscoveryCycle();
  return KVR_OK;
}

std::uint32_t SyncDiscovery() {
  SynchronizeAllHosts();
  return KVR_OK;
}

}  // namespace kvr
