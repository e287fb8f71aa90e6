// The host-discovery library over the simulated network.
#include "kvrapi/vexonet.h"

#include "fabric/current.h"

namespace {

using fabric::Network;

constexpr std::uint32_t kFailed = 1;

template <typename Call>
std::uint32_t Forward(std::uint32_t failure, Call call) noexcept {
  return fabric::ForwardFrom(fabric::Library::kVexonet, failure, call);
}

}  // namespace

std::uint32_t Vexo_RegisterCallBack(VEXO_CALLBACK callback, std::uint32_t, std::uint32_t) {
  return Forward(kFailed, [&](Network &network) { return network.RegisterCallback(callback); });
}

std::uint32_t Vexo_Startup(std::uint32_t) {
  return Forward(kFailed, [](Network &network) { return network.Startup(); });
}

std::uint32_t Vexo_GetFirstSystem(void *discoveredSystem30104) {
  return Forward(0,
                 [&](Network &network) { return network.GetFirstSystem(discoveredSystem30104); });
}

std::uint32_t Vexo_GetNextSystem(void *discoveredSystem30104) {
  return Forward(0, [&](Network &network) { return network.GetNextSystem(discoveredSystem30104); });
}

std::uint32_t Vexo_PauseDiscovery(void) {
  return Forward(kFailed, [](Network &network) { return network.PauseDiscovery(); });
}

std::uint32_t Vexo_Terminate(void) {
  return Forward(kFailed, [](Network &network) { return network.Terminate(); });
}

std::uint32_t Vexo_StartDiscoveryCycle(void) {
  return Forward(kFailed, [](Network &network) { return network.StartDiscoveryCycle(); });
}
