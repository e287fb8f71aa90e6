// Reaching a host: the address of an adapter, and the loop that tries a remote host's adapters.
#pragma once

#include <cstdint>

#include "kvrapi/kvrapi.h"
#include "kvrapi/vexonet.h"

#include "model/system_record.h"

namespace kvr {

// An adapter's credential and identity, each as two words in memory order: the first four arguments
// of every call that addresses the adapter.
struct AdapterAddress {
  std::uint32_t cred0;
  std::uint32_t cred1;
  std::uint32_t id0;
  std::uint32_t id1;
};

// The credential to pass for a remote adapter: its own, or 8 zero bytes while it is not valid. Two
// words in memory order.
struct AdapterCredential {
  std::uint32_t word0;
  std::uint32_t word1;
};
AdapterCredential GetAdapterCredential(const AdapterInfo &adapter);

// The address of a remote adapter.
AdapterAddress AddressOf(const AdapterInfo &adapter);

// The address of the local host: no credential, the identity of its first adapter. There must be
// one.
AdapterAddress LocalAddress();

// Calls call(AdapterAddress) for each adapter of a remote host in order until one call returns 0.
// Returns 0, or 5019 when none did, also for a host without adapters.
template <class Call>
std::uint32_t TryAdapters(const SystemRecord &host, Call call) {
  for (std::uint32_t i = 0; i < AdapterCountOf(host); ++i) {
    if (call(AddressOf(host.discovered.adapters[i])) == 0) return KVR_OK;
  }
  return KVR_ERR_REMOTE_ACCESS_FAILED;
}

}  // namespace kvr
