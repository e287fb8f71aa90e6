// Building the registry from the discovery library, and synchronization.
//
// A discovery is idle, waits for the discovery library's event, or collects. The event may come on
// that library's own thread and more than once; only the first of a discovery counts.
#pragma once

#include <atomic>
#include <cstdint>

#include "kvrapi/kvrapi.h"

namespace kvr {

extern KVR_DISCOVERY_CALLBACK g_discoveryCallback;    // the caller's, or null
extern std::uintptr_t g_discoveryContext;             // passed back to it
extern std::atomic<std::uint32_t> g_discoveryDone;    // the event of this discovery was taken
extern std::atomic<std::uint32_t> g_discoveryActive;  // started, and not yet collected to the end

// As the exports of the same names promise, behind the gate.
std::uint32_t DiscoverServers(KVR_DISCOVERY_CALLBACK callback, std::uintptr_t context);
std::uint32_t SyncDiscovery();

// What the discovery library calls when systems are ready; both arguments are ignored.
void OnDiscoveryEvent(std::uint32_t, std::uint32_t) noexcept;

// Turns every later event away, for good: the library is on its way out of the process. Returns
// whether the model can be released, which it can't while another thread is working an event off.
bool RefuseEvents();

}  // namespace kvr
