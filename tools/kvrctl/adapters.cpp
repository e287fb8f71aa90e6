#include "adapters.h"

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <cstring>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "kvrapi/text.hpp"
#include "kvrapi/tqlink.h"
#include "kvrapi/vexonet.h"

namespace kvrctl {
namespace {

template <class Character, std::size_t Capacity>
std::size_t LengthOf(const Character (&field)[Capacity]) {
  return static_cast<std::size_t>(std::find(field, field + Capacity, Character{}) - field);
}

std::vector<Address> AddressesOf(const DiscoveredSystem &system) {
  std::vector<Address> addresses(std::min(system.adapterCount, VEXO_MAX_ADAPTERS));
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    const AdapterInfo &adapter = system.adapters[i];
    std::memcpy(addresses[i].id, adapter.adapterId, sizeof addresses[i].id);
    if (adapter.credentialValid == 0) continue;
    std::memcpy(addresses[i].credential, adapter.credential, sizeof addresses[i].credential);
  }
  return addresses;
}

System SystemOf(const DiscoveredSystem &found) {
  const KVR_WCHAR *wide = found.systemNameW;
  System system;
  system.wideName = kvrapi::Utf8Of(kvrapi::WideString(wide, wide + LengthOf(found.systemNameW)));
  system.name = kvrapi::Utf8OfBytes({found.systemName, LengthOf(found.systemName)});
  if (system.name.empty()) system.name = system.wideName;
  system.excluded = found.excluded != 0;
  system.adapters = AddressesOf(found);
  return system;
}

// The discovery in progress: the callback gets no context, so there is one for the process. It
// collects once, on whichever thread the event comes.
struct Discovery {
  std::mutex mutex;
  std::condition_variable finished;
  bool taken = false;
  bool complete = false;
  std::vector<System> systems;
};

Discovery g_discovery;
std::optional<std::vector<System>> g_systems;

std::vector<System> CollectSystems() {
  std::vector<System> systems;
  const auto found = std::make_unique<DiscoveredSystem>();
  Vexo_PauseDiscovery();
  std::uint32_t delivered = Vexo_GetFirstSystem(found.get());
  for (; delivered != 0; delivered = Vexo_GetNextSystem(found.get()))
    systems.push_back(SystemOf(*found));
  Vexo_Terminate();
  return systems;
}

void OnSystemsReady(std::uint32_t, std::uint32_t) {
  {
    const std::lock_guard lock(g_discovery.mutex);
    if (std::exchange(g_discovery.taken, true)) return;
  }
  std::vector<System> systems = CollectSystems();
  const std::lock_guard lock(g_discovery.mutex);
  g_discovery.systems = std::move(systems);
  g_discovery.complete = true;
  g_discovery.finished.notify_all();
}

std::vector<System> Discover() {
  {
    const std::lock_guard lock(g_discovery.mutex);
    g_discovery.taken = g_discovery.complete = false;
  }
  Vexo_RegisterCallBack(OnSystemsReady, 4, 0);
  Vexo_Startup(1);
  const auto scratch = std::make_unique<DiscoveredSystem>();
  if (Vexo_GetFirstSystem(scratch.get()) != 0) {
    OnSystemsReady(0, 0);
    Vexo_StartDiscoveryCycle();
  }
  std::unique_lock lock(g_discovery.mutex);
  g_discovery.finished.wait(lock, [] { return g_discovery.complete; });
  return std::move(g_discovery.systems);
}

}  // namespace

const std::vector<System> &Systems() {
  if (!g_systems) g_systems = Discover();
  return *g_systems;
}

void ForgetSystems() {
  g_systems.reset();
}

const System *SystemNamed(const std::string &name, const std::string &wideName) {
  const System *found = nullptr;
  for (const System &system : Systems()) {
    if (system.excluded || system.name != name || system.wideName != wideName) continue;
    if (found != nullptr) return nullptr;
    found = &system;
  }
  return found;
}

Address LocalAddress() {
  std::uint32_t request[2] = {0, 0};
  LocalAdapterInfo adapter{};
  TQ_GetLocalHBAInfo(request, &adapter);
  Address here;
  std::memcpy(here.id, adapter.localAdapterId, sizeof here.id);
  return here;
}

}  // namespace kvrctl
