// The moment at which the platform takes the library out of a process.
#pragma once

namespace kvr {

// Called once when the library is unloaded or the process ends. Supplied by the floor that knows
// what there is to release; nothing may be called on the outside libraries from it.
void OnProcessDetach();

}  // namespace kvr
