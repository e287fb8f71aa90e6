// One change made to several hosts in turn: it goes on past a host that fails, and tells which did.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "command.h"
#include "library.h"

namespace kvrctl {

// How a change is spoken of: "Adding to the ACG" while it is made, "Added to the ACG" afterwards.
struct Wording {
  std::string doing;
  std::string didSo;
};

// Calls change(system) for every host that the user names. Throws Failure before anything is
// changed where a name does not fit one host, and afterwards where every host failed; where some
// did, the outcome carries them.
Outcome ChangeHosts(const Library &library, const std::vector<std::string> &names,
                    const Wording &wording, const std::function<std::uint32_t(KVR_SYSTEM)> &change);

// The failure of a change that some of `total` hosts did not take; code is what it is known by.
Failure PartialFailure(const std::string &doing, std::size_t total, std::uint32_t code,
                       const std::vector<HostFailure> &failed);

}  // namespace kvrctl
