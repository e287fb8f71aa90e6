// The read-only half of `kvrctl group`.
#pragma once

#include <string>

#include "command.h"

namespace kvrctl {

// Every group of the tree, parents before their children.
Outcome ListGroups();

// One group with its slots, servers and the hosts that could serve it. Throws Failure.
Outcome ShowGroup(const std::string &path);

// The hosts that could be added to the group as servers. Throws Failure (5024) on a backup MSC.
Outcome ListAvailable(const std::string &path);

}  // namespace kvrctl
