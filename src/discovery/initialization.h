// The one load of the local host's state, and its release.
#pragma once

#include <cstdint>

namespace kvr {

// As KVR_Initialize promises; the only operation in front of the gate.
std::uint32_t Initialize();

// Lists the local adapters, reads the local table and derives this host's role from it, once per
// process. Returns 0, 5002 or 5004; every later call returns the same without doing anything.
std::uint32_t LoadLocalState();

// Releases the model and the local adapters, so that the next load starts afresh. Calls nothing on
// the outside libraries.
void ReleaseLocalState();

}  // namespace kvr
