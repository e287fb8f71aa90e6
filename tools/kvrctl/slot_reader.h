// The slots that hosts hold, read from their tables: the library's interface gives no slot number.
//
// The adapters of the other hosts are learned by a discovery of this room's own, so it must run
// after the library's discovery is complete and never beside it. It reads; it never writes.
#pragma once

#include <cstdint>
#include <map>

#include "library.h"
#include "show.h"

namespace kvrctl {

using Slots = std::map<const Host *, std::uint32_t>;

// The slot of every host that holds one, 0 to 245. A host is left out where no adapter of it
// answers, or where another host has the same names so that its table cannot be told from the
// other's.
Slots ReadSlots(const std::vector<Host> &hosts);

// The slot of a host among those read, or null; null for no host.
Json SlotOf(const Slots &slots, const Host *host);

// The slot that this host holds; null where it holds none or its adapter does not answer.
Json ReadLocalSlot();

}  // namespace kvrctl
