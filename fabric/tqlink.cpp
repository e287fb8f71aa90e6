// The adapter-management library over the simulated network.
#include "kvrapi/tqlink.h"

#include <cstring>

#include "fabric/current.h"

namespace {

using fabric::AdapterAddress;
using fabric::Network;
using fabric::View;

constexpr std::uint32_t kFailed = 1;

template <typename Call>
std::uint32_t Forward(std::uint32_t failure, Call call) noexcept {
  return fabric::ForwardFrom(fabric::Library::kTqlink, failure, call);
}

fabric::Id8 ToId(std::uint32_t word0, std::uint32_t word1) {
  fabric::Id8 id{};
  std::memcpy(id.data(), &word0, sizeof word0);
  std::memcpy(id.data() + sizeof word0, &word1, sizeof word1);
  return id;
}

std::uint32_t Read(View view, const AdapterAddress &address, void *buffer,
                   std::uint32_t *capacity) {
  return Forward(kFailed, [&](Network &network) {
    return network.Read(view, address, buffer, capacity != nullptr ? *capacity : 0);
  });
}

std::uint32_t Write(View view, const AdapterAddress &address, const void *image) {
  return Forward(kFailed, [&](Network &network) { return network.Write(view, address, image); });
}

}  // namespace

std::uint32_t TQ_InitLib(void) {
  return Forward(kFailed, [](Network &network) { return network.InitLib(); });
}

std::uint32_t TQ_GetNumberOfLocalAdapters(void) {
  return Forward(0, [](Network &network) { return network.LocalAdapterCount(); });
}

std::uint32_t TQ_GetLocalHBAInfo(std::uint32_t request[2], void *info236) {
  if (request == nullptr) return 0;
  return Forward(0, [&](Network &network) { return network.GetLocalAdapter(request[1], info236); });
}

std::uint32_t TQ_ReadSaTable(std::uint32_t cred0, std::uint32_t cred1, std::uint32_t id0,
                             std::uint32_t id1, void *table, std::uint32_t *bytes) {
  return Read(View::kWhole, {ToId(cred0, cred1), ToId(id0, id1)}, table, bytes);
}

std::uint32_t TQ_WriteSaTable(std::uint32_t cred0, std::uint32_t cred1, std::uint32_t id0,
                              std::uint32_t id1, const void *table) {
  return Write(View::kWhole, {ToId(cred0, cred1), ToId(id0, id1)}, table);
}

std::uint32_t TQ_RemoveSaTable(std::uint32_t cred0, std::uint32_t cred1, std::uint32_t id0,
                               std::uint32_t id1) {
  const AdapterAddress address{ToId(cred0, cred1), ToId(id0, id1)};
  return Forward(kFailed, [&](Network &network) { return network.RemoveTable(address); });
}

std::uint32_t TQ_ReadSaTableHeader(std::uint32_t cred0, std::uint32_t cred1, std::uint32_t id0,
                                   std::uint32_t id1, void *header, std::uint32_t *bytes) {
  return Read(View::kHeader, {ToId(cred0, cred1), ToId(id0, id1)}, header, bytes);
}

std::uint32_t TQ_WriteSaTableHeader(std::uint32_t cred0, std::uint32_t cred1, std::uint32_t id0,
                                    std::uint32_t id1, const void *header) {
  return Write(View::kHeader, {ToId(cred0, cred1), ToId(id0, id1)}, header);
}

std::uint32_t TQ_ReadAccessControlTable(std::uint32_t cred0, std::uint32_t cred1, std::uint32_t id0,
                                        std::uint32_t id1, void *table, std::uint32_t *entries) {
  return Read(View::kAccess, {ToId(cred0, cred1), ToId(id0, id1)}, table, entries);
}

std::uint32_t TQ_WriteAccessControlTable(std::uint32_t cred0, std::uint32_t cred1,
                                         std::uint32_t id0, std::uint32_t id1, const void *table) {
  return Write(View::kAccess, {ToId(cred0, cred1), ToId(id0, id1)}, table);
}

std::uint32_t TQ_WriteKeyTable(std::uint32_t cred0, std::uint32_t cred1, std::uint32_t id0,
                               std::uint32_t id1, const void *table) {
  return Write(View::kKeys, {ToId(cred0, cred1), ToId(id0, id1)}, table);
}

std::uint32_t TQ_syncSecurityConfig(std::uint32_t cred0, std::uint32_t cred1, std::uint32_t id0,
                                    std::uint32_t id1) {
  const AdapterAddress address{ToId(cred0, cred1), ToId(id0, id1)};
  return Forward(kFailed, [&](Network &network) { return network.Synchronize(address); });
}
