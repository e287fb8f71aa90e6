// The network that the C functions of Tqlink and Vexonet act on in this process.
//
// Unless a test has put one in its place, it is made at the first call from the environment:
// KVR_FABRIC names the fabric's folder, KVR_HOST the local host, and KVR_TRACE (set, and not "0")
// prints every outside call on standard error. KVR_OVERLAY names a file: what is written to tables
// stays in memory then, no file of the folder is made or changed, and that file tells of it. Tqlink
// puts the line "overlay" in place of its content when it opens the network, then adds a line
// "FUNCTION HOST" for every call that changed a table; a call that it cannot tell of fails. When
// these do not lead to a usable description, or that file cannot be written, the reason is printed
// once on standard error, and the process is a host that has no adapter and discovers nothing.
#pragma once

#include <cstdint>
#include <memory>

#include "fabric/network.h"

namespace fabric {

// Where a call comes from. Both libraries may be in one process, each with a network of its own;
// only Tqlink writes tables.
enum class Library { kTqlink, kVexonet };

// Never null.
std::shared_ptr<Network> CurrentNetwork(Library caller);

// Puts a network in place of the current one; null: the next call makes one from the environment.
// Waits for the end of a discovery callback that the network given up is in, unless called from it.
void SetCurrentNetwork(std::shared_ptr<Network> network);

// Leaves the network as it is for good, without the end of anything that it does: for a library
// whose process has stopped all its other threads.
void AbandonCurrentNetwork();

// What the call answers for the current network, or the failure when it throws: the caller is C.
template <typename Call>
std::uint32_t ForwardFrom(Library caller, std::uint32_t failure, Call call) noexcept {
  try {
    return call(*CurrentNetwork(caller));
  } catch (...) {
    return failure;
  }
}

}  // namespace fabric
