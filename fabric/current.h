// The network that the C functions of Tqlink and Vexonet act on in this process.
//
// Unless a test has put one in its place, it is made at the first call from the environment:
// KVR_FABRIC names the fabric's folder, KVR_HOST the local host, and KVR_TRACE (set, and not "0")
// prints every outside call on standard error. When these do not lead to a usable description, the
// reason is printed once on standard error, and the process is a host that has no adapter and
// discovers nothing.
#pragma once

#include <cstdint>
#include <memory>

#include "fabric/network.h"

namespace fabric {

// Never null.
std::shared_ptr<Network> CurrentNetwork();

// Puts a network in place of the current one; null: the next call makes one from the environment.
// Waits for the end of a discovery callback that the network given up is in, unless called from it.
void SetCurrentNetwork(std::shared_ptr<Network> network);

// Leaves the network as it is for good, without the end of anything that it does: for a library
// whose process has stopped all its other threads.
void AbandonCurrentNetwork();

// What the call answers for the current network, or the failure when it throws: the caller is C.
template <typename Call>
std::uint32_t Forward(std::uint32_t failure, Call call) noexcept {
  try {
    return call(*CurrentNetwork());
  } catch (...) {
    return failure;
  }
}

}  // namespace fabric
