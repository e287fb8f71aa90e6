// What the library's interface does not give, read from the tables: the slots that hosts hold, and
// whether this host's table took a change.
//
// The adapters of the other hosts are learned by a discovery of this room's own, so it must run
// after the library's discovery is complete and never beside it. It reads; it never writes.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "failure.h"
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

// The count for a group. Throws Failure (5012, 5019) where it could not be read.
kvrapi::SlotCount CountSlotsBelow(const Library &library, const Group &group);

// The slot that this host holds; null where it holds none or its adapter does not answer.
Json ReadLocalSlot();

// Whether this host's stored table has switch access on; none where its adapter does not answer.
std::optional<bool> ReadLocalSwitchAccess();

// Whether this host's stored table has the keys of a host of the ACG that is not among the failed:
// false where this host's adapter does not answer, none where no such host does.
std::optional<bool> SharesKeys(const std::vector<Host> &hosts,
                               const std::vector<HostFailure> &failed);

}  // namespace kvrctl
