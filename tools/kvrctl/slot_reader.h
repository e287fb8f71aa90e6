// What the library's interface does not give, read from the tables: the slots that hosts hold, the
// names stored beside them, and whether this host's table took a change.
//
// It may be asked when the library's discovery is complete, and never beside it. It reads; it never
// writes.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "failure.h"
#include "library.h"
#include "show.h"

namespace kvrctl {

struct Holding {
  std::uint32_t slot;         // 0 to 245
  kvrapi::SlotCount reserve;  // the slots set aside for groups below the host's own
};

using Slots = std::map<const Host *, Holding>;

// What every host holds that holds a slot. A host is left out where no adapter of it answers, or
// where another host has the same names so that its table cannot be told from the other's.
Slots ReadSlots(const std::vector<Host> &hosts);

// The slot of a host among those read, or null; null for no host.
Json SlotOf(const Slots &slots, const Host *host);

// The name of the host's group as its header stores it, in UTF-8, empty where it holds none: the
// UTF-16 form, or the 8-bit one where that is empty. None where no adapter of the host answers, or
// where another host has the same names.
std::optional<std::string> ReadGroupName(const Host &host);

// Whether the host's group is stored under this name; true also of a host that cannot be asked
// because another has the same names.
bool StoresName(const Host &host, const std::string &name);

// Whether an adapter of the host lets its table be read; true also where that cannot be asked, as
// above.
bool CanBeRead(const Host &host);

// The count for a group. Throws Failure (5012, 5019) where it could not be read.
kvrapi::SlotCount CountSlotsBelow(const Library &library, const Group &group);

// Whether this host's own table can be read.
bool CanReadLocalTable();

// The slot that this host holds; null where it holds none or its adapter does not answer.
Json ReadLocalSlot();

// Whether this host's stored table has switch access on; none where its adapter does not answer.
std::optional<bool> ReadLocalSwitchAccess();

// Whether this host's stored table has the keys of a host of the ACG that is not among the failed:
// false where this host's adapter does not answer, none where no such host does.
std::optional<bool> SharesKeys(const std::vector<Host> &hosts,
                               const std::vector<HostFailure> &failed);

}  // namespace kvrctl
