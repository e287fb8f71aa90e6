#include <cstring>
#include <utility>

#include "fabric/network.h"

namespace fabric {
namespace {

AdapterInfo ToRecord(const Adapter &adapter) {
  AdapterInfo info{};
  std::memcpy(info.adapterId, adapter.id.data(), sizeof info.adapterId);
  for (const Id8 &id : adapter.reachIds) {
    std::memcpy(info.reachIds[info.reachIdCount++], id.data(), id.size());
  }
  if (adapter.credential) {
    std::memcpy(info.credential, adapter.credential->data(), sizeof info.credential);
    info.credentialValid = 1;
  }
  return info;
}

DiscoveredSystem ToRecord(const Host &host) {
  DiscoveredSystem system{};
  system.excluded = host.excluded ? 1 : 0;
  host.name.copy(system.systemName, VEXO_SYSTEM_NAME_CAPACITY - 1);
  for (std::size_t i = 0; i < host.wideName.size(); ++i) {
    system.systemNameW[i] = static_cast<KVR_WCHAR>(host.wideName[i]);
  }
  for (const Adapter &adapter : host.adapters) {
    system.adapters[system.adapterCount++] = ToRecord(adapter);
  }
  return system;
}

}  // namespace

std::uint32_t Network::RegisterCallback(VEXO_CALLBACK callback) {
  return Answer({"Vexo_RegisterCallBack", {}, {}, {}}, kFailed, [&](Call &) {
    callback_ = callback;
    return kOk;
  });
}

std::uint32_t Network::Startup() {
  return Answer({"Vexo_Startup", {}, {}, {}}, kFailed, [&](Call &) {
    if (discovery_ != Discovery::kStopped) return kFailed;
    BeginCycle();
    return kOk;
  });
}

// A lone host finds no system, which is announced as well: the caller waits for it.
void Network::BeginCycle() {
  ++cycle_;
  const bool alone = description_.hosts.size() <= (localHost_ ? 1u : 0u);
  discovery_ = description_.knownAtStart && !alone ? Discovery::kKnown : Discovery::kSearching;
  if (discovery_ == Discovery::kKnown) return;
  timer_.Arm(std::chrono::milliseconds(description_.delayMs),
             [this, cycle = cycle_] { Announce(cycle); });
}

// The network may be gone when the callback returns, so that call is the last thing done here.
void Network::Announce(std::uint64_t cycle) {
  VEXO_CALLBACK callback = nullptr;
  {
    const std::lock_guard guard(mutex_);
    if (cycle != cycle_) return;
    discovery_ = Discovery::kKnown;
    callback = callback_;
  }
  if (callback != nullptr) callback(0, 0);
}

std::uint32_t Network::GetFirstSystem(void *record) {
  return Answer({"Vexo_GetFirstSystem", {}, {}, {}}, kNone, [&](Call &call) {
    nextSystem_ = 0;
    return Deliver(call, record);
  });
}

std::uint32_t Network::GetNextSystem(void *record) {
  return Answer({"Vexo_GetNextSystem", {}, {}, {}}, kNone,
                [&](Call &call) { return Deliver(call, record); });
}

std::uint32_t Network::Deliver(Call &call, void *record) {
  if (discovery_ != Discovery::kKnown || record == nullptr) return kNone;
  if (nextSystem_ == localHost_) ++nextSystem_;
  if (nextSystem_ >= description_.hosts.size()) return kNone;
  const Host &host = description_.hosts[nextSystem_++];
  const DiscoveredSystem system = ToRecord(host);
  std::memcpy(record, &system, sizeof system);
  call.host = host.name;
  return kDelivered;
}

// A search under way is given up: only a new cycle ends in an announcement.
std::uint32_t Network::PauseDiscovery() {
  return Answer({"Vexo_PauseDiscovery", {}, {}, {}}, kFailed, [&](Call &) {
    ++cycle_;
    timer_.Cancel();
    return kOk;
  });
}

std::uint32_t Network::Terminate() {
  return Answer({"Vexo_Terminate", {}, {}, {}}, kFailed, [&](Call &) {
    ++cycle_;
    timer_.Cancel();
    discovery_ = Discovery::kStopped;
    callback_ = nullptr;
    return kOk;
  });
}

// Once shut down there is nothing to begin: the next start is a new cycle anyway.
std::uint32_t Network::StartDiscoveryCycle() {
  return Answer({"Vexo_StartDiscoveryCycle", {}, {}, {}}, kFailed, [&](Call &) {
    if (discovery_ != Discovery::kStopped) BeginCycle();
    return kOk;
  });
}

}  // namespace fabric
