// Asking hosts to bring their adapters in line with their tables.
#pragma once

namespace kvr {

// Asks every registered system, through its adapters until one accepts, and after each of them the
// local host. Failures are ignored; with an empty registry nobody is asked.
void SynchronizeAllHosts();

}  // namespace kvr
